#include "report/TextBattery.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>

#include "output/EscapeText.h"

namespace norv::tool {

namespace {

constexpr const char* kOfTheSystem = " (the operating system's figure, mostly in mW)";

std::string PercentText(float percentage) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3f %%", static_cast<double>(percentage));
  return text.data();
}

std::string Percentage(std::optional<float> percentage, int divisor, const std::string& divisorName) {
  return percentage ? PercentText(*percentage) + " of the " + divisorName
                    : "not computable (" + WhyNotComputable(divisor == 0, divisorName) + ")";
}

// The reading in 0.1 K, where it gives a temperature that a battery can have.
std::string Temperature(int word) {
  constexpr int kZeroCelsius = 27315;  // in 0.01 K
  constexpr int kColdest = -4000;      // in 0.01 degrees Celsius
  constexpr int kHottest = 12500;
  const int celsius = word * 10 - kZeroCelsius;
  if (celsius < kColdest || celsius > kHottest) {
    return std::to_string(word);
  }
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%d (%.2f C)", word, celsius / 100.0);
  return text.data();
}

void AddIdentity(TextLines& lines, const Identity& identity) {
  lines.Section("Identity");
  lines.Row("Manufacturer", OrEmpty(identity.manufacturer));
  lines.Row("Device name", OrEmpty(identity.deviceName));
  lines.Row("Serial number", OrEmpty(identity.serialNumber));
  lines.Row("CT number", OrEmpty(identity.ctNumber));
}

void AddCapacity(TextLines& lines, const Capacity& capacity) {
  lines.Section("Capacity and health");
  lines.Row("Design capacity", capacity.designCapacity);
  lines.Row("Full charge capacity", capacity.fullChargeCapacity);
  lines.Row("Health", Percentage(capacity.fullChargeCapacityPercentage, capacity.designCapacity, "design capacity"));
  lines.Row("Remaining capacity", capacity.remainingCapacity);
  lines.Row("Relative state of charge",
            Percentage(capacity.remainingCapacityPercentage, capacity.fullChargeCapacity, "full charge capacity"));
  if (DriverDisagrees(capacity)) {
    const bool isComputed = capacity.remainingCapacityPercentage.has_value();
    lines.Row("Driver's state of charge",
              std::to_string(*capacity.driverStateOfCharge) + " %, by its own account; " +
                  (isComputed ? "more than a point from the one above" : "there is none to compare it with"));
  }
  lines.Row("Max error", std::to_string(capacity.maxError) + " %");
  lines.Row("Cycle count", capacity.cycleCount);
  lines.Row("Design voltage", capacity.designVoltage);
  lines.Row("Voltage", capacity.voltage);
  lines.Row("Current", capacity.current);
  lines.Row("Temperature", Temperature(capacity.temperature));
}

void AddRates(TextLines& lines, const Capacity& capacity) {
  lines.Row("Charge rate", std::to_string(capacity.chargeRate) + kOfTheSystem);
  lines.Row("Discharge rate", std::to_string(capacity.dischargeRate) + kOfTheSystem);
}

void AddCells(TextLines& lines, const Cells& cells) {
  lines.Section("Cells");
  int number = 0;
  for (const int voltage : cells.voltages) {
    lines.Row("Cell " + std::to_string(++number) + " voltage",
              std::to_string(voltage) + (voltage == 0 ? " (no cell, or no reading)" : ""));
  }
  lines.Row("Spread", cells.spread
                          ? std::to_string(*cells.spread) + " between the highest and the lowest cell that is not 0"
                          : "none (every cell is 0)");
}

void AddStatus(TextLines& lines, const Status& status) {
  std::array<char, 16> word{};
  std::snprintf(word.data(), word.size(), "0x%04X", static_cast<unsigned int>(status.word));
  std::string set;
  for (const auto& flag : status.flags) {
    if (flag.value) {
      set += set.empty() ? "" : ", ";
      set += flag.name;
    }
  }
  lines.Section("Status");
  lines.Row("Status word", word.data());
  lines.Row("Error code", status.errorCode);
  lines.Row("Flags set", set.empty() ? "none" : set);
}

// The day of a date-time text; its time of day is always midnight.
std::string DayText(const std::string& dateTime) {
  return dateTime.empty() ? "not known (the firmware's date does not exist)"
                          : EscapeText(dateTime.substr(0, dateTime.find('T')));
}

std::string WarrantyDay(const Dates& dates) {
  if (dates.warrantyDate.empty() && !dates.manufacturingDate.empty()) {
    return "not known (no such day)";
  }
  return DayText(dates.warrantyDate);
}

std::string AgeText(const Age& age, const std::string& serialNumber) {
  constexpr std::size_t kSerialNumberWithDate = 16;
  if (!age.error) {
    return std::to_string(age.value) + (age.value == 1 ? " day" : " days") +
           ", by the date at the end of the serial number";
  }
  if (serialNumber.size() < kSerialNumberWithDate) {
    return "not known (the serial number has fewer than 16 characters)";
  }
  if (age.value == -1) {
    return "not known (" + EscapeText(age.error->message) + ")";
  }
  return "not known (the serial number does not end in a date)";
}

void AddDates(TextLines& lines, const Dates& dates, const std::string& serialNumber) {
  lines.Section("Dates and warranty");
  lines.Row("Manufacturing date", DayText(dates.manufacturingDate));
  lines.Row("Warranty type", dates.warrantyType);
  lines.Row("Warranty date", WarrantyDay(dates));
  lines.Row("Age", AgeText(dates.age, serialNumber));
}

void AddAttributes(TextLines& lines, const Attributes& attributes) {
  lines.Section("Suppliers and attributes");
  lines.Row("Pack supplier", attributes.packSupplier);
  lines.Row("Cell supplier", attributes.cellSupplier);
  lines.Row("Calibration type", attributes.calibrationType.empty() ? "none" : EscapeText(attributes.calibrationType));
  lines.Row("Over-current protection",
            std::to_string(attributes.overCurrentProtection) + " (in the unit of the design capacity)");
  lines.Row("Design cycle count", attributes.designCycleCount);
  lines.Row("CT assembly", OrEmpty(attributes.ctAssembly));
  lines.Row("CT revision", OrEmpty(attributes.ctRevision));
  lines.Row("CT supplier", OrEmpty(attributes.ctSupplier));
  lines.Row("CT manufacturing week", OrEmpty(attributes.ctManufacturingWeek));
}

void AddSettings(TextLines& lines, const Settings& settings) {
  lines.Section("BIOS battery care settings");
  lines.Row("Adaptive battery optimizer", OrEmpty(settings.adaptiveBatteryOptimizer));
  lines.Row("Battery care", OrEmpty(settings.batteryCare));
}

void AddCellSwellProtection(TextLines& lines, const std::vector<Named<int>>& counters) {
  lines.Section("Cell swell protection (time counters in the BIOS's own unit)");
  if (counters.empty()) {
    lines.Line("  not available");
  }
  for (const auto& counter : counters) {
    lines.Row(counter.name, counter.value);
  }
}

void AddValidity(TextLines& lines, const Validity& validity) {
  lines.Section("Validity");
  lines.Row("Valid battery record", validity.valid ? "yes" : "no");
  if (validity.error) {
    lines.Row("Reason", OrEmpty(validity.error->message));
  }
}

}  // namespace

