#include "machine/VersionText.h"

#include <charconv>
#include <system_error>

namespace norv::simulator {

std::string VersionText(const platform::ProductVersion& version) {
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." + std::to_string(version.build) +
         "." + std::to_string(version.revision);
}

std::optional<platform::ProductVersion> ParseVersion(const std::string& text) {
  platform::ProductVersion version;
  const char* position = text.data();
  const char* const end = text.data() + text.size();
  for (std::uint16_t* part : {&version.major, &version.minor, &version.build, &version.revision}) {
    const bool isFirst = part == &version.major;
    if (!isFirst && (position == end || *position++ != '.')) {
      return std::nullopt;
    }
    const auto result = std::from_chars(position, end, *part);
    const bool leadingZero = result.ptr - position > 1 && *position == '0';
    if (result.ec != std::errc() || leadingZero) {
      return std::nullopt;
    }
    position = result.ptr;
  }
  return position == end ? std::optional(version) : std::nullopt;
}

std::optional<platform::ProductVersion> ReadVersion(const JsonNode& node) {
  if (node.IsNull()) {
    return std::nullopt;
  }
  const std::optional<platform::ProductVersion> version = node.IsText() ? ParseVersion(node.Text()) : std::nullopt;
  if (!version.has_value()) {
    node.FailExpecting("null or a version \"1.2.3.4\" of four numbers from 0 to 65535");
  }
  return version;
}

}  // namespace norv::simulator
