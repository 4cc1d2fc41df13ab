// The cell swell protection block, 128 bytes, as the firmware lays it out: fourteen unsigned 16-bit words,
// little-endian, one after another.
#pragma once

#include "record/Block.h"

namespace norv::shared::battery::access {

inline constexpr record::Field kTimeCharge{0, 2};
inline constexpr record::Field kTimeDischarge{2, 2};
inline constexpr record::Field kTimeRelax{4, 2};
inline constexpr record::Field kTimeSleep{6, 2};
inline constexpr record::Field kTimeFullCharge{8, 2};
inline constexpr record::Field kTimeRSOC{10, 2};
inline constexpr record::Field kCSPATime{12, 2};
inline constexpr record::Field kCSPBTime{14, 2};
inline constexpr record::Field kCSPARunningTime{16, 2};
inline constexpr record::Field kCSPBRunningTime{18, 2};
inline constexpr record::Field kCSPATemp1Time{20, 2};
inline constexpr record::Field kCSPBTemp1Time{22, 2};
inline constexpr record::Field kCSPATemp2Time{24, 2};
inline constexpr record::Field kCSPBTemp2Time{26, 2};
// 28 to the end, 100 bytes: reserved

}  // namespace norv::shared::battery::access
