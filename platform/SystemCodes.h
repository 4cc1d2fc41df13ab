// Windows' numbers for what can go wrong, as far as they are told apart. They are the same on every platform.
#pragma once

#include <cstdint>

namespace norv::platform {

inline constexpr std::uint32_t kFileNotFound = 2;             // ERROR_FILE_NOT_FOUND
inline constexpr std::uint32_t kInsufficientBuffer = 122;     // ERROR_INSUFFICIENT_BUFFER
inline constexpr std::uint32_t kBadPathName = 161;            // ERROR_BAD_PATHNAME
inline constexpr std::uint32_t kMessageNotFound = 317;        // ERROR_MR_MID_NOT_FOUND
inline constexpr std::uint32_t kResourceDataNotFound = 1812;  // ERROR_RESOURCE_DATA_NOT_FOUND

// Statuses in HRESULT form.
inline constexpr auto kUnspecifiedFailure = static_cast<std::int32_t>(0x80004005U);  // E_FAIL
inline constexpr auto kClassNotRegistered = static_cast<std::int32_t>(0x80040154U);  // REGDB_E_CLASSNOTREG
inline constexpr auto kInvalidArgument = static_cast<std::int32_t>(0x80070057U);     // E_INVALIDARG

}  // namespace norv::platform
