// The status word.
#pragma once

#include "battery/NorvBatteryStatus.h"

namespace norv::shared::battery::record {

// Decodes the lower 16 bits of `word`.
NorvBatteryStatus DecodeStatus(int word);

}  // namespace norv::shared::battery::record
