// All accessors of a record.
#pragma once

#include "battery/NorvBatteryInfo.h"

namespace norv::bench {

// Reads every accessor of `battery` once, and gives each answer to `take`.
template <typename Take>
void ReadEveryAccessor(shared::battery::NorvBatteryInfo& battery, Take take) {
  int voltages[4];
  take(battery.IsValid());
  take(battery.GetManufacturer());
  take(battery.GetCtNumber());
  take(battery.GetDeviceName());
  take(battery.GetSerialNumber());
  take(battery.GetDesignVoltage());
  take(battery.GetDesignEnergyCapacity());
  take(battery.GetFullEnergyCapacity());
  take(battery.GetFullEnergyCapacityPercentage());
  take(battery.GetRemainingCapacity());
  take(battery.GetRemainingEnergyCapacityPercentage());
  take(battery.GetMaxErrorPercentage());
  take(battery.GetCycleCount());
  take(battery.GetTemperature());
  take(battery.GetVoltage());
  take(battery.GetElectricCurrent());
  take(battery.GetStatusWord());
  battery.GetCellVoltages(voltages);
  take(voltages[3]);
  take(battery.GetManufacturingDate());
  take(battery.GetPackSupplier());
  take(battery.GetCellSupplier());
  take(battery.GetCalibrationType());
  take(battery.GetOverCurrentProtection());
  take(battery.GetWarrantyType());
  take(battery.GetDesignCycleCount());
  take(battery.GetCtAssembly());
  take(battery.GetCtRevision());
  take(battery.GetCtSupplier());
  take(battery.GetCtMfgWeek());
  take(battery.GetAge());
  take(battery.GetStatus());
  take(battery.GetAdaptiveBatteryOptimizerInfo());
  take(battery.GetBatteryCareInfo());
  take(battery.GetCellSwellProtectionInfo());
  take(battery.GetBatteryTestResult());
  take(battery.GetBatteryTestResultLabel());
  take(battery.GetBatteryTestVersion());
  take(battery.GetWarrantyDate());
  take(battery.GetBatteryChargeRate());
  take(battery.GetBatteryDischargeRate());
  take(static_cast<bool>(battery.GetError()));
}

}  // namespace norv::bench
