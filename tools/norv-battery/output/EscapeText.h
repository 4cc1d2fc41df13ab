#pragma once

#include <string>
#include <string_view>

namespace norv::tool {

// `bytes` for a terminal: every byte outside printable ASCII, and a backslash, stand as \xNN. No two byte sequences
// give the same text.
std::string EscapeBytes(std::string_view bytes);

// The same, with a blank at either end as \x20, where it would not be seen.
std::string EscapeText(std::string_view bytes);

// `text`, which is UTF-8, with \xNN for each control character: U+0000 to U+001F, U+007F, and U+0080 to U+009F, which
// terminals obey as well.
std::string EscapeControls(std::string_view text);

// `bytes` in quotation marks, as EscapeText gives them, for a message: of what is long only its start, and how long it
// is.
std::string Quote(std::string_view bytes);

// One line of a message that others have put together, and that may quote anything: what is no printable ASCII stands
// as \xNN, a backslash stays, and of what is very long the middle is left out. Printable lines stay as they are.
std::string PrintableLine(std::string_view line);

// `message` without the line break that the system's own messages end in. It is a part of `message`.
std::string_view WithoutLineBreak(std::string_view message);

}  // namespace norv::tool
