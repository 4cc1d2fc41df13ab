// The batteries of a Linux machine out of a folder. On Linux only: a library for another system does not have this
// class.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "battery/Export.h"
#include "norv/platform/Platform.h"

namespace norv::platform {

// Another platform, but for its batteries: they are read from a folder of the kernel's power supply class, such as a
// copy of another notebook's /sys/class/power_supply. A folder that is missing or empty is a machine without a battery.
// The other platform must outlive this one.
class NORV_BATTERY_API PowerSupplyPlatform : public PlatformWrapper {
 public:
  PowerSupplyPlatform(Platform& inner, const std::string& folder);
  ~PowerSupplyPlatform() override;

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override;
  std::string BatterySource() override;
  std::optional<std::uint32_t> DriverStateOfCharge(std::uint32_t slot) override;

 private:
  std::string folder_;
};

}  // namespace norv::platform
