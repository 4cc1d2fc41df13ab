// Times as JSON has them: "2024-06-01T12:00:00Z".
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "base/Digits.h"

namespace norv::base {

// Of seconds since 1 January 1970 00:00:00 UTC.
inline std::string TimeText(std::int64_t time) {
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

// A date "YYYY-MM-DD", which no calendar need have; nothing for a text of another shape.
constexpr std::optional<std::array<int, 3>> ReadDateDigits(std::string_view text) {
  const bool isShaped = text.size() == 10 && text[4] == '-' && text[7] == '-' && AreDigits(text.substr(0, 4)) &&
                        AreDigits(text.substr(5, 2)) && AreDigits(text.substr(8));
  if (!isShaped) {
    return std::nullopt;
  }
  return std::array{ReadDigits(text.substr(0, 4)), ReadDigits(text.substr(5, 2)), ReadDigits(text.substr(8))};
}

// The reverse of TimeText(), for the years 0 to 9999. Nothing for a time that no calendar has, or another text.
constexpr std::optional<std::int64_t> ParseTime(std::string_view text) {
  const bool isShaped = text.size() == 20 && text[10] == 'T' && text[13] == ':' && text[16] == ':' && text[19] == 'Z' &&
                        AreDigits(text.substr(11, 2)) && AreDigits(text.substr(14, 2)) && AreDigits(text.substr(17, 2));
  const auto digits = isShaped ? ReadDateDigits(text.substr(0, 10)) : std::nullopt;
  if (!digits) {
    return std::nullopt;
  }
  const auto [year, month, day] = *digits;
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  const int hour = ReadDigits(text.substr(11, 2));
  const int minute = ReadDigits(text.substr(14, 2));
  const int second = ReadDigits(text.substr(17, 2));
  if (!date.ok() || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  return ((days * 24 + hour) * 60 + minute) * 60 + second;
}

}  // namespace norv::base
