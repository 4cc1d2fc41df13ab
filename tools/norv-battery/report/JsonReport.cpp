#include <cmath>
#include <type_traits>

#include "base/Utf8.h"
#include "json/Write.h"
#include "report/Verdict.h"
#include "report/WriteReport.h"

namespace norv::tool {

namespace {

using base::BytesToUtf8;
using json::Array;
using json::Object;
using json::Value;

Value FailureJson(const std::optional<Failure>& failure) {
  if (!failure) {
    return nullptr;
  }
  return Object{
      {"category", failure->category},
      {"code", failure->code},
      {"message", BytesToUtf8(failure->message)},
      {"type", BytesToUtf8(failure->type)},
      {"function", BytesToUtf8(failure->function)},
  };
}

Object IdentityJson(const Identity& identity) {
  return {
      {"manufacturer", BytesToUtf8(identity.manufacturer)},
      {"deviceName", BytesToUtf8(identity.deviceName)},
      {"serialNumber", BytesToUtf8(identity.serialNumber)},
      {"ctNumber", BytesToUtf8(identity.ctNumber)},
  };
}

// A record's percentages have three decimals, which a float only comes near to; written as a double it would show more.
Value PercentageJson(std::optional<float> percentage) {
  return percentage ? Value(std::round(static_cast<double>(*percentage) * 1000.0) / 1000.0) : Value();
}

Object CapacityJson(const Capacity& capacity) {
  return {
      {"designCapacity", capacity.designCapacity},
      {"fullChargeCapacity", capacity.fullChargeCapacity},
      {"fullChargeCapacityPercentage", PercentageJson(capacity.fullChargeCapacityPercentage)},
      {"remainingCapacity", capacity.remainingCapacity},
      {"remainingCapacityPercentage", PercentageJson(capacity.remainingCapacityPercentage)},
      {"maxError", capacity.maxError},
      {"cycleCount", capacity.cycleCount},
      {"designVoltage", capacity.designVoltage},
      {"voltage", capacity.voltage},
      {"current", capacity.current},
      {"temperature", capacity.temperature},
      {"chargeRate", capacity.chargeRate},
      {"dischargeRate", capacity.dischargeRate},
      {"driverStateOfCharge", capacity.driverStateOfCharge},
      {"driverStateOfChargeDiffers", DriverDisagrees(capacity)},
  };
}

Object CellsJson(const Cells& cells) {
  return {{"voltages", json::ToArray(cells.voltages)}, {"spread", cells.spread}};
}

template <typename Type>
Object NamedJson(const std::vector<Named<Type>>& values) {
  Object object;
  for (const auto& value : values) {
    object[value.key] = value.value;
  }
  return object;
}

Object StatusJson(const Status& status) {
  return {{"word", status.word}, {"errorCode", status.errorCode}, {"flags", NamedJson(status.flags)}};
}

Object DatesJson(const Dates& dates) {
  const Age& age = dates.age;
  return {
      {"manufacturingDate", dates.manufacturingDate},
      {"warrantyType", dates.warrantyType},
      {"warrantyDate", dates.warrantyDate},
      {"age",
       Object{
           {"days", age.error ? Value() : Value(age.value)}, {"value", age.value}, {"error", FailureJson(age.error)}}},
  };
}

Object AttributesJson(const Attributes& attributes) {
  return {
      {"packSupplier", attributes.packSupplier},
      {"cellSupplier", attributes.cellSupplier},
      {"calibrationType", BytesToUtf8(attributes.calibrationType)},
      {"overCurrentProtection", attributes.overCurrentProtection},
      {"designCycleCount", attributes.designCycleCount},
      {"ctAssembly", BytesToUtf8(attributes.ctAssembly)},
      {"ctRevision", BytesToUtf8(attributes.ctRevision)},
      {"ctSupplier", BytesToUtf8(attributes.ctSupplier)},
      {"ctManufacturingWeek", BytesToUtf8(attributes.ctManufacturingWeek)},
  };
}

Object VerdictJson(const TestVerdict& verdict) {
  return {{"result", verdict.result}, {"label", verdict.label}, {"version", BytesToUtf8(verdict.version)}};
}

Value BatteryJson(const std::optional<BatteryReport>& battery) {
  if (!battery) {
    return nullptr;
  }
  return Object{
      {"slot", battery->slot},
      {"identity", IdentityJson(battery->identity)},
      {"capacity", CapacityJson(battery->capacity)},
      {"cells", CellsJson(battery->cells)},
      {"status", StatusJson(battery->status)},
      {"dates", DatesJson(battery->dates)},
      {"attributes", AttributesJson(battery->attributes)},
      {"settings", Object{{"adaptiveBatteryOptimizer", battery->settings.adaptiveBatteryOptimizer},
                          {"batteryCare", battery->settings.batteryCare}}},
      {"cellSwellProtection",
       battery->cellSwellProtection.empty() ? Value() : Value(NamedJson(battery->cellSwellProtection))},
      {"batteryTest", VerdictJson(battery->testVerdict)},
      {"validity", Object{{"valid", battery->validity.valid}, {"error", FailureJson(battery->validity.error)}}},
  };
}

Value TestJson(const std::optional<TestReport>& test) {
  if (!test) {
    return nullptr;
  }
  Object object = VerdictJson(test->verdict);
  const auto verdict = ExplainResult(test->verdict.result);
  object["class"] = verdict ? Value(verdict->verdictClass) : Value();
  object["meaning"] = verdict ? Value(verdict->meaning) : Value();
  object["qualifier"] = verdict ? Value(verdict->qualifier) : Value();
  object["error"] = FailureJson(test->error);
  return object;
}

}  // namespace

std::string JsonReport(const Report& report) {
  const auto& lastError = report.test && report.test->error ? report.test->error : report.readError;
  const Object object{
      {"source", Object{{"kind", report.source.kind},
                        {"name", report.source.name},
                        {"description", report.source.description},
                        {"channel", report.source.channel},
                        {"isRecording", report.source.isRecording},
                        {"recordedAt", report.source.recordedAt}}},
      {"batteries", Array{BatteryJson(report.batteries[0]), BatteryJson(report.batteries[1])}},
      {"batteryTest", TestJson(report.test)},
      {"readError", FailureJson(report.readError)},
      {"error", FailureJson(lastError)},
  };
  return json::Write(object, 2) + "\n";
}

}  // namespace norv::tool
