// Bytes as hex digits.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace norv::simulator {

// In capitals, without blanks.
std::string HexText(std::span<const unsigned char> bytes);

// Blanks between the digits do not count. Nothing for what is no even number of digits.
std::optional<std::vector<unsigned char>> FromHexText(std::string text);

}  // namespace norv::simulator
