#include "OrdinaryFile.h"

#include <fcntl.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "FileDescriptor.h"

namespace norv::platform {

std::optional<std::string> ReadOrdinaryFile(const char* path, std::size_t limit) {
  std::string content;
  const bool isFullPath = std::string_view(path).starts_with('/');
  const int failure = isFullPath ? posix::ReadOrdinaryFileAt(AT_FDCWD, path, limit, content) : EINVAL;
  errno = failure;  // for LastSystemCode(); closing the file may have left another one
  return failure == 0 ? std::optional(std::move(content)) : std::nullopt;
}

}  // namespace norv::platform
