#include "norv/platform/PowerSupplyPlatform.h"

#include "PowerSupply.h"

namespace norv::platform {

PowerSupplyPlatform::PowerSupplyPlatform(Platform& inner, const std::string& folder)
    : PlatformWrapper(inner), folder_(folder) {
}

PowerSupplyPlatform::~PowerSupplyPlatform() = default;

std::int32_t PowerSupplyPlatform::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                                  const unsigned char* input, std::uint32_t inputSize,
                                                  unsigned char* output, std::uint32_t* returnCode) {
  return AnswerBiosCommand(first, second, third, input, inputSize, output, returnCode,
                           [this](std::uint32_t slot) { return posix::PowerSupply(folder_).Read(slot); });
}

std::string PowerSupplyPlatform::BatterySource() {
  return kSystemBatterySource;
}

std::optional<std::uint32_t> PowerSupplyPlatform::DriverStateOfCharge(std::uint32_t slot) {
  const std::optional<SystemBattery> battery = posix::PowerSupply(folder_).Read(slot);
  return battery.has_value() ? battery->stateOfCharge : std::nullopt;
}

}  // namespace norv::platform
