#pragma once

#include <optional>
#include <string>

#include "output/TextLines.h"
#include "report/Report.h"

namespace norv::tool {

// What a percentage is of.
struct Divisor {
  norv_battery_field field;
  const char* name;
};

// Nothing for a field that is no percentage of another.
std::optional<Divisor> FindDivisor(norv_battery_field percentage);

// Why a percentage of `divisorName` is none.
std::string WhyNotComputable(bool isDivisorZero, const std::string& divisorName);

// The sections of what a battery-information block says.
void AddBlock(TextLines& lines, const BatteryReport& battery);

// The sections of one battery.
void AddBattery(TextLines& lines, const BatteryReport& battery, bool cellSwellRequested);

}  // namespace norv::tool
