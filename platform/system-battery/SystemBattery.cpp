#include "SystemBattery.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <utility>

#include "../SystemCodes.h"
#include "base/Utf8.h"
#include "firmware/BatteryInformationBlock.h"
#include "firmware/Commands.h"
#include "firmware/PackedDate.h"

namespace norv::platform {

namespace {

using firmware::Field;

constexpr std::int64_t kLargestWord = 0xFFFF;
constexpr std::int64_t kLargestSignedWord = 0x7FFF;
constexpr std::int64_t kSmallestSignedWord = -0x8000;

constexpr unsigned int kFullyDischarged = 1U << 4U;
constexpr unsigned int kFullyCharged = 1U << 5U;
constexpr unsigned int kDischarging = 1U << 6U;
constexpr unsigned int kInitialized = 1U << 7U;

// To the nearest whole number, halves away from 0. `divisor` is positive.
std::int64_t DivideRounded(std::int64_t dividend, std::int64_t divisor) {
  const std::int64_t half = divisor / 2;
  return (dividend < 0 ? dividend - half : dividend + half) / divisor;
}

// `amount` thousand times, by `divisor`: milliwatt-hours by millivolts are a thousandth of milliampere-hours. An amount
// that no battery has is not multiplied beyond what a number can hold; it is too large for its word in any case.
std::int64_t ThousandfoldBy(std::int64_t amount, std::int64_t divisor) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 2000;
  return DivideRounded(std::clamp(amount, -kMost, kMost) * 1000, divisor);
}

bool IsPositive(const std::optional<std::int64_t>& number) {
  return number.has_value() && *number > 0;
}

// What relates the energy of a battery to its charge.
std::optional<std::int64_t> EnergyVoltage(const SystemBattery& battery) {
  return IsPositive(battery.designVoltage) ? battery.designVoltage : battery.standInVoltage;
}

std::optional<std::int64_t> MilliampereHours(const SystemBattery& battery,
                                             const std::optional<BatteryCapacity>& capacity) {
  if (!capacity.has_value() || capacity->unit == CapacityUnit::MilliampereHours) {
    return capacity.has_value() ? std::optional(capacity->amount) : std::nullopt;
  }
  const std::optional<std::int64_t> voltage = EnergyVoltage(battery);
  return IsPositive(voltage) ? std::optional(ThousandfoldBy(capacity->amount, *voltage)) : std::nullopt;
}

bool IsEnergy(const std::optional<BatteryCapacity>& capacity) {
  return capacity.has_value() && capacity->unit == CapacityUnit::MilliwattHours;
}

// Capacities that another moment, with another voltage, would have given otherwise.
bool AreCapacitiesOfTheMoment(const SystemBattery& battery) {
  return !IsPositive(battery.designVoltage) && IsPositive(battery.standInVoltage) &&
         (IsEnergy(battery.designCapacity) || IsEnergy(battery.fullChargeCapacity) ||
          IsEnergy(battery.remainingCapacity));
}

std::optional<std::int64_t> ToldCurrent(const SystemBattery& battery) {
  if (battery.current.has_value() || !battery.power.has_value() || !IsPositive(battery.voltage)) {
    return battery.current;
  }
  return ThousandfoldBy(*battery.power, *battery.voltage);
}

// Drivers differ in the sign of a current or a power: the state decides it.
std::optional<std::int64_t> Signed(const std::optional<std::int64_t>& told, const std::optional<ChargeState>& state) {
  if (!told.has_value() || *told == std::numeric_limits<std::int64_t>::min()) {
    return told;
  }
  if (state == ChargeState::Discharging) {
    return -std::abs(*told);
  }
  return state == ChargeState::Charging ? std::abs(*told) : *told;
}

bool IsZero(const std::optional<BatteryCapacity>& capacity) {
  return capacity.has_value() && capacity->amount == 0;
}

unsigned int StatusWord(const SystemBattery& battery) {
  const bool isInitialized = battery.fullChargeCapacity.has_value() && battery.fullChargeCapacity->amount > 0;
  unsigned int word = isInitialized ? kInitialized : 0;
  word |= battery.state == ChargeState::Discharging ? kDischarging : 0;
  word |= battery.state == ChargeState::Full ? kFullyCharged : 0;
  word |= isInitialized && IsZero(battery.remainingCapacity) ? kFullyDischarged : 0;
  return word;
}

std::optional<std::int64_t> Energy(const std::optional<BatteryCapacity>& capacity) {
  return IsEnergy(capacity) ? std::optional(capacity->amount) : std::nullopt;
}

// The length of the longest start of `text` that fits into `width` bytes and does not end within a UTF-8 character.
// Bytes that are no UTF-8 are cut where the field ends.
std::size_t CutLength(std::string_view text, std::size_t width) {
  const auto continues = [&](std::size_t position) {
    return (static_cast<unsigned char>(text[position]) & 0xC0U) == 0x80U;
  };
  if (text.size() <= width) {
    return text.size();
  }
  constexpr std::size_t kMostContinuations = 3;
  std::size_t length = width;
  while (length > 0 && width - length < kMostContinuations && continues(length)) {
    --length;
  }
  const bool startsCharacter = (static_cast<unsigned char>(text[length]) & 0xC0U) == 0xC0U;
  return length < width && startsCharacter ? length : width;
}

// Lays fields into a block and keeps what did not fit.
class BlockWriter {
 public:
  void Store(Field field, std::uint16_t word) { firmware::PutWord(filled_.block.data(), field, word); }

