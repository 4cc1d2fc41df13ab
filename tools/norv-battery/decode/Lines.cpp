#include "decode/Lines.h"

#include <algorithm>

namespace norv::tool {

std::string_view FirstLine(std::string_view text) {
  std::string_view line = text.substr(0, text.find('\n'));
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  return line;
}

std::size_t FirstLineSize(std::string_view text) {
  return text.empty() ? 0 : std::min(text.find('\n'), text.size() - 1) + 1;
}

void ForEachLine(std::string_view text, const std::function<void(std::string_view)>& visit) {
  while (!text.empty()) {
    const std::string_view line = FirstLine(text);
    text.remove_prefix(FirstLineSize(text));
    visit(line);
  }
}

bool IsBlankLine(std::string_view line) {
  return line.find_first_not_of(kBlanks) == std::string_view::npos;
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

}  // namespace norv::tool
