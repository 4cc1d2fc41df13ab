#pragma once

#include <string>
#include <string_view>

namespace norv::tool {

// `bytes` for a terminal: every byte outside printable ASCII, and a backslash, stand as \xNN. No two byte sequences
// give the same text.
std::string EscapeBytes(std::string_view bytes);

// The same, with a blank at either end as \x20, where it would not be seen.
std::string EscapeText(std::string_view bytes);

// `bytes` as UTF-8: each byte is taken for the code point of its number, U+0000 to U+00FF. Machine files write the
// firmware's texts the same way, so that a text of a report can be copied into one.
std::string BytesToUtf8(std::string_view bytes);

// `message` without the line break that the system's own messages end in. It is a part of `message`.
std::string_view WithoutLineBreak(std::string_view message);

}  // namespace norv::tool
