// Records of blocks that need not be this machine's.
#pragma once

#include <memory>

#include "battery/NorvBatteryInfo.h"
#include "record/OperatingSystemRates.h"

namespace norv::shared::battery::record {

struct RecordMaker {
  // The record of the 128 bytes at `block`. Nothing is asked of the operating system.
  static std::unique_ptr<NorvBatteryInfo> Make(const unsigned char* block, const Rates& rates);
};

}  // namespace norv::shared::battery::record
