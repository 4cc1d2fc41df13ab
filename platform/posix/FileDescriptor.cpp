#include "FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace norv::platform::posix {

namespace {

// Whether it is a file that reading comes to an end of.
int CheckKind(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0) {
    return errno;
  }
  if (S_ISDIR(status.st_mode)) {
    return EISDIR;
  }
  return S_ISREG(status.st_mode) ? 0 : EACCES;
}

// The size that the file tells is not asked: it may grow meanwhile, and the kernel's own files tell none.
int ReadToEnd(int file, std::size_t limit, std::string& content) {
  std::array<char, 4096> chunk{};
  while (true) {
    const ssize_t count = ::read(file, chunk.data(), chunk.size());
    if (count == 0) {
      return 0;
    }
    if (count > 0) {
      content.append(chunk.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
    if (content.size() > limit) {
      return EFBIG;
    }
  }
}

}  // namespace

int ReadOrdinaryFileAt(int folder, const char* name, std::size_t limit, std::string& content) {
  const FileDescriptor file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.IsOpen()) {
    return errno;
  }
  const int failure = CheckKind(file.Number());
  content.clear();
  return failure == 0 ? ReadToEnd(file.Number(), limit, content) : failure;
}

}  // namespace norv::platform::posix
