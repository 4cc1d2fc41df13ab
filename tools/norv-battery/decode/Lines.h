// Lines of a text, which end in "\n" or "\r\n", or with the text.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace norv::tool {

// The first line of `text`, without its end.
std::string_view FirstLine(std::string_view text);

// The bytes of the first line, its end included.
std::size_t FirstLineSize(std::string_view text);

// Calls `visit` with each line of `text`, without its end.
void ForEachLine(std::string_view text, const std::function<void(std::string_view)>& visit);

// What may stand between digits, and around them.
inline constexpr std::string_view kBlanks = " \t";

bool IsBlankLine(std::string_view line);

// Without the blanks at either end.
std::string_view Trim(std::string_view text);

}  // namespace norv::tool
