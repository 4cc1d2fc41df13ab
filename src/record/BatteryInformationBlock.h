// The battery-information block, 128 bytes, as the firmware lays it out. Words are unsigned, 16 bits, little-endian;
// texts are 8-bit characters that need no NUL where they fill their field.
#pragma once

#include "record/Block.h"

namespace norv::shared::battery::record {

inline constexpr std::size_t kBlockSize = 128;

inline constexpr Field kDesignCapacity{0x00, 2};
inline constexpr Field kFullChargeCapacity{0x02, 2};
inline constexpr Field kRemainingCapacity{0x04, 2};
inline constexpr Field kMaxError{0x06, 2};
inline constexpr Field kCycleCount{0x08, 2};
inline constexpr Field kTemperature{0x0A, 2};
inline constexpr Field kVoltage{0x0C, 2};
inline constexpr Field kCurrent{0x0E, 2};
inline constexpr Field kDesignVoltage{0x10, 2};
inline constexpr Field kBatteryStatus{0x12, 2};
inline constexpr Field kCellVoltages[]{{0x14, 2}, {0x16, 2}, {0x18, 2}, {0x1A, 2}};
inline constexpr Field kSerialNumber{0x1C, 16};
inline constexpr Field kManufacturer{0x2C, 18};
inline constexpr Field kCtNumber{0x3E, 16};
// 0x4E, one byte: not decoded
inline constexpr Field kDeviceName{0x4F, 7};
// 0x56, six bytes: not decoded
inline constexpr Field kManufactureDate{0x5C, 2};
// 0x5E to the end, 34 bytes: not decoded

}  // namespace norv::shared::battery::record
