// Decimal digits, whatever the locale.
#pragma once

#include <algorithm>
#include <string_view>

namespace norv::base {

constexpr bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

constexpr bool AreDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsDigit);
}

// The number that the digits write; they are so few that it fits.
constexpr int ReadDigits(std::string_view digits) {
  int number = 0;
  for (const char digit : digits) {
    number = 10 * number + (digit - '0');
  }
  return number;
}

}  // namespace norv::base
