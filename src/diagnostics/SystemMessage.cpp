#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "diagnostics/Failures.h"
#include "norv/platform/Platform.h"

namespace norv::shared::battery::diagnostics {

namespace {

constexpr std::uint32_t kTextSize = 2018;
using TextBuffer = std::array<char, kTextSize>;

constexpr std::uint32_t kFacilityMask = 0x1FFF0000;
constexpr std::uint32_t kFacilityWindows = 0x00080000;

constexpr std::uint32_t kMessageNotFound = 317;     // ERROR_MR_MID_NOT_FOUND
constexpr std::uint32_t kInsufficientBuffer = 122;  // ERROR_INSUFFICIENT_BUFFER

// A status of facility 8 wraps a system code; the others have message texts of their own.
std::int32_t SystemCode(std::int32_t status) {
  const auto bits = static_cast<std::uint32_t>(status);
  return (bits & kFacilityMask) == kFacilityWindows ? static_cast<std::int32_t>(bits & 0xFFFF) : status;
}

// What stands in for the text that the system could not give. Returns its length.
std::uint32_t FormatFallback(std::int32_t code, std::uint32_t reason, TextBuffer& text) {
  int length = 0;
  switch (reason) {
    case kMessageNotFound:
      length =
          std::snprintf(text.data(), text.size(), "The system cannot find message text for error code %d\r\n", code);
      break;
    case kInsufficientBuffer:
      length = std::snprintf(text.data(), text.size(),
                             "Message text for error code %d is larger than max buffer size of %d\r\n", code,
                             static_cast<int>(kTextSize));
      break;
    default:
      length =
          std::snprintf(text.data(), text.size(), "Could not format message for error code %d due to new error %d\r\n",
                        code, static_cast<int>(reason));
  }
  return static_cast<std::uint32_t>(std::max(length, 0));
}

// The system's text with its closing line break. A text without an end within the length that the system told is not
// trusted and gives the empty one.
std::string MessageText(std::int32_t code) {
  TextBuffer text{};
  auto& platform = platform::Platform::Current();
  std::uint32_t told = platform.FormatSystemMessage(static_cast<std::uint32_t>(code), text.data(), kTextSize);
  if (told == 0) {
    told = FormatFallback(code, platform.LastSystemCode(), text);
  }
  const std::size_t bound = std::min<std::size_t>(std::size_t{told} + 1, text.size());
  const std::size_t length =
      static_cast<std::size_t>(std::find(text.begin(), text.begin() + bound, '\0') - text.begin());
  return length < bound ? std::string(text.data(), length) : std::string();
}

}  // namespace

Failure SystemFailure(std::int32_t status) {
  const std::int32_t code = SystemCode(status);
  return {error::ErrorCategory::SystemMessage, code, MessageText(code), TypeName<long>()};
}

}  // namespace norv::shared::battery::diagnostics
