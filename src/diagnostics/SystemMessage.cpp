#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "SystemCodes.h"
#include "diagnostics/Failures.h"
#include "norv/platform/Platform.h"

namespace norv::shared::battery::diagnostics {

namespace {

constexpr std::uint32_t kTextSize = 2018;

constexpr std::uint32_t kFacilityMask = 0x1FFF0000;
constexpr std::uint32_t kFacilityWindows = 0x00080000;

// A status of facility 8 wraps a system code; the others have message texts of their own.
std::int32_t SystemCode(std::int32_t status) {
  const auto bits = static_cast<std::uint32_t>(status);
  return (bits & kFacilityMask) == kFacilityWindows ? static_cast<std::int32_t>(bits & 0xFFFF) : status;
}

// What stands in for the text that the system could not give.
std::string Fallback(std::int32_t code, std::uint32_t reason) {
  const std::string codeText = std::to_string(code);
  switch (reason) {
    case platform::kMessageNotFound:
      return "The system cannot find message text for error code " + codeText + "\r\n";
    case platform::kInsufficientBuffer:
      return "Message text for error code " + codeText + " is larger than max buffer size of " +
             std::to_string(kTextSize) + "\r\n";
    default:
      return "Could not format message for error code " + codeText + " due to new error " +
             std::to_string(static_cast<std::int32_t>(reason)) + "\r\n";
  }
}

// The system's text with its closing line break. A text without an end within the length that the system told is not
// trusted and gives the empty one.
std::string MessageText(std::int32_t code) {
  std::array<char, kTextSize> text{};
  auto& platform = platform::Platform::Current();
  const std::uint32_t told = platform.FormatSystemMessage(static_cast<std::uint32_t>(code), text.data(), kTextSize);
  if (told == 0) {
    return Fallback(code, platform.LastSystemCode());
  }
  const std::string_view bounded(text.data(), std::min<std::size_t>(std::size_t{told} + 1, text.size()));
  const std::size_t end = bounded.find('\0');
  return end != std::string_view::npos ? std::string(bounded.substr(0, end)) : std::string();
}

}  // namespace

Failure SystemFailure(std::int32_t status) {
  const std::int32_t code = SystemCode(status);
  return {error::ErrorCategory::SystemMessage, code, MessageText(code), TypeName<long>()};
}

}  // namespace norv::shared::battery::diagnostics
