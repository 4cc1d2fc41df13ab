#include "machine/Text.h"

#include <algorithm>

#include "base/Utf8.h"

namespace norv::simulator {

namespace {

// Takes what `utf8` begins with: U+FFFD for what is no character.
char32_t TakeCharacter(std::string_view& utf8) {
  const base::Utf8Sequence first = base::FirstUtf8Sequence(utf8);
  utf8.remove_prefix(first.length);
  return first.character.value_or(base::kReplacementCharacter);
}

}  // namespace

std::wstring ToWide(std::string_view utf8) {
  std::wstring wide;
  while (!utf8.empty()) {
    const char32_t character = TakeCharacter(utf8);
    if (sizeof(wchar_t) == 2 && character >= base::kBehindTheBasicPlane) {
      wide.push_back(static_cast<wchar_t>(base::HighSurrogateOf(character)));
      wide.push_back(static_cast<wchar_t>(base::LowSurrogateOf(character)));
    } else {
      wide.push_back(static_cast<wchar_t>(character));
    }
  }
  return wide;
}

std::optional<std::string> ToBytes(std::string_view utf8) {
  std::string bytes;
  while (!utf8.empty()) {
    const char32_t character = TakeCharacter(utf8);
    if (character > 0xFF) {
      return std::nullopt;
    }
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(character)));
  }
  return bytes;
}

std::string Folded(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return folded;
}

}  // namespace norv::simulator
