// The battery-information block, 128 bytes, in the order of memory.
#pragma once

#include "firmware/Block.h"

namespace norv::firmware {

inline constexpr int kCellCount = 4;

inline constexpr Field kDesignCapacity{0x00, 2};
inline constexpr Field kFullChargeCapacity{0x02, 2};
inline constexpr Field kRemainingCapacity{0x04, 2};
inline constexpr Field kMaxError{0x06, 2};
inline constexpr Field kCycleCount{0x08, 2};
inline constexpr Field kTemperature{0x0A, 2};
inline constexpr Field kVoltage{0x0C, 2};
inline constexpr Field kCurrent{0x0E, 2, true};  // negative while the battery discharges
inline constexpr Field kDesignVoltage{0x10, 2};
inline constexpr Field kBatteryStatus{0x12, 2};
inline constexpr Field kCellVoltages[kCellCount]{{0x14, 2}, {0x16, 2}, {0x18, 2}, {0x1A, 2}};
inline constexpr Field kSerialNumber{0x1C, 16};
inline constexpr Field kManufacturer{0x2C, 18};
inline constexpr Field kCtNumber{0x3E, 16};
// 0x4E, one byte: not decoded
inline constexpr Field kDeviceName{0x4F, 7};
// 0x56, six bytes: not decoded
inline constexpr Field kManufactureDate{0x5C, 2};  // a packed date
// 0x5E to the end, 34 bytes: not decoded

}  // namespace norv::firmware
