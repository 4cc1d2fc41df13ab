// Times on their way to a text and back.
#include "base/Time.h"

#include <gtest/gtest.h>

namespace norv::base {
namespace {

TEST(Time, IsWrittenAndReadBack) {
  EXPECT_EQ(TimeText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(TimeText(-1), "1969-12-31T23:59:59Z");
  EXPECT_EQ(TimeText(1709210096), "2024-02-29T12:34:56Z");
  for (const std::int64_t time :
       {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1709210096}, std::int64_t{253402300799}}) {
    EXPECT_EQ(ParseTime(TimeText(time)), time);
  }
}

TEST(Time, IsRefusedInAnotherShapeOrOutsideTheCalendar) {
  for (const char* const bad :
       {"", "2024-06-01", "2024-06-01T12:00:00", "2024-06-01 12:00:00Z", "2024-06-01T12:00:00z", "2024-6-01T12:00:000Z",
        "+024-06-01T12:00:00Z", "2023-02-29T12:00:00Z", "2024-13-01T12:00:00Z", "2024-00-01T12:00:00Z",
        "2024-06-01T24:00:00Z", "2024-06-01T12:60:00Z", "2024-06-01T12:00:60Z"}) {
    EXPECT_EQ(ParseTime(bad), std::nullopt) << bad;
  }
}

TEST(Time, ReadsTheDigitsOfADateThatNoCalendarHas) {
  EXPECT_EQ(ReadDateDigits("2107-15-31"), (std::array{2107, 15, 31}));
  EXPECT_EQ(ReadDateDigits("2107-15-3"), std::nullopt);
  EXPECT_EQ(ReadDateDigits("2107/15-31"), std::nullopt);
  EXPECT_EQ(ReadDateDigits("2107-1x-31"), std::nullopt);
}

}  // namespace
}  // namespace norv::base
