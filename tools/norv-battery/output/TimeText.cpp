#include "output/TimeText.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace norv::tool {

std::string TimeText(std::time_t time) {
  const std::chrono::sys_seconds moment{std::chrono::seconds(time)};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(moment - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

}  // namespace norv::tool
