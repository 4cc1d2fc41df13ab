// UTF-8: what is a character, and how other texts become it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/Utf16.h"

namespace norv::base {

// A form of a character of several bytes: what its first two bytes may be; the others are 0x80 to 0xBF.
struct Utf8Form {
  unsigned char firstLow;
  unsigned char firstHigh;
  unsigned char secondLow;
  unsigned char secondHigh;
  std::size_t length;
};

// Table 3-7 of the Unicode standard: no overlong forms, no surrogates, nothing above U+10FFFF.
inline constexpr std::array<Utf8Form, 8> kUtf8Forms{{
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

// What a text begins with: a character, or bytes that are none and count as one that cannot be read.
struct Utf8Sequence {
  std::size_t length = 0;
  std::optional<char32_t> character;
};

// `text` must not be empty.
constexpr Utf8Sequence FirstUtf8Sequence(std::string_view text) {
  const auto byte = [text](std::size_t place) { return static_cast<unsigned char>(text[place]); };
  const unsigned char first = byte(0);
  if (first < 0x80) {
    return {1, first};
  }
  const auto* const form = std::find_if(kUtf8Forms.begin(), kUtf8Forms.end(), [first](const Utf8Form& candidate) {
    return first >= candidate.firstLow && first <= candidate.firstHigh;
  });
  if (form == kUtf8Forms.end()) {
    return {1, std::nullopt};
  }
  char32_t character = first & (0x7FU >> form->length);
  for (std::size_t place = 1; place < form->length; ++place) {
    const unsigned char low = place == 1 ? form->secondLow : 0x80;
    const unsigned char high = place == 1 ? form->secondHigh : 0xBF;
    if (place == text.size() || byte(place) < low || byte(place) > high) {
      return {place, std::nullopt};
    }
    character = character << 6U | (byte(place) & 0x3FU);
  }
  return {form->length, character};
}

// True when `bytes` is well-formed UTF-8.
constexpr bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf8Sequence first = FirstUtf8Sequence(bytes);
    if (!first.character) {
      return false;
    }
    bytes.remove_prefix(first.length);
  }
  return true;
}

// Appends a character, one up to U+10FFFF, to a string or a vector of char.
template <typename Text>
void AppendUtf8(char32_t character, Text& text) {
  constexpr std::array<unsigned char, 4> kLeads{0x00, 0xC0, 0xE0, 0xF0};
  const unsigned int following = character < 0x80                   ? 0
                                 : character < 0x800                ? 1
                                 : character < kBehindTheBasicPlane ? 2
                                                                    : 3;
  text.push_back(static_cast<char>(kLeads[following] | character >> 6U * following));
  for (unsigned int left = following; left > 0; --left) {
    text.push_back(static_cast<char>(0x80U | (character >> 6U * (left - 1) & 0x3FU)));
  }
}

// Bytes without a stated encoding: each is taken for the character of its number, U+0000 to U+00FF.
inline std::string BytesToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    AppendUtf8(static_cast<unsigned char>(byte), text);
  }
  return text;
}

// A text that should be UTF-8: as it is where it is, otherwise as bytes without a stated encoding.
inline std::string AsUtf8(std::string_view text) {
  return IsUtf8(text) ? std::string(text) : BytesToUtf8(text);
}

// A text that should be UTF-8: each byte that belongs to no character is replaced by U+FFFD.
inline std::string ValidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const Utf8Sequence first = FirstUtf8Sequence(text);
    if (first.character) {
      valid += text.substr(0, first.length);
    } else {
      for (std::size_t replaced = 0; replaced < first.length; ++replaced) {
        AppendUtf8(kReplacementCharacter, valid);
      }
    }
    text.remove_prefix(first.length);
  }
  return valid;
}

// A wide text, which is UTF-16 where its characters have 16 bits. What is no character becomes U+FFFD.
inline std::string WideToUtf8(std::wstring_view wide) {
  std::string text;
  text.reserve(wide.size());
  for (std::size_t place = 0; place < wide.size(); ++place) {
    const auto unit = static_cast<char32_t>(wide[place]);
    const auto next = place + 1 < wide.size() ? static_cast<char32_t>(wide[place + 1]) : U'\0';
    const bool isPair = IsSurrogatePair(unit, next);
    AppendUtf8(isPair ? JoinSurrogates(unit, next) : CharacterOrReplacement(unit), text);
    place += isPair ? 1 : 0;
  }
  return text;
}

}  // namespace norv::base
