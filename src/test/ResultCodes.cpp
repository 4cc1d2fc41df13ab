#include "test/ResultCodes.h"

#include <array>

namespace norv::shared::battery::test {

namespace {

struct Label {
  int code;
  const char* text;
};

// The high digit of a code is the class of the verdict, the low digit its qualifier. For OK, CALIBRATE, WEAK and
// VERY_WEAK the qualifier is 1 no AC adapter, 2 several batteries, 3 temperature, 4 deep discharge, 5 low ambient
// temperature.
constexpr std::array<Label, 38> kLabels{{
    {0x00, "OK"},
    {0x01, "OK_NO_AC"},
    {0x02, "OK_MULTI_BATTERY"},
    {0x03, "OK_TEMP"},
    {0x04, "OK_DEEP_DISCHARGE"},
    {0x05, "OK_LOW_AMBIENT_TEMP"},
    {0x20, "CALIBRATE"},
    {0x21, "CALIBRATE_NO_AC"},
    {0x22, "CALIBRATE_MULTI_BATTERY"},
    {0x23, "CALIBRATE_TEMP"},
    {0x24, "CALIBRATE_DEEP_DISCHARGE"},
    {0x30, "WEAK"},
    {0x31, "WEAK_NO_AC"},
    {0x32, "WEAK_MULTI_BATTERY"},
    {0x33, "WEAK_TEMP"},
    {0x34, "WEAK_DEEP_DISCHARGE"},
    {0x40, "FAIL_BAD_CELL"},
    {0x41, "FAIL_TEMPERATURE_ALARM"},
    {0x42, "FAIL_BLOWN_FUSE"},
    {0x43, "FAIL_OVER_CHARGE_ALARM"},
    {0x44, "FAIL_BAD_DESIGN_VOLTAGE"},
    {0x45, "FAIL_NOT_CHARGING"},
    {0x46, "FAIL_VOLTAGE_OUT_OF_SPEC"},
    {0x47, "FAIL_CORRUPT_CAPACITY"},
    {0x48, "FAIL_TRICKLE_OVERCHARGE"},
    {0x49, "FAIL_LOW_VOLTAGE_DISABLE"},
    {0x60, "NO_BATTERY"},
    {0x70, "VERY_WEAK"},
    {0x71, "VERY_WEAK_NO_AC"},
    {0x72, "VERY_WEAK_MULTI_BATTERY"},
    {0x73, "VERY_WEAK_TEMP"},
    {0x74, "VERY_WEAK_DEEP_DISCHARGE"},
    {0x90, "UNKNOWN_INVALID_BATTERY_DATA"},
    {0x91, "UNKNOWN_BATTERY_COMM_FAILURE"},
    {0x92, "UNKNOWN_BATTERY_BUSY"},
    {0x93, "UNKNOWN_SOFTWARE_ERROR"},
    {0x94, "UNKNOWN_CHECK_ERROR"},
    {0x95, "UNKNOWN_BIOS_CHARGE_ERROR"},
}};

}  // namespace

const char* ResultLabel(int code) {
  for (const Label& label : kLabels) {
    if (label.code == code) {
      return label.text;
    }
  }
  return "NOT_DEFINED";
}

}  // namespace norv::shared::battery::test
