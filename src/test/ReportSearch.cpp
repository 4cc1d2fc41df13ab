#include "test/ReportSearch.h"

#include <cstddef>
#include <string>

namespace norv::shared::battery::test {

std::optional<std::string_view> FindLastContent(std::string_view report, std::string_view elementName,
                                                std::string_view attributeText) {
  constexpr std::size_t kNowhere = std::string_view::npos;
  const std::string startMarker = "<" + std::string(elementName) + std::string(attributeText);
  const std::string endMarker = "</" + std::string(elementName);

  std::optional<std::string_view> content;
  std::size_t position = 0;
  while (true) {
    const std::size_t start = report.find(startMarker, position);
    if (start == kNowhere) {
      return content;
    }
    // A start tag that is never closed takes the whole report as its content's beginning.
    const std::size_t tagEnd = report.find('>', start);
    const std::size_t contentStart = tagEnd == kNowhere ? 0 : tagEnd + 1;
    const std::size_t contentEnd = report.find(endMarker, contentStart);
    if (contentEnd == kNowhere) {
      return content;
    }
    content = report.substr(contentStart, contentEnd - contentStart);
    if (contentEnd <= start) {
      return content;  // the search would find the same start tag again, and again
    }
    position = contentEnd;
  }
}

}  // namespace norv::shared::battery::test