std::string WhyNotComputable(bool isDivisorZero, const std::string& divisorName) {
  return isDivisorZero ? "the " + divisorName + " is 0" : "the figure is too large";
}

void AddBlock(TextLines& lines, const BatteryReport& battery) {
  AddIdentity(lines, battery.identity);
  AddCapacity(lines, battery.capacity);
  AddCells(lines, battery.cells);
  AddStatus(lines, battery.status);
  AddDates(lines, battery.dates, battery.identity.serialNumber);
  AddAttributes(lines, battery.attributes);
  AddValidity(lines, battery.validity);
}

void AddBattery(TextLines& lines, const BatteryReport& battery, bool cellSwellRequested) {
  AddIdentity(lines, battery.identity);
  AddCapacity(lines, battery.capacity);
  AddRates(lines, battery.capacity);
  AddCells(lines, battery.cells);
  AddStatus(lines, battery.status);
  AddDates(lines, battery.dates, battery.identity.serialNumber);
  AddAttributes(lines, battery.attributes);
  if (battery.slot == 0) {
    AddSettings(lines, battery.settings);
  }
  if (cellSwellRequested) {
    AddCellSwellProtection(lines, battery.cellSwellProtection);
  }
  AddValidity(lines, battery.validity);
}

}  // namespace norv::tool
