// Preloaded into the tool: tells on standard error what is synced and what is renamed, in order.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>

#define NORV_EXPORTED __attribute__((visibility("default")))

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library keeps its names to itself.
extern "C" NORV_EXPORTED int fsync(int file) {
  struct stat status = {};
  const bool isFolder = ::fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
  std::fputs(isFolder ? "fsync folder\n" : "fsync file\n", stderr);
  return static_cast<int>(::syscall(SYS_fsync, file));
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library keeps its names to itself.
extern "C" NORV_EXPORTED int rename(const char* from, const char* to) noexcept {
  std::fputs("rename\n", stderr);
  return static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
