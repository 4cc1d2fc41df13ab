#include "decode/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "output/EscapeText.h"

namespace norv::tool {

namespace {

// A form of a character of several bytes: what its first two bytes may be; the others are 0x80 to 0xBF.
struct Form {
  unsigned char firstLow;
  unsigned char firstHigh;
  unsigned char secondLow;
  unsigned char secondHigh;
  std::size_t length;
};

// Table 3-7 of the Unicode standard: no overlong forms, no surrogates, nothing above U+10FFFF.
constexpr std::array<Form, 8> kForms{{
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

bool IsWithin(char character, unsigned char low, unsigned char high) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= low && byte <= high;
}

// The length of the character that `bytes` begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view bytes) {
  if (IsWithin(bytes[0], 0x00, 0x7F)) {
    return 1;
  }
  for (const Form& form : kForms) {
    if (IsWithin(bytes[0], form.firstLow, form.firstHigh)) {
      const bool isWhole = bytes.size() >= form.length && IsWithin(bytes[1], form.secondLow, form.secondHigh) &&
                           std::all_of(bytes.begin() + 2, bytes.begin() + static_cast<std::ptrdiff_t>(form.length),
                                       [](char byte) { return IsWithin(byte, 0x80, 0xBF); });
      return isWhole ? form.length : 0;
    }
  }
  return 0;
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = CharacterLength(bytes);
    if (length == 0) {
      return false;
    }
    bytes.remove_prefix(length);
  }
  return true;
}

std::string ToUtf8(std::string_view text) {
  return IsUtf8(text) ? std::string(text) : BytesToUtf8(text);
}

}  // namespace norv::tool
