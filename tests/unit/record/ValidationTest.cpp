// Whether a record describes a real battery.
#include <gtest/gtest.h>

#include <string>

#include "battery/NorvBatteryInfo.h"
#include "unit/support/LogCapture.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;
using shared::error::ErrorCategory;

testing::AssertionResult IsRefused(const TestBlock& block, const char* message) {
  NorvBatteryInfo info(block.Data());
  if (info.IsValid()) {
    return testing::AssertionFailure() << "is valid";
  }
  return IsError(info.GetError(), ErrorCategory::Value, -1, message, "int", "");
}

TEST(Validation, AcceptsARealBattery) {
  NorvBatteryInfo info(HealthyBlock().Data());
  EXPECT_TRUE(info.IsValid());
  EXPECT_FALSE(info.GetError());
}

TEST(Validation, NamesTheDefect) {
  EXPECT_TRUE(IsRefused(HealthyBlock().Manufacturer(""), "Invalid battery manufacturer"));
  EXPECT_TRUE(IsRefused(HealthyBlock().SerialNumber(""), "Invalid battery serial number"));
  EXPECT_TRUE(IsRefused(HealthyBlock().DeviceName(""), "Invalid battery device name"));
  EXPECT_TRUE(IsRefused(HealthyBlock().DeviceName("AB-1"), "Invalid battery device name"));
  EXPECT_TRUE(IsRefused(HealthyBlock().CtNumber(""), "Invalid battery CT number"));
}

TEST(Validation, TheFirstDefectWins) {
  TestBlock block = HealthyBlock().CtNumber("");
  EXPECT_TRUE(IsRefused(block, "Invalid battery CT number"));
  EXPECT_TRUE(IsRefused(block.DeviceName(""), "Invalid battery device name"));
  EXPECT_TRUE(IsRefused(block.SerialNumber(""), "Invalid battery serial number"));
  EXPECT_TRUE(IsRefused(block.Manufacturer(""), "Invalid battery manufacturer"));
}

TEST(Validation, TheCtNumberIsASixAndThirteenLettersOrDigits) {
  for (const char* good : {"6ABCDEFGHIJKLM", "60000000000000", "6zZaA09yY12345"}) {
    NorvBatteryInfo info(HealthyBlock().CtNumber(good).Data());
    EXPECT_TRUE(info.IsValid()) << good;
  }
  for (const char* bad :
       {"6ABCDEFGHIJKL", "6ABCDEFGHIJKLMN", "6ABCDEFGHIJKLMNO", "5ABCDEFGHIJKLM", "AABCDEFGHIJKLM", "6ABCDEF HIJKLM",
        "6ABCDEF-HIJKLM", "6ABCDEFGHIJKL ", " 6ABCDEFGHIJKL", "6ABCDEFGHIJKL\n", "6ABCDEFGHIJK\xC4M", "6"}) {
    EXPECT_TRUE(IsRefused(HealthyBlock().CtNumber(bad), "Invalid battery CT number")) << bad;
  }
}

TEST(Validation, OnlyEmptinessOfTheOtherTextsMatters) {
  NorvBatteryInfo info(HealthyBlock().Manufacturer(" ").SerialNumber("\x01").DeviceName("0").Data());
  EXPECT_TRUE(info.IsValid());
}

TEST(Validation, AFailureStays) {
  NorvBatteryInfo info(HealthyBlock().Manufacturer("").Data());
  EXPECT_FALSE(info.IsValid());
  EXPECT_FALSE(info.IsValid());
  // A sound record takes the error over and cannot lose it any more.
  NorvBatteryInfo copy(info);
  EXPECT_FALSE(copy.IsValid());
}

TEST(Validation, AFailureOfTheAgeMakesTheRecordInvalid) {
  NorvBatteryInfo info(HealthyBlock().SerialNumber("SHORT").Data());
  EXPECT_TRUE(info.IsValid());
  EXPECT_EQ(info.GetAge(), -1);
  EXPECT_FALSE(info.IsValid());
  EXPECT_STREQ(info.GetError().GetMessageText(), "Invalid battery serial number");
}

}  // namespace
}  // namespace norv::test
