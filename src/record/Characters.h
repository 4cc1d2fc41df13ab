// ASCII letters and digits, whatever the locale.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/Digits.h"

namespace norv::shared::battery::record {

// Letters and digits come in no order that the processor could foresee, so it is better not to branch between them. The
// bit 0x20 is what upper and lower case differ by.
constexpr bool IsLetterOrDigit(char character) {
  const unsigned int byte = static_cast<unsigned char>(character);
  const bool isLetter = (byte | 0x20U) - 'a' < 26U;
  const bool isDigit = byte - '0' < 10U;
  return (static_cast<int>(isLetter) | static_cast<int>(isDigit)) != 0;
}

constexpr bool AreLettersOrDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsLetterOrDigit);
}

// True when `text` has the shape of `layout`: of the same length, with an ASCII digit where the layout has a '0', an
// ASCII letter or digit where it has an 'x', and the layout's own character everywhere else.
constexpr bool HasLayout(std::string_view text, std::string_view layout) {
  if (text.size() != layout.size()) {
    return false;
  }
  bool fits = true;
  for (std::size_t position = 0; position < text.size(); ++position) {
    const char character = text[position];
    const char wanted = layout[position];
    fits &=
        wanted == 'x' ? IsLetterOrDigit(character) : (wanted == '0' ? base::IsDigit(character) : character == wanted);
  }
  return fits;
}

}  // namespace norv::shared::battery::record
