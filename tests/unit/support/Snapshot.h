// Everything a record answers, as texts that compare by eye.
#pragma once

#include <array>
#include <map>
#include <string>

#include "battery/NorvBatteryInfo.h"

namespace norv::test {

using Snapshot = std::map<std::string, std::string>;

inline Snapshot Answers(shared::battery::NorvBatteryInfo& record) {
  Snapshot snapshot{
      {"manufacturer", record.GetManufacturer()},
      {"CT number", record.GetCtNumber()},
      {"device name", record.GetDeviceName()},
      {"serial number", record.GetSerialNumber()},
      {"design voltage", std::to_string(record.GetDesignVoltage())},
      {"design capacity", std::to_string(record.GetDesignEnergyCapacity())},
      {"full charge capacity", std::to_string(record.GetFullEnergyCapacity())},
      {"full charge percentage", std::to_string(record.GetFullEnergyCapacityPercentage())},
      {"remaining capacity", std::to_string(record.GetRemainingCapacity())},
      {"remaining percentage", std::to_string(record.GetRemainingEnergyCapacityPercentage())},
      {"max error", std::to_string(record.GetMaxErrorPercentage())},
      {"cycle count", std::to_string(record.GetCycleCount())},
      {"temperature", std::to_string(record.GetTemperature())},
      {"voltage", std::to_string(record.GetVoltage())},
      {"current", std::to_string(record.GetElectricCurrent())},
      {"status word", std::to_string(record.GetStatusWord())},
      {"manufacturing date", record.GetManufacturingDate()},
      {"warranty date", record.GetWarrantyDate()},
      {"pack supplier", record.GetPackSupplier()},
      {"cell supplier", record.GetCellSupplier()},
      {"calibration type", record.GetCalibrationType()},
      {"over-current protection", std::to_string(record.GetOverCurrentProtection())},
      {"warranty type", record.GetWarrantyType()},
      {"design cycle count", record.GetDesignCycleCount()},
      {"CT assembly", record.GetCtAssembly()},
      {"CT revision", record.GetCtRevision()},
      {"CT supplier", record.GetCtSupplier()},
      {"CT week", record.GetCtMfgWeek()},
      {"adaptive", record.GetAdaptiveBatteryOptimizerInfo()},
      {"care", record.GetBatteryCareInfo()},
      {"test result", std::to_string(record.GetBatteryTestResult())},
      {"test label", record.GetBatteryTestResultLabel()},
      {"test version", record.GetBatteryTestVersion()},
      {"charge rate", std::to_string(record.GetBatteryChargeRate())},
      {"discharge rate", std::to_string(record.GetBatteryDischargeRate())},
      {"error code", record.GetStatus().errorCode},
  };
  std::array<int, 4> cells{};
  record.GetCellVoltages(cells.data());
  for (std::size_t cell = 0; cell < cells.size(); ++cell) {
    snapshot["cell " + std::to_string(cell + 1)] = std::to_string(cells.at(cell));
  }
  const auto* swell = record.GetCellSwellProtectionInfo();
  snapshot["cell swell"] = swell == nullptr ? "none" : std::to_string(swell->GetTimeCharge());
  return snapshot;
}

}  // namespace norv::test
