// The battery-information block decoded the straightforward way, with std::regex and the standard library, and without
// a line of the library's own. What the library is measured against, and compared with value by value.
#pragma once

#include <array>
#include <ctime>
#include <string>

namespace norv::plain {

struct PlainStatus {
  std::string errorCode;
  std::array<bool, 12> flags{};  // bits 4 to 15

  bool operator==(const PlainStatus&) const = default;
};

// Every value that a record made from a block alone answers.
struct PlainRecord {
  std::string manufacturer;
  std::string deviceName;
  std::string serialNumber;
  std::string ctNumber;
  int designCapacity = 0;
  int fullChargeCapacity = 0;
  float fullChargeCapacityPercentage = 0;
  int remainingCapacity = 0;
  float remainingCapacityPercentage = 0;
  int maxError = 0;
  int cycleCount = 0;
  int temperature = 0;
  int voltage = 0;
  int current = 0;
  int designVoltage = 0;
  int statusWord = 0;
  std::array<int, 4> cellVoltages{};
  PlainStatus status;
  std::string manufacturingDate;
  std::string warrantyDate;
  std::string packSupplier;
  std::string cellSupplier;
  std::string calibrationType;
  int overCurrentProtection = 0;
  std::string warrantyType;
  std::string designCycleCount;
  std::string ctAssembly;
  std::string ctRevision;
  std::string ctSupplier;
  std::string ctManufacturingWeek;
  bool isValid = false;
  std::string defect;    // why it is not valid; empty when it is
  int age = 0;           // in days
  std::string ageError;  // why that is not the age; empty when it is

  bool operator==(const PlainRecord&) const = default;
};

// Each decodes the 128 bytes at `block`; ages count up to `now`, in the machine's local time. The answers are the same.
// The first compiles every pattern each time it is needed, the second only the first time; it may be called from
// several threads.
PlainRecord DecodeCompilingEachTime(const unsigned char* block, std::time_t now);
PlainRecord DecodeCompilingOnce(const unsigned char* block, std::time_t now);

}  // namespace norv::plain
