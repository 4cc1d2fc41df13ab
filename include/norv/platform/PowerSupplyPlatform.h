// The batteries of a Linux machine out of a folder or a listing. On Linux only: a library for another system does not
// have this class.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "battery/Export.h"
#include "norv/platform/Platform.h"

namespace norv::platform {

// Another platform, but for its batteries: they are read from a folder of the kernel's power supply class, such as a
// copy of another notebook's /sys/class/power_supply, or from a listing of one, a text file of at most 1 MiB with a
// line such as "BAT0/capacity:97" for each attribute. Each question is answered anew from what the folder or the file
// holds then. One that is missing, empty or broken is a machine without a battery. The other platform must outlive this
// one.
class NORV_BATTERY_API PowerSupplyPlatform : public PlatformWrapper {
 public:
  PowerSupplyPlatform(Platform& inner, const std::string& path);
  ~PowerSupplyPlatform() override;

  // Why nothing is read from `path`, for people, with the line of a listing that is broken. Nothing for a folder or a
  // listing with supplies in it, and for an empty folder.
  static std::optional<std::string> Defect(const std::string& path);

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override;
  std::string BatterySource() override;
  std::optional<std::uint32_t> DriverStateOfCharge(std::uint32_t slot) override;
  SlotDescription DescribeSlot(std::uint32_t slot) override;

 private:
  std::string path_;
};

}  // namespace norv::platform
