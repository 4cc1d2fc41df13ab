#include "report/TextBattery.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string>

#include "firmware/BatteryInformationBlock.h"
#include "output/BatteryFields.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

std::string PercentText(double percentage) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3f %%", percentage);
  return text.data();
}

std::string Percentage(const BatteryReport& battery, norv_battery_field field) {
  const FieldValue& percentage = battery[field];
  const Divisor divisor = *FindDivisor(field);
  return percentage.state == NORV_BATTERY_VALUE
             ? PercentText(percentage.real) + " of the " + divisor.name
             : "not computable (" + WhyNotComputable(battery[divisor.field].number == 0, divisor.name) + ")";
}

std::string Health(const BatteryReport& battery) {
  return Percentage(battery, NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE);
}

std::string StateOfCharge(const BatteryReport& battery) {
  return Percentage(battery, NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE);
}

std::string MaxError(const BatteryReport& battery) {
  return std::to_string(battery[NORV_BATTERY_MAX_ERROR].number) + " %";
}

std::string Current(const BatteryReport& battery) {
  return std::to_string(SignedCurrent(battery[NORV_BATTERY_CURRENT].number));
}

// The reading in 0.1 K, where it gives a temperature that a battery can have.
std::string Temperature(const BatteryReport& battery) {
  constexpr int kZeroCelsius = 27315;  // in 0.01 K
  constexpr int kColdest = -4000;      // in 0.01 degrees Celsius
  constexpr int kHottest = 12500;
  const auto word = static_cast<int>(battery[NORV_BATTERY_TEMPERATURE].number);
  const int celsius = word * 10 - kZeroCelsius;
  if (celsius < kColdest || celsius > kHottest) {
    return std::to_string(word);
  }
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%d (%.2f C)", word, celsius / 100.0);
  return text.data();
}

template <norv_battery_field kRate>
std::string Rate(const BatteryReport& battery) {
  return std::to_string(battery[kRate].number) + " (the operating system's figure, mostly in mW)";
}

template <norv_battery_field kCell>
std::string CellVoltage(const BatteryReport& battery) {
  const std::int64_t voltage = battery[kCell].number;
  return std::to_string(voltage) + (voltage == 0 ? " (no cell, or no reading)" : "");
}

std::string StatusWord(const BatteryReport& battery) {
  std::array<char, 16> word{};
  std::snprintf(word.data(), word.size(), "0x%04X",
                static_cast<unsigned int>(battery[NORV_BATTERY_STATUS_WORD].number));
  return word.data();
}

// The day of a date-time text; its time of day is always midnight.
std::string DayText(const std::string& dateTime) {
  return dateTime.empty() ? "not known (the firmware's date does not exist)"
                          : EscapeText(dateTime.substr(0, dateTime.find('T')));
}

std::string ManufacturingDate(const BatteryReport& battery) {
  return DayText(battery[NORV_BATTERY_MANUFACTURING_DATE].text);
}

std::string WarrantyDate(const BatteryReport& battery) {
  const std::string& warranty = battery[NORV_BATTERY_WARRANTY_DATE].text;
  const bool isMade = !battery[NORV_BATTERY_MANUFACTURING_DATE].text.empty();
  return warranty.empty() && isMade ? "not known (no such day)" : DayText(warranty);
}

std::string Age(const BatteryReport& battery) {
  constexpr std::size_t kSerialNumberWithDate = firmware::kSerialNumber.width;
  const std::int64_t days = battery[NORV_BATTERY_AGE].number;
  if (!battery.ageFailure) {
    return std::to_string(days) + (days == 1 ? " day" : " days") + ", by the date at the end of the serial number";
  }
  if (battery[NORV_BATTERY_SERIAL_NUMBER].text.size() < kSerialNumberWithDate) {
    return "not known (the serial number has fewer than 16 characters)";
  }
  if (days == -1) {
    return "not known (" + EscapeText(battery.ageFailure->message) + ")";
  }
  return "not known (the serial number does not end in a date)";
}

std::string CalibrationType(const BatteryReport& battery) {
  const std::string& type = battery[NORV_BATTERY_CALIBRATION_TYPE].text;
  return type.empty() ? "none" : EscapeText(type);
}

std::string OverCurrentProtection(const BatteryReport& battery) {
  return std::to_string(battery[NORV_BATTERY_OVER_CURRENT_PROTECTION].number) + " (in the unit of the design capacity)";
}

// Fields that are more to people than their bare value.
struct Wording {
  norv_battery_field field;
  std::string (*write)(const BatteryReport& battery);
};

