// Paths in the system's 8-bit encoding.
#pragma once

#include <optional>
#include <string>

namespace norv::platform::windows {

// The path in the encoding that the system's 8-bit file functions expect. Nothing when that has no such characters:
// what the system takes in their place ("a" for "\u0103") would be the name of another file.
std::optional<std::string> NarrowPath(const std::wstring& path);

// True for a path that depends neither on the working folder nor on the current drive.
bool IsFullPath(const char* path);

}  // namespace norv::platform::windows
