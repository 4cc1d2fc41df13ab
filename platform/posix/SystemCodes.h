// Windows' numbers and texts for what can go wrong on a POSIX system.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace norv::platform::posix {

inline constexpr std::uint32_t kFileNotFound = 2;             // ERROR_FILE_NOT_FOUND
inline constexpr std::uint32_t kInsufficientBuffer = 122;     // ERROR_INSUFFICIENT_BUFFER
inline constexpr std::uint32_t kBadPathName = 161;            // ERROR_BAD_PATHNAME
inline constexpr std::uint32_t kMessageNotFound = 317;        // ERROR_MR_MID_NOT_FOUND
inline constexpr std::uint32_t kResourceDataNotFound = 1812;  // ERROR_RESOURCE_DATA_NOT_FOUND

// The system code that Windows has for an errno value.
std::uint32_t SystemCode(int errorNumber);

// The message text of a system code, with its closing line break; nothing when the code is not known.
std::optional<std::string_view> SystemMessage(std::uint32_t code);

}  // namespace norv::platform::posix
