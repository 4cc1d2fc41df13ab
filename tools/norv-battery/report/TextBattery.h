#pragma once

#include <string>

#include "output/TextLines.h"
#include "report/Report.h"

namespace norv::tool {

// Why a percentage of `divisorName` is none.
std::string WhyNotComputable(bool isDivisorZero, const std::string& divisorName);

// The sections of what a battery-information block says.
void AddBlock(TextLines& lines, const BatteryReport& battery);

// The sections of one battery.
void AddBattery(TextLines& lines, const BatteryReport& battery, bool cellSwellRequested);

}  // namespace norv::tool
