#include "PowerSupply.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace norv::platform::posix {

namespace {

struct StateName {
  std::string_view name;
  ChargeState state;
};

// "Unknown" is the only other one.
constexpr std::array<StateName, 4> kStates{{
    {"Charging", ChargeState::Charging},
    {"Discharging", ChargeState::Discharging},
    {"Full", ChargeState::Full},
    {"Not charging", ChargeState::NotCharging},
}};

// Firmware pads its texts with blanks, the kernel ends each with a line break.
std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kPadding(" \t\r\n\0", 5);
  const std::size_t first = text.find_first_not_of(kPadding);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(kPadding) - first + 1);
}

class Supply {
 public:
  explicit Supply(AttributeReader read) : read_(std::move(read)) {}

  // Nothing when the attribute is missing or cannot be read.
  std::optional<std::string> Text(const char* attribute) const {
    const auto text = read_(attribute);
    return text.has_value() ? std::optional<std::string>(Trimmed(*text)) : std::nullopt;
  }

  std::optional<std::int64_t> Number(const char* attribute) const {
    const std::string text = Text(attribute).value_or("");
    std::int64_t number = 0;
    const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = failure == std::errc() && rest == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
  }

  // The class counts in millionths; a thousandth is what a battery's own gauge tells.
  std::optional<std::int64_t> Thousandths(const char* attribute) const {
    const std::optional<std::int64_t> number = Number(attribute);
    if (!number.has_value()) {
      return std::nullopt;
    }
    const std::int64_t rest = *number % 1000;
    return *number / 1000 + (rest >= 500 ? 1 : 0) - (rest <= -500 ? 1 : 0);
  }

  // A bay without a battery may stay in the class with "present" at 0. Batteries of mice and headsets have a scope.
  bool IsSystemBattery() const {
    return Text("type") == "Battery" && Text("scope") != "Device" && Number("present") != 0;
  }

 private:
  AttributeReader read_;
};

// What does not change while one battery stays in one state. It is read before everything else and after it.
struct Constants {
  bool isSystemBattery = false;
  std::optional<std::string> status;
  std::optional<std::string> serialNumber;
  std::optional<std::string> manufacturer;
  std::optional<std::string> modelName;

  bool operator==(const Constants&) const = default;
};

Constants ReadConstants(const Supply& supply) {
  return {supply.IsSystemBattery(), supply.Text("status"), supply.Text("serial_number"), supply.Text("manufacturer"),
          supply.Text("model_name")};
}

std::optional<ChargeState> State(const std::optional<std::string>& status) {
  const auto* const found =
      std::find_if(kStates.begin(), kStates.end(), [&](const StateName& entry) { return entry.name == status; });
  return found != kStates.end() ? std::optional(found->state) : std::nullopt;
}

// A driver tells charge or energy. Where it tells both, the charge needs no conversion.
std::optional<BatteryCapacity> Capacity(const Supply& supply, const char* charge, const char* energy) {
  if (const auto amount = supply.Thousandths(charge)) {
    return BatteryCapacity{*amount, CapacityUnit::MilliampereHours};
  }
  if (const auto amount = supply.Thousandths(energy)) {
    return BatteryCapacity{*amount, CapacityUnit::MilliwattHours};
  }
  return std::nullopt;
}

// From 0.1 degrees Celsius. 0 is 2731.5 in 0.1 K; the half is rounded up.
std::optional<std::int64_t> Temperature(const Supply& supply) {
  constexpr std::int64_t kZeroCelsius = 2732;
  const std::optional<std::int64_t> told = supply.Number("temp");
  if (!told.has_value()) {
    return std::nullopt;
  }
  return std::min(*told, std::numeric_limits<std::int64_t>::max() - kZeroCelsius) + kZeroCelsius;
}

// A driver that does not know the date may tell the year 0.
std::optional<BatteryDate> ManufactureDate(const Supply& supply) {
  const auto part = [&supply](const char* attribute) {
    constexpr std::int64_t kLargest = 9999;
    return static_cast<int>(std::clamp<std::int64_t>(supply.Number(attribute).value_or(0), -1, kLargest));
  };
  const BatteryDate date{part("manufacture_year"), part("manufacture_month"), part("manufacture_day")};
  return date.year != 0 ? std::optional(date) : std::nullopt;
}

