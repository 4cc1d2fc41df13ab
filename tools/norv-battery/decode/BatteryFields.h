// Everything that a battery-information block says, field by field, in the order and under the keys of a JSON report.
#pragma once

#include <array>
#include <optional>

#include "battery/NorvBatteryInfo.h"
#include "report/ReadReport.h"
#include "report/Report.h"

namespace norv::tool {

// Each takes a sink: JsonSink, CsvSink or CsvHeadSink.

template <typename Sink>
void WriteIdentity(Sink& sink, const shared::battery::NorvBatteryInfo& battery) {
  sink.Open("identity");
  sink.Bytes("manufacturer", battery.GetManufacturer());
  sink.Bytes("deviceName", battery.GetDeviceName());
  sink.Bytes("serialNumber", battery.GetSerialNumber());
  sink.Bytes("ctNumber", battery.GetCtNumber());
  sink.Close();
}

template <typename Sink>
void WriteCapacity(Sink& sink, const shared::battery::NorvBatteryInfo& battery) {
  sink.Open("capacity");
  sink.Number("designCapacity", battery.GetDesignEnergyCapacity());
  sink.Number("fullChargeCapacity", battery.GetFullEnergyCapacity());
  sink.Percentage("fullChargeCapacityPercentage", Computed(battery.GetFullEnergyCapacityPercentage()));
  sink.Number("remainingCapacity", battery.GetRemainingCapacity());
  sink.Percentage("remainingCapacityPercentage", Computed(battery.GetRemainingEnergyCapacityPercentage()));
  sink.Number("maxError", battery.GetMaxErrorPercentage());
  sink.Number("cycleCount", battery.GetCycleCount());
  sink.Number("designVoltage", battery.GetDesignVoltage());
  sink.Number("voltage", battery.GetVoltage());
  sink.Number("current", SignedCurrent(battery.GetElectricCurrent()));
  sink.Number("temperature", battery.GetTemperature());
  sink.Close();
}

template <typename Sink>
void WriteCells(Sink& sink, shared::battery::NorvBatteryInfo& battery) {
  const Cells cells = ReadCells(battery);
  sink.Open("cells");
  sink.Numbers("voltages", cells.voltages);
  sink.Number("spread", cells.spread);
  sink.Close();
}

template <typename Sink>
void WriteStatus(Sink& sink, const shared::battery::NorvBatteryInfo& battery) {
  const shared::battery::NorvBatteryStatus status = battery.GetStatus();
  sink.Open("status");
  sink.Number("word", battery.GetStatusWord());
  sink.Bytes("errorCode", status.errorCode);
  sink.Open("flags");
  sink.Boolean("fullyDischarged", status.fullyDischarged);
  sink.Boolean("fullyCharged", status.fullyCharged);
  sink.Boolean("discharging", status.discharging);
  sink.Boolean("initialized", status.initialized);
  sink.Boolean("remainingTimeAlarm", status.remainingTimeAlarm);
  sink.Boolean("remainingCapacityAlarm", status.remainingCapacityAlarm);
  sink.Boolean("reservedBit10", status.reservedBit10);
  sink.Boolean("terminateDischargeAlarm", status.terminateDischargeAlarm);
  sink.Boolean("overTemperatureAlarm", status.overTemperatureAlarm);
  sink.Boolean("reservedBit13", status.reservedBit13);
  sink.Boolean("terminateChargeAlarm", status.terminateChargeAlarm);
  sink.Boolean("overChargedAlarm", status.overChargedAlarm);
  sink.Close();
  sink.Close();
}

template <typename Sink>
void WriteDates(Sink& sink, shared::battery::NorvBatteryInfo& battery) {
  sink.Open("dates");
  sink.Bytes("manufacturingDate", battery.GetManufacturingDate());
  sink.Bytes("warrantyType", battery.GetWarrantyType());
  sink.Bytes("warrantyDate", battery.GetWarrantyDate());
  const int age = battery.GetAge();
  const bool isAge = !IsAgeFailure(battery.GetError());
  sink.Open("age");
  sink.Number("days", isAge ? std::optional(age) : std::nullopt);
  sink.Number("value", age);
  sink.Failure("error", isAge ? nullptr : &battery.GetError());
  sink.Close();
  sink.Close();
}

template <typename Sink>
void WriteAttributes(Sink& sink, const shared::battery::NorvBatteryInfo& battery) {
  const CtFields ct = ReadCtFields(battery);
  sink.Open("attributes");
  sink.Bytes("packSupplier", battery.GetPackSupplier());
  sink.Bytes("cellSupplier", battery.GetCellSupplier());
  sink.Bytes("calibrationType", battery.GetCalibrationType());
  sink.Number("overCurrentProtection", battery.GetOverCurrentProtection());
  sink.Bytes("designCycleCount", battery.GetDesignCycleCount());
  sink.Bytes("ctAssembly", ct.assembly);
  sink.Bytes("ctRevision", ct.revision);
  sink.Bytes("ctSupplier", ct.supplier);
  sink.Bytes("ctManufacturingWeek", ct.manufacturingWeek);
  sink.Close();
}

// Validity comes before everything else: the error that GetAge leaves would make the record invalid.
template <typename Sink>
void WriteBattery(Sink& sink, shared::battery::NorvBatteryInfo& battery) {
  sink.Open("validity");
  const bool valid = battery.IsValid();
  sink.Boolean("valid", valid);
  sink.Failure("error", valid ? nullptr : &battery.GetError());
  sink.Close();
  WriteIdentity(sink, battery);
  WriteCapacity(sink, battery);
  WriteCells(sink, battery);
  WriteStatus(sink, battery);
  WriteDates(sink, battery);
  WriteAttributes(sink, battery);
}

}  // namespace norv::tool