constexpr std::array kWordings{
    Wording{NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE, Health},
    Wording{NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE, StateOfCharge},
    Wording{NORV_BATTERY_MAX_ERROR, MaxError},
    Wording{NORV_BATTERY_CURRENT, Current},
    Wording{NORV_BATTERY_TEMPERATURE, Temperature},
    Wording{NORV_BATTERY_CHARGE_RATE, Rate<NORV_BATTERY_CHARGE_RATE>},
    Wording{NORV_BATTERY_DISCHARGE_RATE, Rate<NORV_BATTERY_DISCHARGE_RATE>},
    Wording{NORV_BATTERY_CELL_VOLTAGE_1, CellVoltage<NORV_BATTERY_CELL_VOLTAGE_1>},
    Wording{NORV_BATTERY_CELL_VOLTAGE_2, CellVoltage<NORV_BATTERY_CELL_VOLTAGE_2>},
    Wording{NORV_BATTERY_CELL_VOLTAGE_3, CellVoltage<NORV_BATTERY_CELL_VOLTAGE_3>},
    Wording{NORV_BATTERY_CELL_VOLTAGE_4, CellVoltage<NORV_BATTERY_CELL_VOLTAGE_4>},
    Wording{NORV_BATTERY_STATUS_WORD, StatusWord},
    Wording{NORV_BATTERY_MANUFACTURING_DATE, ManufacturingDate},
    Wording{NORV_BATTERY_WARRANTY_DATE, WarrantyDate},
    Wording{NORV_BATTERY_AGE, Age},
    Wording{NORV_BATTERY_CALIBRATION_TYPE, CalibrationType},
    Wording{NORV_BATTERY_OVER_CURRENT_PROTECTION, OverCurrentProtection},
};

std::string PlainText(const fields::Row& row, const FieldValue& value) {
  switch (row.kind) {
    case NORV_BATTERY_NUMBER:
      return std::to_string(value.number);
    case NORV_BATTERY_REAL:
      return PercentText(value.real);
    case NORV_BATTERY_FLAG:
      return value.number != 0 ? "yes" : "no";
    default:
      return OrEmpty(value.text);
  }
}

std::string FieldText(const fields::Row& row, const BatteryReport& battery) {
  const auto* const wording =
      std::find_if(kWordings.begin(), kWordings.end(), [&](const Wording& one) { return one.field == row.number; });
  return wording != kWordings.end() ? wording->write(battery) : PlainText(row, battery[row.number]);
}

void AddDriversStateOfCharge(TextLines& lines, const BatteryReport& battery) {
  if (DriverDisagrees(battery)) {
    const bool isComputed = battery[NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE].state == NORV_BATTERY_VALUE;
    lines.Row("Driver's state of charge",
              std::to_string(*battery.driverStateOfCharge) + " %, by its own account; " +
                  (isComputed ? "more than a point from the one above" : "there is none to compare it with"));
  }
}

void AddSpread(TextLines& lines, const BatteryReport& battery) {
  std::array<int, firmware::kCellCount> voltages{};
  for (int cell = 0; cell < firmware::kCellCount; ++cell) {
    const auto field = static_cast<norv_battery_field>(NORV_BATTERY_CELL_VOLTAGE_1 + cell);
    voltages.at(static_cast<std::size_t>(cell)) = static_cast<int>(battery[field].number);
  }
  const auto spread = SpreadOf(voltages);
  lines.Row("Spread", spread ? std::to_string(*spread) + " between the highest and the lowest cell that is not 0"
                             : "none (every cell is 0)");
}

void AddFlags(TextLines& lines, const BatteryReport& battery) {
  std::string set;
  for (const fields::Row& row : fields::kCatalogue) {
    if (row.group == &fields::kFlags && battery.IsTold(row.number) && battery[row.number].number != 0) {
      set += set.empty() ? "" : ", ";
      set += row.name;
    }
  }
  lines.Row("Flags set", set.empty() ? "none" : set);
}

void AddReason(TextLines& lines, const BatteryReport& battery) {
  if (battery.validityFailure) {
    lines.Row("Reason", OrEmpty(battery.validityFailure->message));
  }
}

// What people want to read after a field, and is none.
struct Addition {
  norv_battery_field after;
  void (*add)(TextLines& lines, const BatteryReport& battery);
};

constexpr std::array kAdditions{
    Addition{NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE, AddDriversStateOfCharge},
    Addition{NORV_BATTERY_CELL_VOLTAGE_4, AddSpread},
    Addition{NORV_BATTERY_STATUS_ERROR_CODE, AddFlags},
    Addition{NORV_BATTERY_VALID, AddReason},
};

void AddField(TextLines& lines, const fields::Row& row, const BatteryReport& battery) {
  lines.Row(row.label, FieldText(row, battery));
  for (const Addition& addition : kAdditions) {
    if (addition.after == row.number) {
      addition.add(lines, battery);
    }
  }
}

// Flags are one row of the status, and what the battery test says stands at the end of the report.
bool IsSection(const fields::Group* group) {
  return group != &fields::kFlags && group != &fields::kTest;
}

