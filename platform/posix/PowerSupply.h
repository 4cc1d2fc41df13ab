// The system's batteries as the kernel's power supply class shows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "../system-battery/SystemBattery.h"

namespace norv::platform::posix {

// Where the kernel keeps the class: a folder with a folder of attribute files for each supply.
inline constexpr const char* kPowerSupplyFolder = "/sys/class/power_supply";

// Reads a folder of the class: the running system's, or a copy of another machine's. Every call reads anew.
class PowerSupply {
 public:
  explicit PowerSupply(std::string folder);

  // The battery in `slot`: of the supplies that power the system, in the natural order of their names (BAT2 before
  // BAT10), the one at that place. A mouse's battery, a UPS and an empty bay do not count. An attribute that is missing
  // or cannot be read is not known. A battery that goes while it is read counts as gone before: the next one takes its
  // place. Nothing when there is no battery at that place.
  std::optional<SystemBattery> Read(std::uint32_t slot) const;

 private:
  std::string folder_;
};

}  // namespace norv::platform::posix
