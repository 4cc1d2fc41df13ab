// The batteries that Windows knows, through its battery class driver.
#pragma once

#include <cstdint>
#include <optional>

#include "../system-battery/SystemBattery.h"

namespace norv::platform::windows {

// The computer's own battery number `slot`, counted from 0 in the order in which Windows lists its battery devices;
// bays without a battery, UPS and the batteries of other devices are passed over. Nothing when there is none, or when
// it went while it was read.
std::optional<SystemBattery> ReadBatteryDevice(std::uint32_t slot);

}  // namespace norv::platform::windows
