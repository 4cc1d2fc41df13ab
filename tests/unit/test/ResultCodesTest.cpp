// Result codes of the battery test and their labels.
#include <gtest/gtest.h>

#include <climits>
#include <map>

#include "battery/NorvBatteryTestInfo.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryTestInfo;

// A test object with a verdict of one's choice.
class Verdict : public NorvBatteryTestInfo {
 public:
  explicit Verdict(int code) : code_(code) {}
  int GetBatteryTestResult() const override { return code_; }

 private:
  int code_;
};

const std::map<int, const char*> kLabels{
    {0, "OK"},
    {1, "OK_NO_AC"},
    {2, "OK_MULTI_BATTERY"},
    {3, "OK_TEMP"},
    {4, "OK_DEEP_DISCHARGE"},
    {5, "OK_LOW_AMBIENT_TEMP"},
    {32, "CALIBRATE"},
    {33, "CALIBRATE_NO_AC"},
    {34, "CALIBRATE_MULTI_BATTERY"},
    {35, "CALIBRATE_TEMP"},
    {36, "CALIBRATE_DEEP_DISCHARGE"},
    {48, "WEAK"},
    {49, "WEAK_NO_AC"},
    {50, "WEAK_MULTI_BATTERY"},
    {51, "WEAK_TEMP"},
    {52, "WEAK_DEEP_DISCHARGE"},
    {64, "FAIL_BAD_CELL"},
    {65, "FAIL_TEMPERATURE_ALARM"},
    {66, "FAIL_BLOWN_FUSE"},
    {67, "FAIL_OVER_CHARGE_ALARM"},
    {68, "FAIL_BAD_DESIGN_VOLTAGE"},
    {69, "FAIL_NOT_CHARGING"},
    {70, "FAIL_VOLTAGE_OUT_OF_SPEC"},
    {71, "FAIL_CORRUPT_CAPACITY"},
    {72, "FAIL_TRICKLE_OVERCHARGE"},
    {73, "FAIL_LOW_VOLTAGE_DISABLE"},
    {96, "NO_BATTERY"},
    {112, "VERY_WEAK"},
    {113, "VERY_WEAK_NO_AC"},
    {114, "VERY_WEAK_MULTI_BATTERY"},
    {115, "VERY_WEAK_TEMP"},
    {116, "VERY_WEAK_DEEP_DISCHARGE"},
    {144, "UNKNOWN_INVALID_BATTERY_DATA"},
    {145, "UNKNOWN_BATTERY_COMM_FAILURE"},
    {146, "UNKNOWN_BATTERY_BUSY"},
    {147, "UNKNOWN_SOFTWARE_ERROR"},
    {148, "UNKNOWN_CHECK_ERROR"},
    {149, "UNKNOWN_BIOS_CHARGE_ERROR"},
};

TEST(ResultCodes, EachHasItsLabel) {
  EXPECT_EQ(kLabels.size(), 38U);
  for (const auto& [code, label] : kLabels) {
    EXPECT_STREQ(Verdict(code).GetBatteryTestResultLabel(), label) << code;
  }
}

TEST(ResultCodes, EveryOtherNumberIsNotDefined) {
  for (int code = -300; code < 600; ++code) {
    if (kLabels.find(code) == kLabels.end()) {
      EXPECT_STREQ(Verdict(code).GetBatteryTestResultLabel(), "NOT_DEFINED") << code;
    }
  }
  for (const int code : {INT_MIN, INT_MAX, 0x100, 0x10040}) {
    EXPECT_STREQ(Verdict(code).GetBatteryTestResultLabel(), "NOT_DEFINED") << code;
  }
}

TEST(ResultCodes, ANewTestObjectHasNoVerdict) {
  const NorvBatteryTestInfo info;
  EXPECT_EQ(info.GetBatteryTestResult(), -1);
  EXPECT_STREQ(info.GetBatteryTestResultLabel(), "NOT_DEFINED");
  EXPECT_STREQ(info.GetBatteryTestVersion(), "0.0.0.0");
  EXPECT_FALSE(info.GetError());
}

}  // namespace
}  // namespace norv::test
