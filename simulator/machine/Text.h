// Texts between UTF-8, the wide ones of WMI and single bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norv::simulator {

std::wstring ToWide(std::string_view utf8);

// Each code point of `utf8` as one byte; nothing when one of them is above U+00FF.
std::optional<std::string> ToBytes(std::string_view utf8);

// The form in which names compare that WMI and Windows compare without regard to case: ASCII letters in lower case.
std::string Folded(std::string_view text);

}  // namespace norv::simulator
