// What each character is worth as a hexadecimal digit.
#pragma once

#include <array>

namespace norv::tool {

inline constexpr unsigned char kBlank = 0xFE;
inline constexpr unsigned char kNoDigit = 0xFF;

inline constexpr std::array<unsigned char, 256> kDigitValues = [] {
  std::array<unsigned char, 256> values{};
  values.fill(kNoDigit);
  values[' '] = values['\t'] = kBlank;
  for (unsigned int value = 0; value < 16; ++value) {
    values[static_cast<unsigned char>("0123456789abcdef"[value])] = static_cast<unsigned char>(value);
    values[static_cast<unsigned char>("0123456789ABCDEF"[value])] = static_cast<unsigned char>(value);
  }
  return values;
}();

// A digit's value, kBlank or kNoDigit.
constexpr unsigned char DigitValue(char character) {
  return kDigitValues[static_cast<unsigned char>(character)];
}

}  // namespace norv::tool
