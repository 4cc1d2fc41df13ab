// Texts in UTF-16, which a redirect of PowerShell writes.
#pragma once

#include <bit>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norv::tool {

inline constexpr std::size_t kUtf16MarkSize = 2;

// The byte order of a text that begins with its mark; nothing for anything else, blocks that begin like one included.
std::optional<std::endian> Utf16OrderOf(std::string_view start);

// True for a text of characters up to U+00FF without a mark: every other byte is a NUL.
bool IsUtf16WithoutMark(std::string_view start);

// Makes UTF-8 of UTF-16 that comes in pieces. What is no character becomes U+FFFD.
class Utf16Decoder {
 public:
  explicit Utf16Decoder(std::endian order) : order_(order) {}

  // Appends to `text` what `bytes` complete; behind the last piece, which ends the text, nothing is left over.
  void Append(std::string_view bytes, bool isLast, std::vector<char>& text);

 private:
  std::endian order_;
  std::string rest_;  // the start of a character
};

}  // namespace norv::tool
