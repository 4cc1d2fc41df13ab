#include "Comparison.h"

#include <cstddef>
#include <mutex>
#include <sstream>
#include <tuple>

#include "battery/NorvBatteryInfo.h"

namespace norv::bench {

using plain::PlainRecord;
using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryStatus;

namespace {

plain::PlainStatus ReadStatus(const NorvBatteryInfo& battery) {
  const NorvBatteryStatus status = battery.GetStatus();
  return {
      status.errorCode,
      {status.fullyDischarged, status.fullyCharged, status.discharging, status.initialized, status.remainingTimeAlarm,
       status.remainingCapacityAlarm, status.reservedBit10, status.terminateDischargeAlarm, status.overTemperatureAlarm,
       status.reservedBit13, status.terminateChargeAlarm, status.overChargedAlarm}};
}

// Their buffers are shared with every thread.
void ReadCtFields(const NorvBatteryInfo& battery, PlainRecord& record) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  record.ctAssembly = battery.GetCtAssembly();
  record.ctRevision = battery.GetCtRevision();
  record.ctSupplier = battery.GetCtSupplier();
  record.ctManufacturingWeek = battery.GetCtMfgWeek();
}

// Validity before age: the error that GetAge leaves would make the record invalid. Failures of the age, and only they,
// name their operation.
void ReadValidityAndAge(NorvBatteryInfo& battery, PlainRecord& record) {
  record.isValid = battery.IsValid();
  record.defect = battery.GetError().GetMessageText();
  record.age = battery.GetAge();
  if (*battery.GetError().GetFunctionText() != '\0') {
    record.ageError = battery.GetError().GetMessageText();
  }
}

std::string Show(const std::string& text) {
  return '\'' + text + '\'';
}
std::string Show(const plain::PlainStatus& status) {
  std::string text = status.errorCode;
  for (const bool flag : status.flags) {
    text += flag ? " 1" : " 0";
  }
  return text;
}
std::string Show(const std::array<int, 4>& numbers) {
  std::string text;
  for (const int number : numbers) {
    text += std::to_string(number) + ' ';
  }
  return text;
}
template <typename Number>
std::string Show(Number number) {
  return std::to_string(number);
}

constexpr auto kValues = std::make_tuple(
    &PlainRecord::manufacturer, &PlainRecord::deviceName, &PlainRecord::serialNumber, &PlainRecord::ctNumber,
    &PlainRecord::designCapacity, &PlainRecord::fullChargeCapacity, &PlainRecord::fullChargeCapacityPercentage,
    &PlainRecord::remainingCapacity, &PlainRecord::remainingCapacityPercentage, &PlainRecord::maxError,
    &PlainRecord::cycleCount, &PlainRecord::temperature, &PlainRecord::voltage, &PlainRecord::current,
    &PlainRecord::designVoltage, &PlainRecord::statusWord, &PlainRecord::cellVoltages, &PlainRecord::status,
    &PlainRecord::manufacturingDate, &PlainRecord::warrantyDate, &PlainRecord::packSupplier, &PlainRecord::cellSupplier,
    &PlainRecord::calibrationType, &PlainRecord::overCurrentProtection, &PlainRecord::warrantyType,
    &PlainRecord::designCycleCount, &PlainRecord::ctAssembly, &PlainRecord::ctRevision, &PlainRecord::ctSupplier,
    &PlainRecord::ctManufacturingWeek, &PlainRecord::isValid, &PlainRecord::defect, &PlainRecord::age,
    &PlainRecord::ageError);

}  // namespace

PlainRecord ReadLibraryRecord(const unsigned char* block) {
  NorvBatteryInfo battery(block);
  PlainRecord record;
  ReadValidityAndAge(battery, record);
  record.manufacturer = battery.GetManufacturer();
  record.deviceName = battery.GetDeviceName();
  record.serialNumber = battery.GetSerialNumber();
  record.ctNumber = battery.GetCtNumber();
  record.designCapacity = battery.GetDesignEnergyCapacity();
  record.fullChargeCapacity = battery.GetFullEnergyCapacity();
  record.fullChargeCapacityPercentage = battery.GetFullEnergyCapacityPercentage();
  record.remainingCapacity = battery.GetRemainingCapacity();
  record.remainingCapacityPercentage = battery.GetRemainingEnergyCapacityPercentage();
  record.maxError = battery.GetMaxErrorPercentage();
  record.cycleCount = battery.GetCycleCount();
  record.temperature = battery.GetTemperature();
  record.voltage = battery.GetVoltage();
  record.current = battery.GetElectricCurrent();
  record.designVoltage = battery.GetDesignVoltage();
  record.statusWord = battery.GetStatusWord();
  battery.GetCellVoltages(record.cellVoltages.data());
  record.status = ReadStatus(battery);
  record.manufacturingDate = battery.GetManufacturingDate();
  record.warrantyDate = battery.GetWarrantyDate();
  record.packSupplier = battery.GetPackSupplier();
  record.cellSupplier = battery.GetCellSupplier();
  record.calibrationType = battery.GetCalibrationType();
  record.overCurrentProtection = battery.GetOverCurrentProtection();
  record.warrantyType = battery.GetWarrantyType();
  record.designCycleCount = battery.GetDesignCycleCount();
  ReadCtFields(battery, record);
  return record;
}

std::optional<std::string> Difference(const Block& block, const PlainRecord& library, const PlainRecord& expected) {
  if (library == expected) {
    return std::nullopt;
  }
  std::ostringstream text;
  for (const unsigned char byte : block) {
    constexpr char kHexDigits[] = "0123456789abcdef";
    text << kHexDigits[byte >> 4U] << kHexDigits[byte & 0x0FU];
  }
  std::size_t number = 0;
  const auto compare = [&](auto value) {
    ++number;
    if (library.*value != expected.*value) {
      text << "\nvalue " << number << " in the order of PlainRecord: the library gives " << Show(library.*value)
           << ", the plain decoder " << Show(expected.*value);
    }
  };
  std::apply([&](auto... values) { (compare(values), ...); }, kValues);
  return text.str();
}

}  // namespace norv::bench
