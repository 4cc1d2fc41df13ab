#include "decode/OfflinePlatform.h"

#include <gtest/gtest.h>

#include <string>

#include "battery/NorvBatteryInfo.h"

namespace norv::tool {
namespace {

// Counts what it is asked.
class CountingPlatform : public platform::PlatformWrapper {
 public:
  CountingPlatform() : PlatformWrapper(platform::Platform::Current()) {}
  long ConnectWmi(const std::wstring& /*path*/, std::unique_ptr<platform::WmiConnection>& /*connection*/) override {
    ++connections;
    return -1;
  }
  std::time_t Now() override { return 1000 + clockReads++; }
  std::time_t LocalTimeValue(const std::tm& calendarTime) override {
    ++timeValues;
    return PlatformWrapper::LocalTimeValue(calendarTime);
  }

  int connections = 0;
  int clockReads = 0;
  int timeValues = 0;
};

std::tm Midnight(int year, int month, int day) {
  std::tm calendar{};
  calendar.tm_year = year - 1900;
  calendar.tm_mon = month - 1;
  calendar.tm_mday = day;
  return calendar;
}

TEST(OfflinePlatform, RecordsAskForNoRates) {
  CountingPlatform machine;
  OfflinePlatform offline(machine, std::nullopt);
  const platform::ScopedPlatform scope(offline);
  const unsigned char block[128] = {};
  const shared::battery::NorvBatteryInfo battery(block);
  EXPECT_EQ(machine.connections, 0);
}

TEST(OfflinePlatform, ClockStandsStill) {
  CountingPlatform machine;
  OfflinePlatform offline(machine, std::nullopt);
  EXPECT_EQ(offline.Now(), 1000);
  EXPECT_EQ(offline.Now(), 1000);
  EXPECT_EQ(machine.clockReads, 1);
  OfflinePlatform dated(machine, Day{2024, 6, 1});
  EXPECT_EQ(dated.Now(), machine.LocalTimeValue(Midnight(2024, 6, 1)));
}

TEST(OfflinePlatform, EveryDayHasItsOwnTimeValueAndIsAskedForOnce) {
  CountingPlatform machine;
  OfflinePlatform offline(machine, std::nullopt);
  for (int round = 0; round < 2; ++round) {
    for (const int year : {2000, 2024, 2099}) {
      for (int month = 1; month <= 12; ++month) {
        for (int day = 1; day <= 31; ++day) {
          const std::tm calendar = Midnight(year, month, day);
          ASSERT_EQ(offline.LocalTimeValue(calendar), platform::Platform::Current().LocalTimeValue(calendar))
              << year << ' ' << month << ' ' << day;
        }
      }
    }
  }
  EXPECT_EQ(machine.timeValues, 3 * 12 * 31);
}

TEST(OfflinePlatform, OtherCalendarTimesAreTheMachines) {
  CountingPlatform machine;
  OfflinePlatform offline(machine, std::nullopt);
  std::tm noon = Midnight(2024, 6, 1);
  noon.tm_hour = 12;
  for (const std::tm& calendar : {noon, Midnight(1999, 12, 31), Midnight(2100, 1, 1), Midnight(19, 5, 6), std::tm{}}) {
    EXPECT_EQ(offline.LocalTimeValue(calendar), platform::Platform::Current().LocalTimeValue(calendar));
  }
}

TEST(Day, Shape) {
  ASSERT_TRUE(ParseDay("2024-02-29"));
  EXPECT_EQ(ParseDay("2024-02-29")->day, 29);
  for (const char* text : {"", "2024-2-29", "2024-13-01", "2024-00-01", "2024-01-32", "2024/01/01", "2024-01-0x",
                           "2024-01-011", "-024-01-01"}) {
    EXPECT_FALSE(ParseDay(text)) << text;
  }
}

TEST(Day, Existence) {
  EXPECT_TRUE(Exists({2024, 2, 29}));
  EXPECT_FALSE(Exists({2023, 2, 29}));
  EXPECT_FALSE(Exists({2024, 4, 31}));
}

}  // namespace
}  // namespace norv::tool
