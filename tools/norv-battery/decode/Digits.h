// Numbers as decimal digits, written to memory.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace norv::tool {

inline constexpr std::size_t kMostDigits = 20;  // of a number of 64 bits, its sign included

// "00" to "99".
inline constexpr std::array<std::array<char, 2>, 100> kDigitPairs = [] {
  std::array<std::array<char, 2>, 100> pairs{};
  for (std::size_t number = 0; number < pairs.size(); ++number) {
    pairs[number] = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
  }
  return pairs;
}();

// `number` is below 100.
inline char* PutDigitPair(char* to, std::uint32_t number) {
  std::memcpy(to, kDigitPairs[number].data(), 2);
  return to + 2;
}

// `number` is below 100; without a leading zero.
inline char* PutUpToTwoDigits(char* to, std::uint32_t number) {
  if (number >= 10) {
    return PutDigitPair(to, number);
  }
  *to = static_cast<char>('0' + number);
  return to + 1;
}

// Writes at most kMostDigits characters to `to` and returns their end. Most numbers of a battery have at most four
// digits, which std::to_chars is slow for.
template <std::integral Integer>
char* PutNumber(char* to, Integer number) {
  if (number < 0 || number >= 10000) {
    return std::to_chars(to, to + kMostDigits, number).ptr;
  }
  const auto digits = static_cast<std::uint32_t>(number);
  return digits < 100 ? PutUpToTwoDigits(to, digits) : PutDigitPair(PutUpToTwoDigits(to, digits / 100), digits % 100);
}

// Writes a percentage, which is not negative, in at most kMostDigits characters, and returns their end. The figure has
// three decimals, to which a float only comes near; zeros at the end, but for the first decimal, are left out.
inline char* PutPercentage(char* to, float percentage) {
  constexpr double kHalf = 0.5;
  const double rounded = static_cast<double>(percentage) * 1000.0 + kHalf;
  const auto thousandths = static_cast<std::uint64_t>(rounded);
  to = PutNumber(to, static_cast<std::uint32_t>(thousandths / 1000));
  const auto decimals = static_cast<std::uint32_t>(thousandths % 1000);
  to[0] = '.';
  to[1] = static_cast<char>('0' + decimals / 100);
  PutDigitPair(to + 2, decimals % 100);
  return to + (decimals % 10 != 0 ? 4 : (decimals % 100 != 0 ? 3 : 2));
}

}  // namespace norv::tool
