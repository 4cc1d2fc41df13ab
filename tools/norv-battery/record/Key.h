// The key of a redaction.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace norv::tool {

// A shorter one can be found by trying.
inline constexpr std::size_t kShortestKey = 16;

inline constexpr const char* kKeyVariable = "NORV_BATTERY_KEY";

// The key in the file, otherwise the one in the environment variable, otherwise nothing. Throws std::runtime_error for
// one that cannot be read or is too short. Never an argument: every user of a machine can read those of all programs.
std::optional<std::string> GivenKey(const std::optional<std::string>& file);

// 128 bits of the system's randomness, in hex digits.
std::string MakeKey();

}  // namespace norv::tool