// A battery without cell swell protection data has none of its counters.
bool IsMissing(const fields::Row& row, const BatteryReport& battery) {
  return row.source == NORV_BATTERY_FROM_CELL_SWELL_BLOCK && battery[row.number].state == NORV_BATTERY_ABSENT;
}

// Adds the fields of a group that isShown(row), if it has any.
template <typename IsShown>
void AddSection(TextLines& lines, const fields::Group& group, const BatteryReport& battery, IsShown isShown) {
  bool isBegun = false;
  for (const fields::Row& row : fields::kCatalogue) {
    if (row.group != &group || !isShown(row) || !battery.IsTold(row.number)) {
      continue;
    }
    const bool isMissing = IsMissing(row, battery);
    if (!isBegun) {
      lines.Section(group.label);
      if (isMissing) {
        lines.Line("  not available");
      }
    }
    isBegun = true;
    if (!isMissing) {
      AddField(lines, row, battery);
    }
  }
}

// Without a status word there is no row that the flags could follow.
bool AreFlagsAlone(const BatteryReport& battery) {
  return !battery.IsTold(NORV_BATTERY_STATUS_WORD) && battery.IsTold(NORV_BATTERY_DISCHARGING);
}

// Adds the sections of the fields that isShown(row).
template <typename IsShown>
void AddSections(TextLines& lines, const BatteryReport& battery, IsShown isShown) {
  for (const fields::Group* group : fields::kGroups) {
    if (IsSection(group)) {
      AddSection(lines, *group, battery, isShown);
    } else if (group == &fields::kFlags && AreFlagsAlone(battery)) {
      lines.Section(fields::kStatus.label);
      AddFlags(lines, battery);
    }
  }
}

void AddEnergy(TextLines& lines, const char* name, const std::optional<std::int64_t>& amount, const char* unit) {
  if (amount) {
    lines.Row(name, std::to_string(*amount) + unit);
  }
}

// A text that the field of the block has not got whole.
void AddWhole(TextLines& lines, const char* name, const std::string& whole, const FieldValue& field) {
  if (!whole.empty() && whole != field.text) {
    lines.Row(name, EscapeText(whole));
  }
}

// What the driver tells and no block has room for.
void AddDriver(TextLines& lines, const BatteryReport& battery, const platform::SlotDescription& driver) {
  TextLines rows;
  AddWhole(rows, "Model name", driver.modelName, battery[NORV_BATTERY_DEVICE_NAME]);
  AddWhole(rows, "Serial number", driver.serialNumber, battery[NORV_BATTERY_SERIAL_NUMBER]);
  AddWhole(rows, "Manufacturer", driver.manufacturer, battery[NORV_BATTERY_MANUFACTURER]);
  AddWhole(rows, "Technology", driver.technology, {});
  if (driver.stateOfCharge && !battery.IsTold(NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE)) {
    rows.Row("State of charge", std::to_string(*driver.stateOfCharge) + " %");
  }
  AddEnergy(rows, "Design energy", driver.designEnergy, " mWh");
  AddEnergy(rows, "Full charge energy", driver.fullChargeEnergy, " mWh");
  AddEnergy(rows, "Remaining energy", driver.remainingEnergy, " mWh");
  AddEnergy(rows, "Power", driver.power, " mW");
  if (!rows.Text().empty()) {
    lines.Section("What the driver tells besides");
    lines.Append(rows);
  }
}

bool IsOfBlock(const fields::Row& row) {
  return row.source == NORV_BATTERY_FROM_INFORMATION_BLOCK;
}

}  // namespace

std::optional<Divisor> FindDivisor(norv_battery_field percentage) {
  switch (percentage) {
    case NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE:
      return Divisor{NORV_BATTERY_DESIGN_CAPACITY, "design capacity"};
    case NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE:
      return Divisor{NORV_BATTERY_FULL_CHARGE_CAPACITY, "full charge capacity"};
    default:
      return std::nullopt;
  }
}

std::string WhyNotComputable(bool isDivisorZero, const std::string& divisorName) {
  return isDivisorZero ? "the " + divisorName + " is 0" : "the figure is too large";
}

void AddBlock(TextLines& lines, const BatteryReport& battery) {
  AddSections(lines, battery, IsOfBlock);
}

void AddBattery(TextLines& lines, const BatteryReport& battery, bool cellSwellRequested) {
  AddSections(lines, battery, [&](const fields::Row& row) {
    if (row.source == NORV_BATTERY_FROM_BIOS_SETTINGS) {
      return battery.slot == 0;
    }
    return row.source != NORV_BATTERY_FROM_CELL_SWELL_BLOCK || cellSwellRequested;
  });
  if (battery.driver) {
    AddDriver(lines, battery, *battery.driver);
  }
}

}  // namespace norv::tool
