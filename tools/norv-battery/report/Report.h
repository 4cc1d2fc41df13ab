// Everything the library says about a machine, read once and kept by value, so that the writers of reports neither
// touch the library nor depend on the order in which they ask.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "fields/Catalogue.h"
#include "firmware/Block.h"
#include "norv/platform/Platform.h"

namespace norv::tool {

using firmware::kSlotCount;

// The category of a wrong value, or a return code of the BIOS.
inline constexpr int kValueFailure = 5;

// A failure that the library stored.
struct Failure {
  int category = 0;
  std::int64_t code = 0;
  std::string message;
  std::string type;
  std::string function;
};

// What a field answered, kept by value.
struct FieldValue {
  norv_battery_state state = NORV_BATTERY_VALUE;
  std::int64_t number = 0;
  double real = 0;
  std::string text;  // bytes, unless the field's are UTF-8
};

struct BatteryReport {
  int slot = 0;
  std::array<FieldValue, shared::battery::fields::kCatalogue.size()> fields;
  std::optional<Failure> ageFailure;                 // why there is no age
  std::optional<Failure> validityFailure;            // why the record is not valid
  std::optional<std::uint32_t> driverStateOfCharge;  // percent, the battery driver's own figure

  // What a system's driver tells of the battery that it read; nothing where the maker's BIOS answered.
  std::optional<platform::SlotDescription> driver;

  bool IsTold(norv_battery_field field) const { return (*this)[field].state != NORV_BATTERY_NOT_TOLD; }

  const FieldValue& operator[](norv_battery_field field) const {
    return fields.at(static_cast<std::size_t>(field) - 1);
  }
  FieldValue& operator[](norv_battery_field field) { return fields.at(static_cast<std::size_t>(field) - 1); }
};

// The battery test, run for the machine as a whole.
struct TestReport {
  std::optional<int> result;  // nothing without a verdict
  std::string label;
  std::string version;
  std::optional<Failure> error;  // why there is no verdict
};

// Where the report was read.
struct Source {
  const char* kind =
      "machine";  // "machine" (the running one), "sample", "file"; "folder", "listing" (of power supplies)
  std::string name;
  std::string description;
  std::string channel;                                   // what answered for the batteries, in a few words
  bool isRecording = false;                              // of the machine that the rest tells of
  std::optional<std::string> recordedAt = std::nullopt;  // by that machine's clock, where the recording has it
};

// True where the driver's own state of charge is more than a point away from the computed one, or stands alone because
// none could be computed.
inline bool DriverDisagrees(const BatteryReport& battery) {
  constexpr double kPoint = 1.0;
  const FieldValue& computed = battery[NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE];
  return battery.driverStateOfCharge.has_value() &&
         (computed.state != NORV_BATTERY_VALUE || std::abs(*battery.driverStateOfCharge - computed.real) > kPoint);
}

struct Report {
  Source source;
  bool cellSwellRequested = false;
  std::array<std::optional<BatteryReport>, kSlotCount> batteries;
  std::optional<Failure> readError;  // the collection's, once the batteries were read
  std::optional<TestReport> test;

  bool HasBattery() const { return batteries[0].has_value() || batteries[1].has_value(); }
};

}  // namespace norv::tool
