#include "decode/OfflinePlatform.h"

#include <cstddef>
#include <cstdint>

namespace norv::tool {

namespace {

constexpr auto kNotConnected = static_cast<long>(static_cast<std::int32_t>(0x80004005U));  // E_FAIL

std::tm Midnight(const Day& day) {
  std::tm calendar{};
  calendar.tm_year = day.year - 1900;
  calendar.tm_mon = day.month - 1;
  calendar.tm_mday = day.day;
  return calendar;
}

}  // namespace

OfflinePlatform::OfflinePlatform(platform::Platform& inner, const std::optional<Day>& today)
    : PlatformWrapper(inner), now_(today ? inner.LocalTimeValue(Midnight(*today)) : inner.Now()) {
}

long OfflinePlatform::ConnectWmi(const std::wstring& /*namespacePath*/,
                                 std::unique_ptr<platform::WmiConnection>& /*connection*/) {
  return kNotConnected;
}

std::optional<std::size_t> OfflinePlatform::PlaceOf(const std::tm& calendarTime) {
  const int year = calendarTime.tm_year - 100;
  const bool isMidnight =
      calendarTime.tm_hour == 0 && calendarTime.tm_min == 0 && calendarTime.tm_sec == 0 && calendarTime.tm_isdst == 0;
  if (isMidnight && year >= 0 && year < 100 && calendarTime.tm_mon >= 0 && calendarTime.tm_mon < 12 &&
      calendarTime.tm_mday >= 1 && calendarTime.tm_mday <= 31) {
    return static_cast<std::size_t>((year * 12 + calendarTime.tm_mon) * 31 + calendarTime.tm_mday - 1);
  }
  const bool isNoDate =
      isMidnight && calendarTime.tm_year == 0 && calendarTime.tm_mon == 0 && calendarTime.tm_mday == 0;
  return isNoDate ? std::optional(kDays) : std::nullopt;
}

std::time_t OfflinePlatform::LocalTimeValue(const std::tm& calendarTime) {
  const auto place = PlaceOf(calendarTime);
  if (!place) {
    return Inner().LocalTimeValue(calendarTime);
  }
  std::atomic<std::time_t>& known = (*timeValues_)[*place];
  std::time_t value = known.load(std::memory_order_relaxed);
  if (value == 0) {
    value = Inner().LocalTimeValue(calendarTime);
    known.store(value, std::memory_order_relaxed);
  }
  return value;
}

}  // namespace norv::tool
