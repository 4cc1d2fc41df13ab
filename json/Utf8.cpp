#include "json/Utf8.h"

#include <algorithm>
#include <array>

namespace norv::json {

namespace {

// A form of a character: what its first two bytes may be; the others are 0x80 to 0xBF.
struct Form {
  unsigned char firstLow;
  unsigned char firstHigh;
  unsigned char secondLow;
  unsigned char secondHigh;
  std::size_t length;
};

// Table 3-7 of the Unicode standard: no overlong forms, no surrogates, nothing above U+10FFFF.
constexpr std::array<Form, 9> kForms{{
    {0x00, 0x7F, 0x00, 0x00, 1},
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

bool IsByteOf(const Form& form, std::size_t place, unsigned char byte) {
  switch (place) {
    case 0:
      return byte >= form.firstLow && byte <= form.firstHigh;
    case 1:
      return byte >= form.secondLow && byte <= form.secondHigh;
    default:
      return byte >= 0x80 && byte <= 0xBF;
  }
}

// How many of the bytes that a character of this form has `text` begins with.
std::size_t BytesOf(const Form& form, std::string_view text) {
  const std::size_t most = std::min(form.length, text.size());
  std::size_t count = 0;
  while (count < most && IsByteOf(form, count, static_cast<unsigned char>(text[count]))) {
    ++count;
  }
  return count;
}

char32_t Character(std::string_view bytes) {
  constexpr std::array<unsigned char, 5> kBitsOfFirst{0, 0x7F, 0x1F, 0x0F, 0x07};
  auto character = static_cast<char32_t>(static_cast<unsigned char>(bytes[0]) & kBitsOfFirst[bytes.size()]);
  for (const char byte : bytes.substr(1)) {
    character = character << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return character;
}

}  // namespace

Utf8Sequence FirstUtf8Sequence(std::string_view text) {
  for (const Form& form : kForms) {
    const std::size_t count = BytesOf(form, text);
    if (count == form.length) {
      return {count, Character(text.substr(0, count))};
    }
    if (count > 0) {
      return {count, std::nullopt};
    }
  }
  return {1, std::nullopt};
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf8Sequence first = FirstUtf8Sequence(bytes);
    if (!first.character) {
      return false;
    }
    bytes.remove_prefix(first.length);
  }
  return true;
}

}  // namespace norv::json
