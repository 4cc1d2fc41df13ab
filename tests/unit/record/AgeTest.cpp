// The age of a battery, counted from the date at the end of its serial number.
#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <string>

#include "battery/NorvBatteryInfo.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/TestBlock.h"
#include "unit/support/TimeZone.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;
using shared::error::ErrorCategory;

constexpr const char* kGetAge = "norv::shared::battery::NorvBatteryInfo::GetAge";
constexpr std::time_t kDay = 86400;
constexpr std::time_t kMay6 = 1557100800;  // 2019-05-06 00:00 UTC
constexpr const char* kUtc = "UTC0";
constexpr const char* kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";
constexpr const char* kKiritimati = "LIN-14";  // Windows takes no name of more than three letters

struct Answer {
  int age;
  bool failed;
};

Answer AgeOf(const std::string& serialNumber, std::time_t now, const char* zone = kUtc) {
  const ScopedTimeZone timeZone(zone);
  const ScopedClock clock(now);
  NorvBatteryInfo info(TestBlock().SerialNumber(serialNumber).Data());
  const int age = info.GetAge();
  if (info.GetError()) {
    EXPECT_TRUE(IsError(info.GetError(), ErrorCategory::Value, -1, "Invalid battery serial number", "int", kGetAge));
  }
  return {age, static_cast<bool>(info.GetError())};
}

void ExpectAge(const std::string& serialNumber, std::time_t now, int age, const char* zone = kUtc) {
  const Answer answer = AgeOf(serialNumber, now, zone);
  EXPECT_EQ(answer.age, age) << serialNumber << ' ' << zone;
  EXPECT_FALSE(answer.failed) << serialNumber;
}

// An error, and the days since 1 January 1970 and a second before it.
void ExpectNoDate(const std::string& serialNumber) {
  const Answer answer = AgeOf(serialNumber, kMay6 + 10 * kDay);
  EXPECT_EQ(answer.age, static_cast<int>((kMay6 + 10 * kDay + 1) / kDay)) << serialNumber;
  EXPECT_TRUE(answer.failed) << serialNumber;
}

TEST(Age, CountsWholeDaysFromTheTrailingDate) {
  ExpectAge("SN00012019-05-06", kMay6, 0);
  ExpectAge("SN00012019-05-06", kMay6 + kDay - 1, 0);
  ExpectAge("SN00012019-05-06", kMay6 + kDay, 1);
  ExpectAge("SN00012019-05-06", kMay6 + 365 * kDay - 8640, 364);  // 364.9 days
}

TEST(Age, TakesEverySeparatorAndBothOrders) {
  for (const char* serialNumber :
       {"SN00012019-05-06", "SN00012019/05/06", "SN00012019.05.06", "SN00012019 05 06", "SN00012019-05/06",
        "SN000105-06-2019", "SN000105/06/2019", "SN000105.06.2019", "SN000105 06 2019", "SN000105 06-2019"}) {
    ExpectAge(serialNumber, kMay6 + 100 * kDay, 100);
  }
}

TEST(Age, CutsTowardZeroForADateToCome) {
  ExpectAge("SN00012019-05-06", kMay6 - 1, 0);
  ExpectAge("SN00012019-05-06", kMay6 - kDay, -1);
  ExpectAge("SN00012019-05-06", kMay6 - 10 * kDay - 5, -10);
}

TEST(Age, ASerialNumberThatDoesNotFillItsFieldHasNone) {
  for (const char* serialNumber : {"", "2019-05-06", "SN0012019-05-06"}) {
    const Answer answer = AgeOf(serialNumber, kMay6);
    EXPECT_EQ(answer.age, -1) << serialNumber;
    EXPECT_TRUE(answer.failed) << serialNumber;
  }
}

TEST(Age, WithoutADateItIsCountedFrom1970) {
  ExpectNoDate("0123456789ABCDEF");
  ExpectNoDate("SN00011999-05-06");
  ExpectNoDate("SN00012019-13-06");
  ExpectNoDate("SN00012019-00-06");
  ExpectNoDate("SN00012019-05-32");
  ExpectNoDate("SN00012019-05-00");
  ExpectNoDate("SN00012019_05_06");
  ExpectNoDate("2019-05-06SN0001");
  ExpectNoDate("SN0002019-05-06 ");
  ExpectNoDate("SN000105-06-1999");
  ExpectNoDate("SN000106-05-206X");
}

