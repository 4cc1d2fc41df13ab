#include <cmath>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Utf8.h"
#include "json/Write.h"
#include "output/BatteryFields.h"
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

// Writes the members of objects within objects.
class ObjectSink {
 public:
  explicit ObjectSink(Object& object) : objects_{&object} {}

  void Open(std::string_view key) {
    Value& member = (*objects_.back())[key];
    member = Object();
    objects_.push_back(member.As<Object>());
  }
  void Close() { objects_.pop_back(); }

  void Number(std::string_view key, Value value) { Member(key, std::move(value)); }
  void Numbers(std::string_view key, const auto& values) { Member(key, json::ToArray(values)); }
  void Boolean(std::string_view key, bool value) { Member(key, value); }
  void Null(std::string_view key) { Member(key, nullptr); }
  void Bytes(std::string_view key, const std::string& bytes) { Member(key, BytesToUtf8(bytes)); }
  void Utf8(std::string_view key, const std::string& text) { Member(key, text); }
  // A record's percentages have three decimals, which a float only comes near to; written as a double it would show
  // more.
  void Percentage(std::string_view key, std::optional<float> value) {
    Member(key, std::round(static_cast<double>(*value) * 1000.0) / 1000.0);
  }
  void Failure(std::string_view key, const std::optional<tool::Failure>& failure) { Member(key, FailureJson(failure)); }

 private:
  void Member(std::string_view key, Value value) { (*objects_.back())[key] = std::move(value); }

  std::vector<Object*> objects_;  // from the outermost on
};

// A battery of the report, for the writer of battery fields.
class ReportedBattery {
 public:
  explicit ReportedBattery(const BatteryReport& report) : report_(report) {}

  static constexpr bool Has(const fields::Row& /*row*/) { return true; }

  template <std::size_t kIndex>
  const FieldValue& Get() const {
    return report_[fields::kCatalogue[kIndex].number];
  }

  // What a record lacks as a whole has no members.
  template <std::size_t kFirst>
  bool IsNull() const {
    const norv_battery_state state = Get<kFirst>().state;
    return *fields::kCatalogue[kFirst].group == fields::kCellSwell &&
           (state == NORV_BATTERY_ABSENT || state == NORV_BATTERY_NOT_TOLD);
  }

  // The driver's figure lies beside the block, and is no field of a record.
  template <std::size_t kFirst, typename Sink>
  void WriteBeyondCatalogue(Sink& sink) const {
    if constexpr (*fields::kCatalogue[kFirst].group == fields::kCapacity) {
      sink.Number("driverStateOfCharge", report_.driverStateOfCharge);
      sink.Boolean("driverStateOfChargeDiffers", DriverDisagrees(report_));
    }
  }

  const std::optional<Failure>& AgeFailure() const { return report_.ageFailure; }
  const std::optional<Failure>& ValidityFailure() const { return report_.validityFailure; }

 private:
  const BatteryReport& report_;
};

// The paths of the fields that nobody told.
Array NotTold(const BatteryReport& battery) {
  Array paths;
  for (const fields::Row& row : fields::kCatalogue) {
    if (!battery.IsTold(row.number)) {
      paths.emplace_back(std::string(row.group->key) + "." + row.key);
    }
  }
  return paths;
}

Value OrNull(const std::string& text) {
  return text.empty() ? Value() : Value(text);
}

Object DriverJson(const platform::SlotDescription& driver) {
  return {
      {"modelName", OrNull(driver.modelName)},       {"serialNumber", OrNull(driver.serialNumber)},
      {"manufacturer", OrNull(driver.manufacturer)}, {"technology", OrNull(driver.technology)},
      {"designEnergy", driver.designEnergy},         {"fullChargeEnergy", driver.fullChargeEnergy},
      {"remainingEnergy", driver.remainingEnergy},   {"power", driver.power},
  };
}

Value BatteryJson(const std::optional<BatteryReport>& battery) {
  if (!battery) {
    return nullptr;
  }
  Object object{{"slot", battery->slot}};
  ObjectSink sink(object);
  WriteGroups(sink, ReportedBattery(*battery), [](const fields::Group&) { return true; });
  if (battery->driver) {
    object["driver"] = DriverJson(*battery->driver);
    object["notTold"] = NotTold(*battery);
  }
  return object;
}

Value TestJson(const std::optional<TestReport>& test) {
  if (!test) {
    return nullptr;
  }
  const auto verdict = ExplainResult(test->result);
  return Object{
      {"result", test->result},
      {"label", test->label},
      {"version", BytesToUtf8(test->version)},
      {"class", verdict ? Value(verdict->verdictClass) : Value()},
      {"meaning", verdict ? Value(verdict->meaning) : Value()},
      {"qualifier", verdict ? Value(verdict->qualifier) : Value()},
      {"error", FailureJson(test->error)},
  };
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
