#pragma once

#include "battery/NorvBatteryInfo.h"
#include "report/Report.h"

namespace norv::tool {

struct ReadOptions {
  bool cellSwell = false;
  bool test = false;
};

// Reads both slots through the library and, if asked to, runs the battery test, which takes as long as the test program
// does. The current platform answers.
Report ReadReport(const Source& source, const ReadOptions& options);

// Everything that a record says. It need not be of this machine. `told`, which may be null, is what its source told.
BatteryReport ReadBattery(int slot, shared::battery::NorvBatteryInfo& battery,
                          const shared::battery::fields::Told* told = nullptr);

}  // namespace norv::tool
