// Windows' numbers for what can go wrong on a POSIX system.
#pragma once

#include <cstdint>

namespace norv::platform::posix {

inline constexpr std::uint32_t kFileNotFound = 2;             // ERROR_FILE_NOT_FOUND
inline constexpr std::uint32_t kInsufficientBuffer = 122;     // ERROR_INSUFFICIENT_BUFFER
inline constexpr std::uint32_t kBadPathName = 161;            // ERROR_BAD_PATHNAME
inline constexpr std::uint32_t kMessageNotFound = 317;        // ERROR_MR_MID_NOT_FOUND
inline constexpr std::uint32_t kResourceDataNotFound = 1812;  // ERROR_RESOURCE_DATA_NOT_FOUND

// The system code that Windows has for an errno value.
std::uint32_t SystemCode(int errorNumber);

}  // namespace norv::platform::posix
