#pragma once

#include "Report.h"
#include "TextLines.h"

namespace norv::tool {

// The sections of one battery.
void AddBattery(TextLines& lines, const BatteryReport& battery, bool cellSwellRequested);

}  // namespace norv::tool
