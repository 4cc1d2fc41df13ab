// Texts between the wide ones of WMI, UTF-8 and single bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norv::simulator {

std::string ToUtf8(const std::wstring& wide);
std::wstring ToWide(std::string_view utf8);

// Each code point of `utf8` as one byte; nothing when one of them is above U+00FF.
std::optional<std::string> ToBytes(std::string_view utf8);

// The reverse: each byte as one code point.
std::string ByteText(std::string_view bytes);

bool IsUtf8(std::string_view text);

// A text that should be UTF-8: as it is where it is, otherwise each byte as one code point.
std::string AsUtf8(const std::string& text);

// The form in which names compare that WMI and Windows compare without regard to case: ASCII letters in lower case.
std::string Folded(std::string_view text);

}  // namespace norv::simulator
