#pragma once

#include <string>

#include "report/Report.h"

namespace norv::tool {

// A battery in order, in slot `slot`.
BatteryReport MakeBattery(int slot);

// A failure of the collection in the operation `operation`.
Failure MakeFailure(int category, std::int64_t code, const std::string& operation);

}  // namespace norv::tool
