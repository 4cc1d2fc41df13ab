// Numbers as decimal digits, written to memory.
#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace norv::tool {

inline constexpr std::size_t kMostDigits = 20;  // of a number of 64 bits, its sign included

// Writes at most kMostDigits characters to `to` and returns their end.
template <std::integral Integer>
char* PutNumber(char* to, Integer number) {
  return std::to_chars(to, to + kMostDigits, number).ptr;
}

// Writes a percentage accessor's figure, at most kMostDigits characters, and returns their end. The figure has three
// decimals, to which a float only comes near; zeros at the end, but for the first decimal, are left out.
inline char* PutPercentage(char* to, float percentage) {
  const double scaled = static_cast<double>(percentage) * 1000.0;
  const auto thousandths = static_cast<std::int64_t>(scaled < 0 ? scaled - 0.5 : scaled + 0.5);
  if (thousandths < 0) {
    *to++ = '-';
  }
  const auto absolute = static_cast<std::uint64_t>(std::abs(thousandths));
  to = PutNumber(to, static_cast<std::uint32_t>(absolute / 1000));
  const auto decimals = static_cast<std::uint32_t>(absolute % 1000);
  to[0] = '.';
  to[1] = static_cast<char>('0' + decimals / 100);
  to[2] = static_cast<char>('0' + decimals / 10 % 10);
  to[3] = static_cast<char>('0' + decimals % 10);
  return to + (decimals % 10 != 0 ? 4 : (decimals % 100 != 0 ? 3 : 2));
}

}  // namespace norv::tool
