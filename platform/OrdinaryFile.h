// Files that lie where others may write.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace norv::platform {

// How much of a battery test's report is borne: thousands of times its size, and little enough to be held in memory.
inline constexpr std::size_t kLargestReport = std::size_t{64} * 1024 * 1024;

// The content of the file `path`, which is a full path, as text. Only an ordinary file of at most `limit` bytes is
// read: whatever lies there in its place, a pipe or a device, neither holds the caller up nor fills the memory. Nothing
// when there is no such file or it cannot be read: Platform::LastSystemCode() says why.
//
// On Linux the file itself is no symbolic link; the folders on the way to it may be some. On Windows, where links are
// made with a privilege only, it may be one.
std::optional<std::string> ReadOrdinaryFile(const char* path, std::size_t limit);

}  // namespace norv::platform
