#pragma once

#include "Report.h"
#include "TextLines.h"

namespace norv::tool {

// The sections of what a battery-information block says.
void AddBlock(TextLines& lines, const BatteryReport& battery);

// The sections of one battery.
void AddBattery(TextLines& lines, const BatteryReport& battery, bool cellSwellRequested);

}  // namespace norv::tool
