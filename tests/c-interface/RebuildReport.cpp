// Rebuilds the tool's JSON report of a sample machine with nothing but the C interface, and compares it with the report
// that is kept: rebuild-report SAMPLE REPORT
#include <cmath>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Reader.h"
#include "norv/simulator/SimulatedMachine.h"
#include "report/Verdict.h"

namespace norv::test::c {
namespace {

using Json = nlohmann::ordered_json;

Json FailureJson(const Failure& failure) {
  if (failure.category == NORV_BATTERY_NOTHING_FAILED) {
    return nullptr;
  }
  return {{"category", failure.category},
          {"code", failure.code},
          {"message", failure.message},
          {"type", failure.type},
          {"function", failure.function}};
}

// The report has three decimals.
double ThreeDecimals(double real) {
  return std::round(real * 1000.0) / 1000.0;
}

Json ValueJson(const Value& value) {
  switch (value.value.kind) {
    case NORV_BATTERY_NUMBER:
      return value.value.number;
    case NORV_BATTERY_REAL:
      return value.value.state == NORV_BATTERY_VALUE ? Json(ThreeDecimals(value.value.real)) : Json(nullptr);
    case NORV_BATTERY_FLAG:
      return value.value.number != 0;
    default:
      return value.text;
  }
}

Json FieldJson(const norv_battery_record* record, std::int32_t field) {
  return ValueJson(ReadField(record, field));
}

struct Key {
  const char* key;
  std::int32_t field;
};

Json Group(const norv_battery_record* record, std::initializer_list<Key> keys) {
  Json group = Json::object();
  for (const Key& key : keys) {
    group[key.key] = FieldJson(record, key.field);
  }
  return group;
}

// Keys are the fields' own names in the manner of JSON: "time full charge" is timeFullCharge.
std::string KeyOf(const norv_battery_description& description) {
  std::string key;
  for (const char* character = description.name; *character != '\0'; ++character) {
    if (*character == ' ') {
      key += static_cast<char>(std::toupper(static_cast<unsigned char>(*++character)));
    } else {
      key += *character;
    }
  }
  return key;
}

Json Range(const norv_battery_record* record, std::int32_t first, std::int32_t last) {
  Json group = Json::object();
  for (std::int32_t field = first; field <= last; ++field) {
    group[KeyOf(Describe(field))] = FieldJson(record, field);
  }
  return group;
}

Json CellsJson(const norv_battery_record* record) {
  Json voltages = Json::array();
  std::optional<std::int64_t> lowest;
  std::optional<std::int64_t> highest;
  for (std::int32_t field = NORV_BATTERY_CELL_VOLTAGE_1; field <= NORV_BATTERY_CELL_VOLTAGE_4; ++field) {
    const std::int64_t voltage = ReadField(record, field).value.number;
    voltages.push_back(voltage);
    if (voltage != 0) {
      lowest = std::min(lowest.value_or(voltage), voltage);
      highest = std::max(highest.value_or(voltage), voltage);
    }
  }
  return {{"voltages", voltages}, {"spread", lowest ? Json(*highest - *lowest) : Json(nullptr)}};
}

Json StatusJson(const norv_battery_record* record) {
  Json status = Group(record, {{"word", NORV_BATTERY_STATUS_WORD}, {"errorCode", NORV_BATTERY_STATUS_ERROR_CODE}});
  status["flags"] = Range(record, NORV_BATTERY_FULLY_DISCHARGED, NORV_BATTERY_OVER_CHARGED_ALARM);
  return status;
}

Json DatesJson(const norv_battery_record* record) {
  Json dates = Group(record, {{"manufacturingDate", NORV_BATTERY_MANUFACTURING_DATE},
                              {"warrantyType", NORV_BATTERY_WARRANTY_TYPE},
                              {"warrantyDate", NORV_BATTERY_WARRANTY_DATE}});
  const Value age = ReadField(record, NORV_BATTERY_AGE);
  dates["age"] = {{"days", age.value.state == NORV_BATTERY_VALUE ? Json(age.value.number) : Json(nullptr)},
                  {"value", age.value.number},
                  {"error", FailureJson(FieldFailure(record, NORV_BATTERY_AGE))}};
  return dates;
}

Json CellSwellJson(const norv_battery_record* record) {
  return ReadField(record, NORV_BATTERY_TIME_CHARGE).value.state == NORV_BATTERY_ABSENT
             ? Json(nullptr)
             : Range(record, NORV_BATTERY_TIME_CHARGE, NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME);
}

Json ResultJson(const Value& result) {
  return result.value.state == NORV_BATTERY_ABSENT ? Json(nullptr) : ValueJson(result);
}

Json BatteryJson(const norv_battery_record* record, std::uint32_t slot) {
  if (record == nullptr) {
    return nullptr;
  }
  // The dates come first, here: that an age was asked for does not change what the record says of its validity.
  const Json dates = DatesJson(record);
  Json battery;
  battery["slot"] = slot;
  battery["identity"] = Range(record, NORV_BATTERY_MANUFACTURER, NORV_BATTERY_CT_NUMBER);
  battery["capacity"] = Range(record, NORV_BATTERY_DESIGN_CAPACITY, NORV_BATTERY_DISCHARGE_RATE);
  // A record has the firmware's word.
  battery["capacity"]["current"] = static_cast<std::int16_t>(ReadField(record, NORV_BATTERY_CURRENT).value.number);
  // What a system's driver says of the charge beside the block is no field of a record; the samples have none of it.
  battery["capacity"]["driverStateOfCharge"] = nullptr;
  battery["capacity"]["driverStateOfChargeDiffers"] = false;
  battery["cells"] = CellsJson(record);
  battery["status"] = StatusJson(record);
  battery["dates"] = dates;
  battery["attributes"] = Range(record, NORV_BATTERY_PACK_SUPPLIER, NORV_BATTERY_CT_MANUFACTURING_WEEK);
  battery["settings"] = Range(record, NORV_BATTERY_ADAPTIVE_BATTERY_OPTIMIZER, NORV_BATTERY_BATTERY_CARE);
  battery["cellSwellProtection"] = CellSwellJson(record);
  battery["batteryTest"] = {{"result", ResultJson(ReadField(record, NORV_BATTERY_TEST_RESULT))},
                            {"label", FieldJson(record, NORV_BATTERY_TEST_LABEL)},
                            {"version", FieldJson(record, NORV_BATTERY_TEST_VERSION)}};
  battery["validity"] = {{"valid", FieldJson(record, NORV_BATTERY_VALID)},
                         {"error", FailureJson(FieldFailure(record, NORV_BATTERY_VALID))}};
  return battery;
}

// Why there is no verdict: the test's own failure is the cause of the collection's.
Failure NoVerdictFailure(const norv_battery_collection* collection) {
  const Failure own = TestFailure(collection);
  return own.category != NORV_BATTERY_NOTHING_FAILED ? own : CollectionFailure(collection);
}

// Class, meaning and qualifier are the tool's own words for a result code.
Json TestJson(const norv_battery_collection* collection, bool isVerdict) {
  const Value result = ReadTest(collection, NORV_BATTERY_TEST_RESULT);
  const auto verdict = tool::ExplainResult(static_cast<int>(result.value.number));
  return {{"result", ResultJson(result)},
          {"label", ValueJson(ReadTest(collection, NORV_BATTERY_TEST_LABEL))},
          {"version", ValueJson(ReadTest(collection, NORV_BATTERY_TEST_VERSION))},
          {"class", verdict ? Json(verdict->verdictClass) : Json(nullptr)},
          {"meaning", verdict ? Json(verdict->meaning) : Json(nullptr)},
          {"qualifier", verdict ? Json(verdict->qualifier) : Json(nullptr)},
          {"error", isVerdict ? Json(nullptr) : FailureJson(NoVerdictFailure(collection))}};
}

Json ReportJson(const std::string& sample, const simulator::SimulatedMachine& machine, bool withTest) {
  auto options = Sized<norv_battery_options>();
  options.flags = NORV_BATTERY_READ_CELL_SWELL;
  const Collection collection(&options);
  Json report;
  report["source"] = {{"kind", "sample"},
                      {"name", sample},
                      {"description", machine.Description()},
                      {"channel", "a machine file"},
                      {"isRecording", false},
                      {"recordedAt", nullptr}};
  const Json readError = FailureJson(CollectionFailure(collection.Get()));
  Json error = readError;
  Json test;
  if (withTest) {
    const norv_battery_status status = norv_battery_run_test(collection.Get());
    const bool isVerdict = status != NORV_BATTERY_NO_VERDICT;
    if (isVerdict) {
      Demand(status);
    }
    test = TestJson(collection.Get(), isVerdict);
    error = isVerdict ? readError : test.at("error");
  }
  report["batteries"] = {BatteryJson(collection.Record(0), 0), BatteryJson(collection.Record(1), 1)};
  report["batteryTest"] = test;
  report["readError"] = readError;
  report["error"] = error;
  return report;
}

int Run(const std::string& sample, const std::string& path) {
  std::ifstream file(path);
  const Json kept = Json::parse(file);
  const auto machine = simulator::SimulatedMachine::FromSample(sample);
  const Json rebuilt = ReportJson(sample, *machine, !kept.at("batteryTest").is_null());
  if (rebuilt == kept) {
    return 0;
  }
  std::cerr << "the report from the C interface differs from " << path << ":\n"
            << Json::diff(kept, rebuilt).dump(2) << "\norder of the keys included; rebuilt:\n"
            << rebuilt.dump(2) << '\n';
  return 1;
}

}  // namespace
}  // namespace norv::test::c

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: rebuild-report SAMPLE REPORT\n";
    return 2;
  }
  try {
    return norv::test::c::Run(argv[1], argv[2]);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
  }
}
