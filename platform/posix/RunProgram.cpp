#include "RunProgram.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace norv::platform::posix {

namespace {

// The program starts with the three standard files only, and with its signals as a new session has them, whatever this
// process has blocked or ignored.
class Surroundings {
 public:
  Surroundings() {
    posix_spawn_file_actions_init(&files_);
    posix_spawnattr_init(&attributes_);
  }
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;
  ~Surroundings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&files_);
  }

  int Prepare() {
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    if (const int failure = posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1); failure != 0) {
      return failure;
    }
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    return posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }

  const posix_spawn_file_actions_t* Files() const { return &files_; }
  const posix_spawnattr_t* Attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

// A signal that interrupts the wait does not end it. Where the host ignores SIGCHLD the system keeps no status, and
// waits until there is no child left to ask about.
void WaitForEnd(pid_t process) {
  while (waitpid(process, nullptr, 0) == -1 && errno == EINTR) {
  }
}

}  // namespace

int RunProgram(const char* path) {
  Surroundings surroundings;
  if (const int failure = surroundings.Prepare(); failure != 0) {
    return failure;
  }
  const std::array<char*, 2> arguments{const_cast<char*>(path), nullptr};  // execve takes but does not change them
  pid_t process = -1;
  if (const int failure =
          posix_spawn(&process, path, surroundings.Files(), surroundings.Attributes(), arguments.data(), environ);
      failure != 0) {
    return failure;
  }
  WaitForEnd(process);
  return 0;
}

}  // namespace norv::platform::posix
