// The date at the end of a serial number.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace norv::shared::battery::record {

struct TrailingDate {
  int year;
  int month;
  int day;
  std::size_t length;  // of its text
};

// Finds year, month and day, or month, day and year, at the very end of `text`, joined by '-', '/', '.' or a blank. A
// year is written 20 and two digits, or as a bare 19, which is the year 19: a year of the 1900s in four digits is none.
std::optional<TrailingDate> FindTrailingDate(std::string_view text);

}  // namespace norv::shared::battery::record
