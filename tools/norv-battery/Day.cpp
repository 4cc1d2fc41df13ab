#include "Day.h"

#include <chrono>

#include "base/Time.h"

namespace norv::tool {

std::optional<Day> ParseDay(std::string_view text) {
  const auto digits = base::ReadDateDigits(text);
  if (!digits) {
    return std::nullopt;
  }
  const auto [year, month, day] = *digits;
  const bool isDay = month >= 1 && month <= 12 && day >= 1 && day <= 31;
  return isDay ? std::optional(Day{year, month, day}) : std::nullopt;
}

bool Exists(const Day& day) {
  return std::chrono::year_month_day{std::chrono::year(day.year), std::chrono::month(static_cast<unsigned>(day.month)),
                                     std::chrono::day(static_cast<unsigned>(day.day))}
      .ok();
}

}  // namespace norv::tool
