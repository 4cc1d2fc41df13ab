// The system's batteries as the kernel's power supply class shows them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "../system-battery/SystemBattery.h"

namespace norv::platform::posix {

// Where the kernel keeps the class: a folder with a folder of attribute files for each supply.
inline constexpr const char* kPowerSupplyFolder = "/sys/class/power_supply";

// Reads the attribute `name` of the supply whose folder is open as `folder`: its text as it stands in the file. Nothing
// when it is missing, cannot be read, or is no ordinary file.
using AttributeReader = std::function<std::optional<std::string>(int folder, const char* name)>;
std::optional<std::string> ReadAttribute(int folder, const char* name);

// Reads a folder of the class: the running system's, or a copy of another machine's. Every call reads anew.
//
// In the kernel's own class each supply is a link to its device. In a copy, which anybody may have made, a link is
// followed where it leads to a place within the copied folder; one that leads out of it is no supply.
class PowerSupply {
 public:
  explicit PowerSupply(std::string folder, AttributeReader read = ReadAttribute);

  // The battery in `slot`: of the supplies that power the system, in the natural order of their names (BAT2 before
  // BAT10), the one at that place. A mouse's battery, a UPS and an empty bay do not count. An attribute that is missing
  // or cannot be read is not known. A battery that goes while it is read counts as gone before: the next one takes its
  // place. Nothing when there is no battery at that place.
  std::optional<SystemBattery> Read(std::uint32_t slot) const;

 private:
  std::string folder_;
  AttributeReader read_;
};

}  // namespace norv::platform::posix
