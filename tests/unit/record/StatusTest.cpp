// The decoded status word.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <string>

#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryStatus.h"
#include "record/Status.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryStatus;
using shared::battery::record::DecodeStatus;

// The flags as hosts see them: one-byte booleans in bit order, right behind the pointer.
static_assert(sizeof(NorvBatteryStatus) == sizeof(void*) + 16 && sizeof(bool) == 1);
static_assert(offsetof(NorvBatteryStatus, errorCode) == 0);
static_assert(offsetof(NorvBatteryStatus, fullyDischarged) == sizeof(void*) + 0);
static_assert(offsetof(NorvBatteryStatus, fullyCharged) == sizeof(void*) + 1);
static_assert(offsetof(NorvBatteryStatus, discharging) == sizeof(void*) + 2);
static_assert(offsetof(NorvBatteryStatus, initialized) == sizeof(void*) + 3);
static_assert(offsetof(NorvBatteryStatus, remainingTimeAlarm) == sizeof(void*) + 4);
static_assert(offsetof(NorvBatteryStatus, remainingCapacityAlarm) == sizeof(void*) + 5);
static_assert(offsetof(NorvBatteryStatus, reservedBit10) == sizeof(void*) + 6);
static_assert(offsetof(NorvBatteryStatus, terminateDischargeAlarm) == sizeof(void*) + 7);
static_assert(offsetof(NorvBatteryStatus, overTemperatureAlarm) == sizeof(void*) + 8);
static_assert(offsetof(NorvBatteryStatus, reservedBit13) == sizeof(void*) + 9);
static_assert(offsetof(NorvBatteryStatus, terminateChargeAlarm) == sizeof(void*) + 10);
static_assert(offsetof(NorvBatteryStatus, overChargedAlarm) == sizeof(void*) + 11);

// The twelve flags as a number, bit 4 to 15, read from their places in the structure.
int Flags(const NorvBatteryStatus& status) {
  const char* const first = reinterpret_cast<const char*>(&status.fullyDischarged);
  int flags = 0;
  for (int bit = 4; bit < 16; ++bit) {
    flags |= first[bit - 4] << bit;
  }
  return flags;
}

TEST(Status, EachFlagIsItsBit) {
  for (int bit = 4; bit < 16; ++bit) {
    EXPECT_EQ(Flags(DecodeStatus(1 << bit)), 1 << bit) << bit;
    EXPECT_EQ(Flags(DecodeStatus(0xFFFF ^ (1 << bit))), 0xFFF0 ^ (1 << bit)) << bit;
  }
}

TEST(Status, ErrorCodesHaveTheirTexts) {
  const char* const texts[]{
      "OK",           "Busy",         "ReservedCommand", "UnsupportedCommand", "AccessDenied", "Overflow/Underflow",
      "BadSize",      "UnknownError", "UnknownError",    "UnknownError",       "UnknownError", "UnknownError",
      "UnknownError", "UnknownError", "UnknownError",    "UnknownError"};
  for (int code = 0; code < 16; ++code) {
    EXPECT_STREQ(DecodeStatus(code).errorCode, texts[code]) << code;
    EXPECT_STREQ(DecodeStatus(code | 0xFFF0).errorCode, texts[code]) << code;
    EXPECT_EQ(Flags(DecodeStatus(code)), 0) << code;
  }
}

TEST(Status, DischargingAndInitialized) {
  const NorvBatteryStatus status = NorvBatteryInfo(TestBlock().StatusWord(0x00C0).Data()).GetStatus();
  EXPECT_STREQ(status.errorCode, "OK");
  EXPECT_TRUE(status.discharging);
  EXPECT_TRUE(status.initialized);
  EXPECT_EQ(Flags(status), 0x00C0);
}

TEST(Status, AllBitsAtOnce) {
  const NorvBatteryStatus status = NorvBatteryInfo(TestBlock().StatusWord(0xFFFF).Data()).GetStatus();
  EXPECT_STREQ(status.errorCode, "UnknownError");
  EXPECT_EQ(Flags(status), 0xFFF0);
}

TEST(Status, IgnoresTheUpperHalf) {
  EXPECT_STREQ(DecodeStatus(0x10000).errorCode, "OK");
  EXPECT_EQ(Flags(DecodeStatus(0x10000)), 0);
  EXPECT_EQ(Flags(DecodeStatus(std::numeric_limits<int>::min() | 0x0036)), 0x0030);
  EXPECT_STREQ(DecodeStatus(std::numeric_limits<int>::min() | 0x0036).errorCode, "BadSize");
  EXPECT_EQ(Flags(DecodeStatus(-1)), 0xFFF0);
}

TEST(Status, AsksForTheWordThroughTheVirtualTable) {
  class Other : public NorvBatteryInfo {
   public:
    using NorvBatteryInfo::NorvBatteryInfo;
    int GetStatusWord() const override { return 0x0025; }
  };
  const NorvBatteryStatus status = Other(TestBlock().Data()).GetStatus();
  EXPECT_STREQ(status.errorCode, "Overflow/Underflow");
  EXPECT_TRUE(status.fullyCharged);
}

}  // namespace
}  // namespace norv::test
