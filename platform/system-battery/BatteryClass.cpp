#include "BatteryClass.h"

namespace norv::platform {

namespace {

using Answers = BatteryClassAnswers;

// BATTERY_INFORMATION::Capabilities
constexpr std::uint32_t kSystemBattery = 0x80000000U;
constexpr std::uint32_t kCapacityRelative = 0x40000000U;
constexpr std::uint32_t kIsShortTerm = 0x20000000U;

// BATTERY_STATUS::PowerState
constexpr std::uint32_t kPowerOnLine = 0x1U;
constexpr std::uint32_t kPowerDischarging = 0x2U;
constexpr std::uint32_t kPowerCharging = 0x4U;

constexpr std::uint32_t kUnknown = 0xFFFFFFFFU;  // of a capacity, and of a voltage
constexpr auto kUnknownRate = static_cast<std::int32_t>(0x80000000U);

bool IsKnown(std::uint32_t number) {
  return number != 0 && number != kUnknown;
}

std::optional<std::int64_t> Known(std::uint32_t number) {
  return IsKnown(number) ? std::optional<std::int64_t>(number) : std::nullopt;
}

// The bytes up to the first that is 0, without the blanks that firmware fills up with.
std::string TextOf(const std::string& bytes) {
  const std::string text = bytes.substr(0, bytes.find('\0'));
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::optional<BatteryCapacity> Energy(std::optional<std::int64_t> amount) {
  return amount ? std::optional(BatteryCapacity{*amount, CapacityUnit::MilliwattHours}) : std::nullopt;
}

// A battery may well hold nothing.
std::optional<std::int64_t> RemainingAmount(const Answers::Status& status) {
  return status.capacity != kUnknown ? std::optional<std::int64_t>(status.capacity) : std::nullopt;
}

std::optional<std::uint32_t> StateOfCharge(const Answers& answers) {
  const std::uint32_t full = answers.information.fullChargedCapacity;
  const std::uint32_t remaining = answers.status.capacity;
  if (!IsKnown(full) || remaining == kUnknown) {
    return std::nullopt;
  }
  constexpr std::uint64_t kWhole = 100;
  return static_cast<std::uint32_t>((remaining * kWhole + full / 2) / full);
}

std::optional<ChargeState> StateOf(const Answers& answers) {
  const std::uint32_t power = answers.status.powerState;
  if ((power & kPowerCharging) != 0) {
    return ChargeState::Charging;
  }
  if ((power & kPowerDischarging) != 0) {
    return ChargeState::Discharging;
  }
  if ((power & kPowerOnLine) == 0) {
    return std::nullopt;
  }
  const std::uint32_t full = answers.information.fullChargedCapacity;
  const bool isFull = IsKnown(full) && answers.status.capacity != kUnknown && answers.status.capacity >= full;
  return isFull ? ChargeState::Full : ChargeState::NotCharging;
}

std::optional<BatteryDate> DateOf(const std::optional<Answers::ManufactureDate>& date) {
  constexpr int kMonths = 12;
  constexpr int kLongestMonth = 31;
  if (!date || date->month < 1 || date->month > kMonths || date->day < 1 || date->day > kLongestMonth) {
    return std::nullopt;
  }
  return BatteryDate{date->year, date->month, date->day};
}

}  // namespace

std::optional<SystemBattery> TranslateBatteryClass(const BatteryClassAnswers& answers) {
  const std::uint32_t capabilities = answers.information.capabilities;
  if ((capabilities & kSystemBattery) == 0 || (capabilities & kIsShortTerm) != 0) {
    return std::nullopt;
  }
  SystemBattery battery;
  battery.cycleCount = Known(answers.information.cycleCount);
  battery.temperature = answers.temperature ? Known(*answers.temperature) : std::nullopt;
  battery.voltage = Known(answers.status.voltage);
  battery.standInVoltage = battery.voltage;
  battery.state = StateOf(answers);
  battery.manufactureDate = DateOf(answers.manufactureDate);
  battery.serialNumber = answers.serialNumber;
  battery.manufacturer = answers.manufactureName;
  battery.deviceName = answers.deviceName;
  battery.technology = TextOf(answers.chemistry);
  if ((capabilities & kCapacityRelative) != 0) {
    battery.stateOfCharge = StateOfCharge(answers);
    return battery;
  }
  battery.designCapacity = Energy(Known(answers.information.designedCapacity));
  battery.fullChargeCapacity = Energy(Known(answers.information.fullChargedCapacity));
  battery.remainingCapacity = Energy(RemainingAmount(answers.status));
  if (answers.status.rate != kUnknownRate) {
    battery.power = answers.status.rate;
  }
  return battery;
}

}  // namespace norv::platform
