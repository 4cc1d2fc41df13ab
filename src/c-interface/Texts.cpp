#include "c-interface/Texts.h"

#include <algorithm>
#include <array>

namespace norv::shared::battery::c_interface {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// The first bytes of UTF-8 characters of more than one byte. What the second byte may be keeps out overlong forms,
// surrogates and numbers above U+10FFFF; the others are 80 to BF.
struct Lead {
  unsigned char first;
  unsigned char last;
  std::size_t length;
  unsigned char secondLowest;
  unsigned char secondHighest;
};

constexpr std::array<Lead, 8> kLeads{{
    {0xC2, 0xDF, 2, 0x80, 0xBF},
    {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},
}};

bool IsIn(char character, unsigned char lowest, unsigned char highest) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= lowest && byte <= highest;
}

// The length of the character that `text` begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text) {
  if (static_cast<unsigned char>(text.front()) < 0x80) {
    return 1;
  }
  for (const Lead& lead : kLeads) {
    if (IsIn(text.front(), lead.first, lead.last)) {
      const bool isWhole = text.size() >= lead.length && IsIn(text[1], lead.secondLowest, lead.secondHighest) &&
                           std::all_of(text.begin() + 2, text.begin() + static_cast<std::ptrdiff_t>(lead.length),
                                       [](char character) { return IsIn(character, 0x80, 0xBF); });
      return isWhole ? lead.length : 0;
    }
  }
  return 0;
}

}  // namespace

std::string BytesToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80) {
      text += character;
    } else {
      text += static_cast<char>(0xC0U | (byte >> 6U));
      text += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return text;
}

std::string ValidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    valid += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

norv_battery_status CopyText(std::string_view text, char* buffer, std::size_t bufferSize, std::size_t* needed) {
  if (buffer == nullptr && bufferSize != 0) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  if (needed != nullptr) {
    *needed = text.size() + 1;
  }
  if (buffer == nullptr) {
    return NORV_BATTERY_OK;
  }
  if (bufferSize <= text.size()) {
    std::fill_n(buffer, std::min<std::size_t>(bufferSize, 1), '\0');
    return NORV_BATTERY_BUFFER_TOO_SMALL;
  }
  *std::copy(text.begin(), text.end(), buffer) = '\0';
  return NORV_BATTERY_OK;
}

}  // namespace norv::shared::battery::c_interface
