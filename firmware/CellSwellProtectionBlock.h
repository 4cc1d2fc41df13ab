// The cell swell protection block, 128 bytes, in the order of memory: fourteen unsigned words, one after another.
#pragma once

#include "firmware/Block.h"

namespace norv::firmware {

inline constexpr Field kTimeCharge{0, 2};
inline constexpr Field kTimeDischarge{2, 2};
inline constexpr Field kTimeRelax{4, 2};
inline constexpr Field kTimeSleep{6, 2};
inline constexpr Field kTimeFullCharge{8, 2};
inline constexpr Field kTimeRsoc{10, 2};
inline constexpr Field kLevelATime{12, 2};
inline constexpr Field kLevelBTime{14, 2};
inline constexpr Field kLevelARunningTime{16, 2};
inline constexpr Field kLevelBRunningTime{18, 2};
inline constexpr Field kLevelATemperature1Time{20, 2};
inline constexpr Field kLevelBTemperature1Time{22, 2};
inline constexpr Field kLevelATemperature2Time{24, 2};
inline constexpr Field kLevelBTemperature2Time{26, 2};
// 28 to the end, 100 bytes: reserved

}  // namespace norv::firmware
