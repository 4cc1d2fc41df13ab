#include "Day.h"

#include <chrono>

#include "base/Digits.h"

namespace norv::tool {

namespace {

// The digits of `text` as a number; nothing where anything else stands.
std::optional<int> Number(std::string_view text) {
  return base::AreDigits(text) ? std::optional(base::ReadDigits(text)) : std::nullopt;
}

}  // namespace

std::optional<Day> ParseDay(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
    return std::nullopt;
  }
  const auto year = Number(text.substr(0, 4));
  const auto month = Number(text.substr(5, 2));
  const auto day = Number(text.substr(8, 2));
  const bool isDay = year && month && day && *month >= 1 && *month <= 12 && *day >= 1 && *day <= 31;
  return isDay ? std::optional(Day{*year, *month, *day}) : std::nullopt;
}

bool Exists(const Day& day) {
  return std::chrono::year_month_day{std::chrono::year(day.year), std::chrono::month(static_cast<unsigned>(day.month)),
                                     std::chrono::day(static_cast<unsigned>(day.day))}
      .ok();
}

}  // namespace norv::tool
