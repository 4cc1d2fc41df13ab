#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace norv::json {

// What a text begins with: a character, or bytes that are none and count as one that cannot be read.
struct Utf8Sequence {
  std::size_t length = 0;
  std::optional<char32_t> character;
};

// `text` must not be empty.
Utf8Sequence FirstUtf8Sequence(std::string_view text);

// True when `bytes` is well-formed UTF-8.
bool IsUtf8(std::string_view bytes);

}  // namespace norv::json
