#include "output/PartialFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>

#include "base/posix/FileDescriptor.h"
#include "posix/Signals.h"

namespace norv::tool {

namespace {

constexpr std::array kEndings = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// What would end the process while it writes, and is an error of the write instead, once it is handled. Ignoring it
// would do as well, but that is handed on to the battery test.
constexpr std::array kWriteFailures = {SIGXFSZ, SIGPIPE};

// What there is to be removed; null for nothing.
std::atomic<const char*> partialName{nullptr};
static_assert(std::atomic<const char*>::is_always_lock_free, "a signal handler reads it");

extern "C" void RemovePartialFile(int signal) {
  if (const char* const name = partialName.load(); name != nullptr) {
    ::unlink(name);
  }
  ::raise(signal);  // which ends the process as ever, as soon as this handler has returned
}

extern "C" void LeaveItToTheWrite(int) {
}

void Check(bool isDone) {
  if (!isDone) {
    throw std::system_error(errno, std::generic_category());
  }
}

// The rights of `target`, or the user's alone where there is none. A file that cannot be given to the group of the one
// that it replaces gives its own group no rights by that.
mode_t RightsFor(const std::string& target, int file) {
  struct stat former = {};
  if (::stat(target.c_str(), &former) != 0) {
    return S_IRUSR | S_IWUSR;
  }
  const mode_t rights = former.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
  const bool hasGroup =
      ::fchown(file, former.st_uid, former.st_gid) == 0 || ::fchown(file, static_cast<uid_t>(-1), former.st_gid) == 0;
  return hasGroup ? rights : rights & ~static_cast<mode_t>(S_IRWXG);
}

// A system that cannot do it for a folder says so; the file itself is safe all the same.
void SyncFolder(const std::string& folder) {
  const base::FileDescriptor opened(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.IsOpen()) {
    ::fsync(opened.Number());
  }
}

// While it lives, what ends the process removes the file of this name.
class RemovedInTheEnd {
 public:
  explicit RemovedInTheEnd(const std::string& name) {
    partialName = name.c_str();
    for (const int signal : kEndings) {
      HandleUnlessIgnored(signal, RemovePartialFile, static_cast<int>(SA_RESETHAND));
    }
    for (const int signal : kWriteFailures) {
      HandleUnlessIgnored(signal, LeaveItToTheWrite, SA_RESTART);
    }
  }
  RemovedInTheEnd(const RemovedInTheEnd&) = delete;
  RemovedInTheEnd& operator=(const RemovedInTheEnd&) = delete;
  // The handlers stay: without a file they do what is done without them.
  ~RemovedInTheEnd() { partialName = nullptr; }
};

class PosixPartialFile : public PartialFile {
 public:
  explicit PosixPartialFile(const std::filesystem::path& target)
      : folder_(target.parent_path().string()),
        target_(target.string()),
        partial_((target.parent_path() / MakePartialName()).string()),
        guard_(partial_),
        file_(::open(partial_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
    Check(file_.IsOpen());
    // A file system without rights, such as that of a memory stick, refuses, and others have none as it is.
    static_cast<void>(::fchmod(file_.Number(), RightsFor(target_, file_.Number())));
  }
  PosixPartialFile(const PosixPartialFile&) = delete;
  PosixPartialFile& operator=(const PosixPartialFile&) = delete;
  ~PosixPartialFile() override {
    ::unlink(partial_.c_str());  // nothing, once it has been renamed
  }

  void Write(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t count = ::write(file_.Number(), bytes.data(), bytes.size());
      Check(count >= 0 || errno == EINTR);
      bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
  }

  void ReplaceTarget() override {
    Check(::fsync(file_.Number()) == 0);
    Check(file_.Close());
    Check(::rename(partial_.c_str(), target_.c_str()) == 0);
    SyncFolder(folder_);
  }

 private:
  std::string folder_;
  std::string target_;
  std::string partial_;
  RemovedInTheEnd guard_;
  base::FileDescriptor file_;
};

}  // namespace

std::unique_ptr<PartialFile> PartialFile::Create(const std::filesystem::path& target) {
  return std::make_unique<PosixPartialFile>(target);
}

}  // namespace norv::tool