TEST(Age, ABareNineteenIsTheYear19) {
  // Before 1970, so it has no time value of its own and counts as a second before that year.
  ExpectAge("SN00000119-05-06", kMay6, static_cast<int>((kMay6 + 1) / kDay));
  ExpectAge("SN00000105-06-19", kMay6, static_cast<int>((kMay6 + 1) / kDay));
}

TEST(Age, MidnightIsLocal) {
  ExpectAge("SN00012019-05-06", kMay6 - 2 * 3600, 0, kBerlin);  // local midnight is 22:00 UTC the day before
  // The calendar time says that it is not daylight-saving time: midnight in May is an hour later than on the clock.
  ExpectAge("SN00012019-05-06", kMay6 - 3600 + kDay, 1, kBerlin);
  ExpectAge("SN00012019-05-06", kMay6 - 3600 + kDay - 1, 0, kBerlin);
  ExpectAge("SN00012019-01-06", kMay6, 120, kBerlin);
  ExpectAge("SN00012019-05-06", kMay6 + 5 * 3600 + kDay, 1, kNewYork);
  ExpectAge("SN00012019-05-06", kMay6 + 5 * 3600 + kDay - 1, 0, kNewYork);
  ExpectAge("SN00012019-05-06", kMay6 - 14 * 3600 + kDay, 1, kKiritimati);
}

TEST(Age, CountsAcrossAChangeOfDaylightSavingTime) {
  constexpr std::time_t kMarch30 = 1553900400;  // 2019-03-30 00:00 in Berlin; the clocks go forward on the 31st
  ExpectAge("SN00012019-03-30", kMarch30 + kDay, 1, kBerlin);
  ExpectAge("SN00012019-03-30", kMarch30 + 2 * kDay - 3600, 1, kBerlin);  // midnight of 1 April by the clock: 47 hours
  ExpectAge("SN00012019-03-30", kMarch30 + 2 * kDay, 2, kBerlin);
}

TEST(Age, IsNegativeOnAClockThatStandsAt1970) {
  const ScopedTimeZone timeZone(kBerlin);
  const ScopedClock clock(0);
  NorvBatteryInfo info(TestBlock().SerialNumber("SN00012000-01-01").Data());
  EXPECT_EQ(info.GetAge(), -10956) << "946681200 seconds before, cut toward zero";
}

TEST(Age, ATimeBefore1970IsOneSecondBeforeIt) {
  ExpectAge("SN00000119-05-06", kDay - 2, 0);
  ExpectAge("SN00000119-05-06", kDay - 1, 1);
}

TEST(Age, DaysThatTheMonthLacksRunOn) {
  ExpectAge("SN00012019-02-31", 1551571200, 0);  // 2019-03-03
}

TEST(Age, IsReadFromTheClockEachTime) {
  const ScopedTimeZone timeZone(kUtc);
  NorvBatteryInfo info(TestBlock().SerialNumber("SN00012019-05-06").Data());
  {
    const ScopedClock clock(kMay6 + kDay);
    EXPECT_EQ(info.GetAge(), 1);
  }
  const ScopedClock clock(kMay6 + 2 * kDay);
  EXPECT_EQ(info.GetAge(), 2);
}

TEST(Age, AnAgeBeyondAnIntIsTheProcessorsIndefiniteValue) {
  const ScopedTimeZone timeZone(kUtc);
  const ScopedClock clock(std::time_t{1} << 62);
  NorvBatteryInfo info(TestBlock().SerialNumber("SN00012019-05-06").Data());
  EXPECT_EQ(info.GetAge(), INT_MIN);
}

TEST(Age, ExceptionsBecomeErrorsWithTheFunction) {
  for (const char* operation : {"Now", "LocalTimeValue"}) {
    const auto machine = simulator::SimulatedMachine::FromText(
        std::string(R"({"description": "test", "faults": [{"operation": ")") + operation + R"(", "throws": "int"}]})",
        "here");
    NorvBatteryInfo info(TestBlock().SerialNumber("SN00012019-05-06").Data());
    EXPECT_EQ(info.GetAge(), -1);
    EXPECT_TRUE(IsError(info.GetError(), ErrorCategory::Value, 42, "", "int", kGetAge)) << operation;
  }
}

}  // namespace
}  // namespace norv::test