  void Tell(Field field) {
    for (std::size_t place = field.offset; place < field.End(); ++place) {
      filled_.told.set(place);
    }
  }

  void Number(Field field, const char* name, const std::optional<std::int64_t>& number) {
    Clamped(field, name, number, 0, kLargestWord);
  }

  void SignedNumber(Field field, const char* name, const std::optional<std::int64_t>& number) {
    Clamped(field, name, number, kSmallestSignedWord, kLargestSignedWord);
  }

  void Text(Field field, const char* name, const std::string& text) {
    const std::size_t length = CutLength(text, field.width);
    if (!text.empty()) {
      Tell(field);
    }
    std::copy_n(text.begin(), length, filled_.block.begin() + static_cast<std::ptrdiff_t>(field.offset));
    if (length < text.size()) {
      Deviate(TextCut{name, text, length, field.width});
    }
  }

  void Date(Field field, const std::optional<BatteryDate>& date) {
    if (!date.has_value()) {
      return;
    }
    const firmware::PackedDate packed{date->year, date->month, date->day};
    if (!firmware::CanPack(packed) || date->month < 1 || date->month > 12 || date->day < 1) {
      Deviate(DateLeftOut{date->year, date->month, date->day});
      return;
    }
    Store(field, firmware::Pack(packed));
    Tell(field);
  }

  void Deviate(Deviation deviation) { filled_.deviations.push_back(std::move(deviation)); }

  FilledBlock Take() { return std::move(filled_); }

 private:
  void Clamped(Field field, const char* name, const std::optional<std::int64_t>& number, std::int64_t smallest,
               std::int64_t largest) {
    const std::int64_t stored = std::clamp(number.value_or(0), smallest, largest);
    Store(field, static_cast<std::uint16_t>(stored & kLargestWord));
    if (number.has_value()) {
      Tell(field);
    }
    if (number.has_value() && stored != *number) {
      Deviate(NumberClamped{name, *number, stored});
    }
  }

  FilledBlock filled_;
};

}  // namespace

FilledBlock FillBatteryBlock(const SystemBattery& battery) {
  BlockWriter writer;
  writer.Number(firmware::kDesignCapacity, "design capacity", MilliampereHours(battery, battery.designCapacity));
  writer.Number(firmware::kFullChargeCapacity, "full charge capacity",
                MilliampereHours(battery, battery.fullChargeCapacity));
  writer.Number(firmware::kRemainingCapacity, "remaining capacity",
                MilliampereHours(battery, battery.remainingCapacity));
  writer.Number(firmware::kCycleCount, "cycle count", battery.cycleCount);
  writer.Number(firmware::kTemperature, "temperature", battery.temperature);
  writer.Number(firmware::kVoltage, "voltage", battery.voltage);
  writer.SignedNumber(firmware::kCurrent, "current", Signed(ToldCurrent(battery), battery.state));
  writer.Number(firmware::kDesignVoltage, "design voltage", battery.designVoltage);
  writer.Store(firmware::kBatteryStatus, static_cast<std::uint16_t>(StatusWord(battery)));
  if (battery.state.has_value()) {
    writer.Tell(firmware::kBatteryStatus);
  }
  writer.Text(firmware::kSerialNumber, "serial number", battery.serialNumber);
  writer.Text(firmware::kManufacturer, "manufacturer", battery.manufacturer);
  writer.Text(firmware::kDeviceName, "device name", battery.deviceName);
  writer.Date(firmware::kManufactureDate, battery.manufactureDate);
  if (AreCapacitiesOfTheMoment(battery)) {
    writer.Deviate(CapacitiesOfTheMoment{*battery.standInVoltage});
  }
  return writer.Take();
}

SlotDescription DescribeBattery(const std::optional<SystemBattery>& battery) {
  SlotDescription description;
  description.source = kSystemBatterySource;
  if (!battery.has_value()) {
    description.told.reset();
    return description;
  }
  description.told = FillBatteryBlock(*battery).told;
  description.stateOfCharge = battery->stateOfCharge;
  description.modelName = base::AsUtf8(battery->deviceName);
  description.serialNumber = base::AsUtf8(battery->serialNumber);
  description.manufacturer = base::AsUtf8(battery->manufacturer);
  description.technology = base::AsUtf8(battery->technology);
  description.designEnergy = Energy(battery->designCapacity);
  description.fullChargeEnergy = Energy(battery->fullChargeCapacity);
  description.remainingEnergy = Energy(battery->remainingCapacity);
  description.power = Signed(battery->power, battery->state);
  return description;
}

std::int32_t AnswerBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode,
                               const std::function<std::optional<SystemBattery>(std::uint32_t slot)>& read) {
  constexpr auto kBatteryInformation = static_cast<std::uint32_t>(firmware::Command::BatteryInformation);
  if (input == nullptr || inputSize == 0 || output == nullptr || returnCode == nullptr) {
    return kInvalidArgument;
  }
  if (first != firmware::kRead || second != kBatteryInformation || third != firmware::kOfBattery) {
    *returnCode = firmware::kNotSupported;
    return 0;
  }
  const std::optional<SystemBattery> battery = read(*input);
  if (!battery.has_value()) {
    *returnCode = firmware::kEmptySlot;
    return 0;
  }
  FilledBlock filled = FillBatteryBlock(*battery);
  std::copy(filled.block.begin(), filled.block.end(), output);
  *returnCode = firmware::kSuccess;
  for (Deviation& deviation : filled.deviations) {
    Tell(BlockDeviates{*input, std::move(deviation)});
  }
  return 0;
}

}  // namespace norv::platform
