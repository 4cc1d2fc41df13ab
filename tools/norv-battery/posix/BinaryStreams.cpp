#include "output/BinaryStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace norv::tool {

namespace {

struct Stream {
  int descriptor;
  int wrongWay;  // to be opened, so that its use fails as that of a closed one
};

constexpr Stream kStreams[] = {{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}};

}  // namespace

// In the order of their numbers: a file gets the lowest one that is free.
void FillMissingStreams() {
  for (const Stream& stream : kStreams) {
    if (::fcntl(stream.descriptor, F_GETFD) < 0 && errno == EBADF) {
      static_cast<void>(::open("/dev/null", stream.wrongWay));
    }
  }
}

// Here every stream carries bytes as they are.
void UseBinaryStreams() {
}

}  // namespace norv::tool
