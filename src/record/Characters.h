// ASCII letters and digits, whatever the locale.
#pragma once

#include <algorithm>
#include <string_view>

namespace norv::shared::battery::record {

constexpr bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

constexpr bool IsLetterOrDigit(char character) {
  return IsDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

constexpr bool AreLettersOrDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsLetterOrDigit);
}

// True when `text` has the shape of `layout`: of the same length, with an ASCII digit where the layout has a '0', an
// ASCII letter or digit where it has an 'x', and the layout's own character everywhere else.
constexpr bool HasLayout(std::string_view text, std::string_view layout) {
  return std::equal(text.begin(), text.end(), layout.begin(), layout.end(), [](char character, char wanted) {
    switch (wanted) {
      case '0':
        return IsDigit(character);
      case 'x':
        return IsLetterOrDigit(character);
      default:
        return character == wanted;
    }
  });
}

}  // namespace norv::shared::battery::record
