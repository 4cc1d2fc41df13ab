#pragma once

#include <string>
#include <string_view>

namespace norv::tool {

// True when `bytes` is well-formed UTF-8.
bool IsUtf8(std::string_view bytes);

// `text` as UTF-8: what already is stays as it is, in anything else each byte is taken for the code point of its
// number.
std::string ToUtf8(std::string_view text);

}  // namespace norv::tool
