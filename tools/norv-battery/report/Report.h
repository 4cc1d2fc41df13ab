// Everything the library says about a machine, read once and kept by value, so that the writers of reports neither
// touch the library nor depend on the order in which they ask.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "firmware/BatteryInformationBlock.h"

namespace norv::tool {

using firmware::kCellCount;
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

// One named value of a group whose names are the same in every report.
template <typename Value>
struct Named {
  const char* key;   // in a JSON report
  const char* name;  // in a text report
  Value value;
};

struct Identity {
  std::string manufacturer;
  std::string deviceName;
  std::string serialNumber;
  std::string ctNumber;
};

struct Capacity {
  int designCapacity = 0;
  int fullChargeCapacity = 0;
  std::optional<float> fullChargeCapacityPercentage;  // of the design capacity; nothing where it cannot be computed
  int remainingCapacity = 0;
  std::optional<float> remainingCapacityPercentage;  // of the full charge capacity; the same
  int maxError = 0;
  int cycleCount = 0;
  int designVoltage = 0;
  int voltage = 0;
  int current = 0;  // negative while the battery discharges
  int temperature = 0;
  unsigned int chargeRate = 0;
  unsigned int dischargeRate = 0;
  std::optional<std::uint32_t> driverStateOfCharge = std::nullopt;  // percent, the battery driver's own figure
};

struct Cells {
  std::array<int, kCellCount> voltages{};
  std::optional<int> spread;  // nothing when every cell reads 0
};

struct Status {
  int word = 0;
  std::string errorCode;
  std::vector<Named<bool>> flags;
};

struct Age {
  int value = 0;                 // what the accessor gave
  std::optional<Failure> error;  // why that is not the age
};

struct Dates {
  std::string manufacturingDate;
  std::string warrantyType;
  std::string warrantyDate;
  Age age;
};

struct Attributes {
  std::string packSupplier;
  std::string cellSupplier;
  std::string calibrationType;
  int overCurrentProtection = 0;
  std::string designCycleCount;
  std::string ctAssembly;
  std::string ctRevision;
  std::string ctSupplier;
  std::string ctManufacturingWeek;
};

struct Settings {
  std::string adaptiveBatteryOptimizer;
  std::string batteryCare;
};

// The verdict of the battery test as an object of the library answers it.
struct TestVerdict {
  std::optional<int> result;  // nothing without a verdict
  std::string label;
  std::string version;
};

struct Validity {
  bool valid = false;
  std::optional<Failure> error;
};

struct BatteryReport {
  int slot = 0;
  Identity identity;
  Capacity capacity;
  Cells cells;
  Status status;
  Dates dates;
  Attributes attributes;
  Settings settings;
  std::vector<Named<int>> cellSwellProtection;  // empty when the record has none
  TestVerdict testVerdict;
  Validity validity;
};

// The battery test, run for the machine as a whole.
struct TestReport {
  TestVerdict verdict;
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
inline bool DriverDisagrees(const Capacity& capacity) {
  constexpr float kPoint = 1.0F;
  const auto& computed = capacity.remainingCapacityPercentage;
  return capacity.driverStateOfCharge.has_value() &&
         (!computed || std::abs(static_cast<float>(*capacity.driverStateOfCharge) - *computed) > kPoint);
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