// "Unknown" is the kernel's own mark.
std::string Technology(const Supply& supply) {
  const std::string told = supply.Text("technology").value_or("");
  return told != "Unknown" ? told : "";
}

std::optional<std::uint32_t> StateOfCharge(const Supply& supply) {
  const std::optional<std::int64_t> percent = supply.Number("capacity");
  const bool fits = percent.has_value() && *percent >= 0 && *percent <= std::numeric_limits<std::uint32_t>::max();
  return fits ? std::optional(static_cast<std::uint32_t>(*percent)) : std::nullopt;
}

SystemBattery Describe(const Supply& supply, const Constants& constants) {
  SystemBattery battery;
  battery.designCapacity = Capacity(supply, "charge_full_design", "energy_full_design");
  battery.fullChargeCapacity = Capacity(supply, "charge_full", "energy_full");
  battery.remainingCapacity = Capacity(supply, "charge_now", "energy_now");
  battery.cycleCount = supply.Number("cycle_count");
  battery.temperature = Temperature(supply);
  battery.voltage = supply.Thousandths("voltage_now");
  battery.designVoltage = supply.Thousandths("voltage_min_design");
  battery.current = supply.Thousandths("current_now");
  battery.power = supply.Thousandths("power_now");
  battery.state = State(constants.status);
  battery.manufactureDate = ManufactureDate(supply);
  battery.serialNumber = constants.serialNumber.value_or("");
  battery.manufacturer = constants.manufacturer.value_or("");
  battery.deviceName = constants.modelName.value_or("");
  battery.technology = Technology(supply);
  battery.stateOfCharge = StateOfCharge(supply);
  return battery;
}

// One reading shows one battery in one state: where it was pulled, exchanged or plugged in meanwhile, it is read again.
// A battery that never rests counts as none.
std::optional<SystemBattery> ReadSettled(const SupplyClass& supplies, const std::string& name) {
  constexpr int kAttempts = 5;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const Supply supply(supplies.Open(name));
    const Constants before = ReadConstants(supply);
    if (!before.isSystemBattery) {
      return std::nullopt;
    }
    SystemBattery battery = Describe(supply, before);
    if (ReadConstants(supply) == before) {
      return battery;
    }
  }
  return std::nullopt;
}

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

// Takes a run of digits, or one other character, off the front.
std::string_view TakePiece(std::string_view& text) {
  const auto* const end = std::find_if_not(text.begin(), text.end(), IsDigit);
  const auto length = std::max<std::size_t>(static_cast<std::size_t>(end - text.begin()), 1);
  const std::string_view piece = text.substr(0, length);
  text.remove_prefix(length);
  return piece;
}

// Numbers within names count as numbers: BAT2 comes before BAT10.
bool ComesBefore(std::string_view left, std::string_view right) {
  while (!left.empty() && !right.empty()) {
    const std::string_view leftPiece = TakePiece(left);
    const std::string_view rightPiece = TakePiece(right);
    if (leftPiece == rightPiece) {
      continue;
    }
    const bool areNumbers = IsDigit(leftPiece.front()) && IsDigit(rightPiece.front());
    return areNumbers && leftPiece.size() != rightPiece.size() ? leftPiece.size() < rightPiece.size()
                                                               : leftPiece < rightPiece;
  }
  return left.empty() && !right.empty();
}

}  // namespace

bool HasSupply(const SupplyClass& supplies) {
  const std::vector<std::string> names = supplies.Names();
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& name) { return supplies.Open(name)("type").has_value(); });
}

std::optional<SystemBattery> ReadBattery(const SupplyClass& supplies, std::uint32_t slot) {
  std::vector<std::string> names = supplies.Names();
  std::sort(names.begin(), names.end(), ComesBefore);
  std::uint32_t place = 0;
  for (const std::string& name : names) {
    if (!Supply(supplies.Open(name)).IsSystemBattery()) {
      continue;
    }
    if (place < slot) {
      ++place;
    } else if (auto battery = ReadSettled(supplies, name)) {
      return battery;
    }
  }
  return std::nullopt;
}

}  // namespace norv::platform::posix
