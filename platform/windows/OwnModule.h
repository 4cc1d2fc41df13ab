// The file that this library was loaded from.
#pragma once

#include <cstdint>
#include <string>

namespace norv::platform::windows {

// The full path in the system's 8-bit encoding, zero-terminated and cut to `size` bytes. The number of characters
// written, 0 when it is not known or that encoding cannot hold it.
std::uint32_t OwnPath(char* buffer, std::uint32_t size);

// The name without its folder; empty when it is not known.
std::wstring OwnName();

}  // namespace norv::platform::windows
