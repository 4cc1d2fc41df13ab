// Characters beyond U+FFFF, which UTF-16 makes of two units.
#pragma once

namespace norv::base {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

inline constexpr char32_t kHighSurrogates = 0xD800;
inline constexpr char32_t kLowSurrogates = 0xDC00;
inline constexpr char32_t kBehindSurrogates = 0xE000;
inline constexpr char32_t kBehindTheBasicPlane = 0x10000;
inline constexpr char32_t kLastCharacter = 0x10FFFF;

constexpr bool IsHighSurrogate(char32_t unit) {
  return unit >= kHighSurrogates && unit < kLowSurrogates;
}

constexpr bool IsSurrogatePair(char32_t high, char32_t low) {
  return IsHighSurrogate(high) && low >= kLowSurrogates && low < kBehindSurrogates;
}

constexpr char32_t JoinSurrogates(char32_t high, char32_t low) {
  return kBehindTheBasicPlane + ((high - kHighSurrogates) << 10U) + (low - kLowSurrogates);
}

// The two units of a character behind the basic plane.
constexpr char32_t HighSurrogateOf(char32_t character) {
  return kHighSurrogates + ((character - kBehindTheBasicPlane) >> 10U);
}
constexpr char32_t LowSurrogateOf(char32_t character) {
  return kLowSurrogates + ((character - kBehindTheBasicPlane) & 0x3FFU);
}

// The character that a unit is by itself; U+FFFD for one that is none.
constexpr char32_t CharacterOrReplacement(char32_t unit) {
  const bool isSurrogate = unit >= kHighSurrogates && unit < kBehindSurrogates;
  return isSurrogate || unit > kLastCharacter ? kReplacementCharacter : unit;
}

}  // namespace norv::base
