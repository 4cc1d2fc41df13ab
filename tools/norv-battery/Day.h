#pragma once

#include <optional>
#include <string_view>

namespace norv::tool {

// A day as people write it; not every one exists.
struct Day {
  int year = 0;
  int month = 0;  // 1 to 12
  int day = 0;    // 1 to 31
};

// The day that "YYYY-MM-DD" names; nothing when `text` is none.
std::optional<Day> ParseDay(std::string_view text);

// True when the calendar has the day.
bool Exists(const Day& day);

}  // namespace norv::tool
