// The system's batteries as the kernel's power supply class shows them.
#pragma once

#include <cstdint>
#include <optional>

#include "../system-battery/SystemBattery.h"
#include "SupplyClass.h"

namespace norv::platform::posix {

// Where the kernel keeps the class.
inline constexpr const char* kPowerSupplyFolder = "/sys/class/power_supply";

// The battery in `slot`: of the supplies that power the system, in the natural order of their names (BAT2 before
// BAT10), the one at that place. A mouse's battery, a UPS and an empty bay do not count. An attribute that is missing
// or cannot be read is not known. A battery that goes while it is read counts as gone before: the next one takes its
// place. Nothing when there is no battery at that place.
std::optional<SystemBattery> ReadBattery(const SupplyClass& supplies, std::uint32_t slot);

// Whether there is anything that tells its type, as every supply of the kernel's does.
bool HasSupply(const SupplyClass& supplies);

}  // namespace norv::platform::posix
