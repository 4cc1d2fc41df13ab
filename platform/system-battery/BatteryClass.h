// What the battery class driver of Windows tells of a battery, in its own terms, and what that means.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "SystemBattery.h"

namespace norv::platform {

// The answers to the driver's queries, with the names, numbers and marks for "unknown" of the structures that poclass.h
// declares. They are spelled out here so that a recorded battery can be looked at on every system. A query that the
// driver refused is empty.
struct BatteryClassAnswers {
  // BATTERY_INFORMATION, without what is not looked at.
  struct Information {
    std::uint32_t capabilities = 0;
    std::uint32_t designedCapacity = 0;
    std::uint32_t fullChargedCapacity = 0;
    std::uint32_t cycleCount = 0;
  };

  // BATTERY_STATUS
  struct Status {
    std::uint32_t powerState = 0;
    std::uint32_t capacity = 0;
    std::uint32_t voltage = 0;
    std::int32_t rate = 0;
  };

  // BATTERY_MANUFACTURE_DATE
  struct ManufactureDate {
    std::uint8_t day = 0;
    std::uint8_t month = 0;
    std::uint16_t year = 0;
  };

  Information information;
  Status status;
  std::optional<std::uint32_t> temperature;
  std::optional<ManufactureDate> manufactureDate;
  std::string serialNumber;  // UTF-8, like the other two; empty when refused
  std::string manufactureName;
  std::string deviceName;
  std::string chemistry;  // BATTERY_INFORMATION::Chemistry, "LION": four bytes, filled up with zeros
};

// The battery that the answers describe; nothing when it is none of the computer's own: a UPS, or the battery of a
// mouse.
//
// - Capacities are mWh and the rate is mW, but for a battery that counts in a unit known to nobody else
//   (BATTERY_CAPACITY_RELATIVE): of that the state of charge is all that is known.
// - A cycle count, full charge or design capacity, voltage or temperature of 0 stands for one that the driver does not
//   have.
// - Windows does not say that a battery is full. It is taken to be where it is on mains power, does not charge, and
// holds
//   its full charge capacity.
std::optional<SystemBattery> TranslateBatteryClass(const BatteryClassAnswers& answers);

}  // namespace norv::platform
