#include <cmath>
#include <nlohmann/json.hpp>
#include <type_traits>

#include "EscapeText.h"
#include "Verdict.h"
#include "WriteReport.h"

namespace norv::tool {

namespace {

using Json = nlohmann::ordered_json;

Json FailureJson(const std::optional<Failure>& failure) {
  if (!failure) {
    return nullptr;
  }
  return {
      {"category", failure->category},
      {"code", failure->code},
      {"message", BytesToUtf8(failure->message)},
      {"type", BytesToUtf8(failure->type)},
      {"function", BytesToUtf8(failure->function)},
  };
}

Json IdentityJson(const Identity& identity) {
  return {
      {"manufacturer", BytesToUtf8(identity.manufacturer)},
      {"deviceName", BytesToUtf8(identity.deviceName)},
      {"serialNumber", BytesToUtf8(identity.serialNumber)},
      {"ctNumber", BytesToUtf8(identity.ctNumber)},
  };
}

// A record's percentages have three decimals, which a float only comes near to; written as a double it would show more.
double ThreeDecimals(float percentage) {
  return std::round(static_cast<double>(percentage) * 1000.0) / 1000.0;
}

Json CapacityJson(const Capacity& capacity) {
  return {
      {"designCapacity", capacity.designCapacity},
      {"fullChargeCapacity", capacity.fullChargeCapacity},
      {"fullChargeCapacityPercentage", ThreeDecimals(capacity.fullChargeCapacityPercentage)},
      {"remainingCapacity", capacity.remainingCapacity},
      {"remainingCapacityPercentage", ThreeDecimals(capacity.remainingCapacityPercentage)},
      {"maxError", capacity.maxError},
      {"cycleCount", capacity.cycleCount},
      {"designVoltage", capacity.designVoltage},
      {"voltage", capacity.voltage},
      {"current", capacity.current},
      {"temperature", capacity.temperature},
      {"chargeRate", capacity.chargeRate},
      {"dischargeRate", capacity.dischargeRate},
      {"driverStateOfCharge", capacity.driverStateOfCharge ? Json(*capacity.driverStateOfCharge) : Json(nullptr)},
      {"driverStateOfChargeDiffers", DriverDisagrees(capacity)},
  };
}

Json CellsJson(const Cells& cells) {
  return {{"voltages", cells.voltages}, {"spread", cells.spread ? Json(*cells.spread) : Json(nullptr)}};
}

template <typename Value>
Json NamedJson(const std::vector<Named<Value>>& values) {
  Json object = Json::object();
  for (const auto& value : values) {
    object[value.key] = static_cast<Value>(value.value);
  }
  return object;
}

Json StatusJson(const Status& status) {
  return {{"word", status.word}, {"errorCode", status.errorCode}, {"flags", NamedJson(status.flags)}};
}

Json DatesJson(const Dates& dates) {
  const Age& age = dates.age;
  return {
      {"manufacturingDate", dates.manufacturingDate},
      {"warrantyType", dates.warrantyType},
      {"warrantyDate", dates.warrantyDate},
      {"age",
       {{"days", age.error ? Json(nullptr) : Json(age.value)},
        {"value", age.value},
        {"error", FailureJson(age.error)}}},
  };
}

Json AttributesJson(const Attributes& attributes) {
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

Json VerdictJson(const TestVerdict& verdict) {
  return {{"result", verdict.result}, {"label", verdict.label}, {"version", BytesToUtf8(verdict.version)}};
}

Json BatteryJson(const std::optional<BatteryReport>& battery) {
  if (!battery) {
    return nullptr;
  }
  return {
      {"slot", battery->slot},
      {"identity", IdentityJson(battery->identity)},
      {"capacity", CapacityJson(battery->capacity)},
      {"cells", CellsJson(battery->cells)},
      {"status", StatusJson(battery->status)},
      {"dates", DatesJson(battery->dates)},
      {"attributes", AttributesJson(battery->attributes)},
      {"settings",
       {{"adaptiveBatteryOptimizer", battery->settings.adaptiveBatteryOptimizer},
        {"batteryCare", battery->settings.batteryCare}}},
      {"cellSwellProtection",
       battery->cellSwellProtection.empty() ? Json(nullptr) : NamedJson(battery->cellSwellProtection)},
      {"batteryTest", VerdictJson(battery->testVerdict)},
      {"validity", {{"valid", battery->validity.valid}, {"error", FailureJson(battery->validity.error)}}},
  };
}

Json TestJson(const std::optional<TestReport>& test) {
  if (!test) {
    return nullptr;
  }
  Json object = VerdictJson(test->verdict);
  const auto verdict = ExplainResult(test->verdict.result);
  object["class"] = verdict ? Json(verdict->verdictClass) : Json(nullptr);
  object["meaning"] = verdict ? Json(verdict->meaning) : Json(nullptr);
  object["qualifier"] = verdict ? Json(verdict->qualifier) : Json(nullptr);
  object["error"] = FailureJson(test->error);
  return object;
}

}  // namespace

std::string JsonReport(const Report& report) {
  const auto& lastError = report.test && report.test->collectionError ? report.test->collectionError : report.readError;
  const Json object = {
      {"source",
       {{"kind", report.source.kind},
        {"name", report.source.name},
        {"description", report.source.description},
        {"channel", report.source.channel}}},
      {"batteries", Json::array({BatteryJson(report.batteries[0]), BatteryJson(report.batteries[1])})},
      {"batteryTest", TestJson(report.test)},
      {"readError", FailureJson(report.readError)},
      {"error", FailureJson(lastError)},
  };
  // File names and the texts that WMI answers are UTF-8 by rule, though nobody enforces it.
  return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace norv::tool
