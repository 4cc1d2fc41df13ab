// Any text as the report of the battery test, compared with the search written down step by step.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "battery/NorvBatteryTestXmlParser.h"
#include "fuzz/Check.h"
#include "test/ReportSearch.h"

namespace {

// The search as the report's readers have always done it, position by position, and quadratic where the report is
// hostile.
std::optional<std::string> SearchPlainly(const std::string& report) {
  const std::string startMarker = "<r i=\"6\"";
  const std::string endMarker = "</r";
  std::optional<std::string> value;
  std::size_t position = 0;
  while (true) {
    const std::size_t start = report.find(startMarker, position);
    if (start == std::string::npos) {
      return value;
    }
    const std::size_t content = report.find('>', start) + 1;  // 0 where there is none
    const std::size_t end = report.find(endMarker, content);
    if (end == std::string::npos) {
      return value;
    }
    value = report.substr(content, end - content);
    if (end <= start) {
      return value;
    }
    position = end;
  }
}

// The number at the beginning of a text, or -1, without the library's conversion.
int NumberOf(const std::string& text) {
  std::size_t position = text.find_first_not_of(" \t\n\v\f\r");
  if (position == std::string::npos) {
    return -1;
  }
  const bool negative = text[position] == '-';
  if (text[position] == '-' || text[position] == '+') {
    ++position;
  }
  std::int64_t value = 0;
  bool digits = false;
  for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position) {
    digits = true;
    value = value * 10 + (text[position] - '0');
    if (value > 2147483648) {
      return -1;
    }
  }
  value = negative ? -value : value;
  return digits && value <= 2147483647 ? static_cast<int>(value) : -1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using norv::test::Require;
  const std::string report = std::string(reinterpret_cast<const char*>(data), size).c_str();  // to its first NUL
  const auto expected = SearchPlainly(report);
  const auto found = norv::shared::battery::test::FindLastContent(report, "r", " i=\"6\"");
  Require(found.has_value() == expected.has_value(), "whether there is an element");
  Require(!found || *found == *expected, "the element's content");

  norv::shared::battery::NorvBatteryTestXmlParser parser;
  const int status = parser.GetBatteryStatusFromXMLReport(report.c_str());
  Require(status == (expected && !expected->empty() ? NumberOf(*expected) : -1), "the status");
  return 0;
}
