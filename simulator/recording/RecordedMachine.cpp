#include "recording/RecordedMachine.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

#include "base/Time.h"
#include "base/Utf8.h"
#include "calls/Operations.h"
#include "json/Write.h"
#include "machine/AnswerWords.h"
#include "machine/HexText.h"
#include "machine/MachineFile.h"
#include "machine/SlotFile.h"
#include "machine/Text.h"
#include "norv/simulator/SimulatedMachine.h"
#include "play/SimulatedPlatform.h"
#include "play/SystemCalls.h"
#include "play/WmiQuery.h"
#include "recording/AnswerText.h"
#include "recording/RepeatedCall.h"

namespace norv::simulator {

namespace {

using json::Array;
using json::Object;
using json::Value;
using Calls = std::vector<RecordedCall>;

const RecordedCall* FindCall(const Calls& calls, std::string_view operation, const std::string& argument = {}) {
  const auto found = std::find_if(calls.begin(), calls.end(), [&](const RecordedCall& call) {
    return call.operation == operation && (argument.empty() || call.argument == argument) && !call.outcome.thrown;
  });
  return found != calls.end() ? &*found : nullptr;
}

std::string OneLine(const std::string& text) {
  std::string line = base::AsUtf8(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return line;
}

Object OriginJson(const Origin& origin, const Calls& calls) {
  Object json{{"kind", origin.kind}};
  if (!origin.name.empty()) {
    json["name"] = OneLine(origin.name);
  }
  if (!origin.description.empty()) {
    json["description"] = OneLine(origin.description);
  }
  const RecordedCall* const folder = FindCall(calls, kProgramDataFolder);
  if (folder != nullptr && !folder->folder.empty()) {
    json["programData"] = OneLine(folder->folder);
  }
  return json;
}

// What a slot has for one of the two commands; `absent` is the return code that needs no words.
void AddSlotAnswer(const RecordedCall* call, const std::string& name, std::uint32_t absent, Object& slot) {
  if (call == nullptr) {
    return;
  }
  const Outcome& outcome = call->outcome;
  if (outcome.number != 0) {
    slot[name + "ChannelStatus"] = CodeText(outcome.number);
  } else if (outcome.block.has_value()) {
    slot[name] = Object{{"hex", HexText(*outcome.block)}};
  } else if (outcome.returnCode != absent) {
    slot[name + "ReturnCode"] = outcome.returnCode;
  }
}

void AddDescription(const platform::SlotDescription& description, Object& slot) {
  if (description.stateOfCharge.has_value()) {
    slot["driverStateOfCharge"] = *description.stateOfCharge;
  }
  Object driver = DriverJson(description);
  if (!driver.IsEmpty()) {
    slot["driver"] = std::move(driver);
  }
}

Array SlotsJson(const Calls& calls) {
  Array slots;
  for (const std::string number : {"0", "1"}) {
    Object slot;
    AddSlotAnswer(FindCall(calls, kSendBiosCommand, "1,7,1 slot " + number), "battery", firmware::kEmptySlot, slot);
    const std::uint32_t absent = slot.Find("battery") != nullptr ? firmware::kNotSupported : firmware::kNoBattery;
    AddSlotAnswer(FindCall(calls, kSendBiosCommand, "1,86,1 slot " + number), "cellSwell", absent, slot);
    const RecordedCall* const described = FindCall(calls, kDescribeSlot, number);
    if (described != nullptr) {
      AddDescription(*described->outcome.slot, slot);
    }
    slots.push_back(slot.IsEmpty() ? Value() : Value(std::move(slot)));
  }
  return slots;
}

// A folded name as the query has it.
std::string Spelled(const std::string& name, const std::string& query) {
  const std::size_t place = Folded(query).find(name);
  return place != std::string::npos ? query.substr(place, name.size()) : name;
}

// A namespace as it is described, with the names of its classes by the folded ones: a query may spell them in another
// way than the one before.
struct DescribedNamespace {
  Object& classes;
  std::map<std::string, std::string>& names;
};

// The rows of a query go to its class, with the property that it was filtered by.
void AddQuery(const RecordedCall& call, DescribedNamespace into) {
  const std::optional<WmiQuery> query = ParseWmiQuery(call.argument);
  if (!query.has_value()) {
    return;
  }
  const auto name = into.names.try_emplace(query->wmiClass, Spelled(query->wmiClass, call.argument)).first;
  Value& rows = into.classes[name->second];
  if (call.outcome.number != 0) {
    rows = rows.IsNull() ? Object{{"queryFails", CodeText(call.outcome.number)}} : std::move(rows);
    return;
  }
  if (!rows.Is<Array>()) {
    rows = Array();
  }
  for (const RecordedRow& row : call.rows) {
    Object object = RowJson(row);
    if (query->filter.has_value() && std::none_of(row.begin(), row.end(), [&](const auto& property) {
          return Folded(property.first) == query->filter->property;
        })) {
      object[Spelled(query->filter->property, call.argument)] = query->filter->value;
    }
    rows.As<Array>()->emplace_back(std::move(object));
  }
}

Object WmiJson(const Calls& calls) {
  Object wmi;
  std::set<std::string> known;
  std::set<std::string> queries;
  std::map<std::string, std::map<std::string, std::string>> names;
  for (const RecordedCall& call : calls) {
    if (call.operation == kConnectWmi && known.insert(NamespaceKey(call.argument)).second) {
      wmi[call.argument] =
          call.outcome.number != 0 ? Object{{"connectFails", CodeText(call.outcome.number)}} : Object();
    }
    const bool isNew = call.operation == kQuery && !call.outcome.thrown && queries.insert(CallKey(call)).second;
    const Value* const classes = isNew ? wmi.Find(call.wmiNamespace) : nullptr;
    if (classes != nullptr && (*classes)["connectFails"].IsNull()) {
      AddQuery(call, {*wmi[call.wmiNamespace].As<Object>(), names[call.wmiNamespace]});
    }
  }
  return wmi;
}

// Empty where nobody asked for it, or where there is none.
Object TestProgramJson(const Calls& calls) {
  const RecordedCall* const version = FindCall(calls, kReadProductVersion);
  const RecordedCall* const run = FindCall(calls, kRunProgram);
  const bool isMissing = version != nullptr && version->outcome.fails && version->outcome.left.has_value() &&
                         version->outcome.left->code != kNoVersionResource;
  if ((version == nullptr && run == nullptr) || isMissing) {
    return {};
  }
  Object program{{"version", version != nullptr ? Value(version->outcome.text) : Value()}};
  if (run != nullptr && run->outcome.fails) {
    program["startFails"] =
        run->outcome.left.has_value() && run->outcome.left->code != 0 ? run->outcome.left->code : kFileNotFound;
  }
  const RecordedCall* const folder = FindCall(calls, kProgramDataFolder);
  if (run != nullptr && folder != nullptr && folder->outcome.text.has_value() && base::IsUtf8(*folder->outcome.text)) {
    program["report"] = *folder->outcome.text;
  }
  return program;
}

Object SystemMessagesJson(const Calls& calls) {
  Object messages;
  for (const RecordedCall& call : calls) {
    const std::string text = call.outcome.text.value_or("");
    const bool isMessage = call.operation == kFormatSystemMessage && !text.empty() &&
                           text.find('\0') == std::string::npos && messages.Find(call.argument) == nullptr;
    if (isMessage) {
      messages[call.argument] = base::BytesToUtf8(text);
    }
  }
  return messages;
}

// By how many minutes local time is ahead, taken from the first calendar time that has a time value.
std::optional<std::int64_t> UtcOffset(const Calls& calls) {
  for (const RecordedCall& call : calls) {
    if (call.operation != kLocalTimeValue || call.outcome.number < 0 || call.outcome.thrown) {
      continue;
    }
    const std::tm& local = call.calendarTime;
    const std::chrono::year_month_day date{std::chrono::year(local.tm_year + 1900),
                                           std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)),
                                           std::chrono::day(static_cast<unsigned>(local.tm_mday))};
    const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    const std::int64_t seconds =
        ((days * 24 + local.tm_hour) * 60 + local.tm_min) * 60 + local.tm_sec - call.outcome.number;
    constexpr std::int64_t kMostMinutes = 840;
    const std::int64_t minutes = seconds / 60;
    return seconds % 60 == 0 && std::abs(minutes) <= kMostMinutes ? std::optional(minutes) : std::nullopt;
  }
  return std::nullopt;
}

Object ClockJson(const Calls& calls) {
  Object clock;
  const RecordedCall* const now = FindCall(calls, kNow);
  constexpr std::int64_t kBehindTheYears = 253402300800;  // the year 10000
  if (now != nullptr && now->outcome.number >= 0 && now->outcome.number < kBehindTheYears) {
    clock["now"] = base::TimeText(now->outcome.number);
  }
  if (const auto offset = UtcOffset(calls)) {
    clock["utcOffsetMinutes"] = *offset;
  }
  return clock;
}

// What nobody asked for is left out.
void AddUnlessEmpty(const char* key, Object object, Object& machine) {
  if (!object.IsEmpty()) {
    machine[key] = std::move(object);
  }
}

// Only the first answers, in the words in which a machine is described.
Object DescribedJson(const Calls& calls, const Origin& origin) {
  Object machine;
  const std::string description = OneLine(origin.description);
  machine["description"] = description.empty() ? "A recorded machine" : description;
  machine["recordedFrom"] = OriginJson(origin, calls);
  const RecordedCall* const described = FindCall(calls, kDescribeSlot);
  if (described != nullptr && !described->outcome.slot->source.empty()) {
    machine["source"] = base::AsUtf8(described->outcome.slot->source);
  }
  machine["slots"] = SlotsJson(calls);
  AddUnlessEmpty("wmi", WmiJson(calls), machine);
  AddUnlessEmpty("testProgram", TestProgramJson(calls), machine);
  const RecordedCall* const folder = FindCall(calls, kProgramDataFolder);
  if (folder != nullptr && folder->outcome.fails) {
    machine["programData"] = nullptr;
  }
  AddUnlessEmpty("systemMessages", SystemMessagesJson(calls), machine);
  const RecordedCall* const path = FindCall(calls, kLibraryPath);
  if (path != nullptr) {
    const std::string text = path->outcome.text.value_or("");
    machine["modulePath"] = text.empty() ? Value() : Value(base::AsUtf8(text));
  }
  AddUnlessEmpty("clock", ClockJson(calls), machine);
  return machine;
}

// The report that a program leaves is found when the folder is asked for: none of the two can be answered without the
// other.
bool IsReportOperation(std::string_view operation) {
  return operation == kRunProgram || operation == kProgramDataFolder;
}

// Answers may be such that no description holds them. Then all of them are spelled out.
Object ReadableJson(const Calls& calls, const Origin& origin) {
  Object machine = DescribedJson(calls, origin);
  try {
    ReadMachine(json::Write(machine), "the recording");
    return machine;
  } catch (const MachineFileError&) {
    return {{"description", machine["description"]}, {"recordedFrom", machine["recordedFrom"]}};
  }
}

// The keys of the calls that the described machine answers in another way.
std::set<std::string> DifferentKeys(const Calls& calls, const Object& described) {
  const auto machine = std::make_shared<MachineDescription>(ReadMachine(json::Write(described), "the recording"));
  SimulatedPlatform simulated(machine);
  std::set<std::string> different;
  bool isReportDifferent = false;
  for (const RecordedCall& call : calls) {
    if (!AnswersAlike(call, RepeatedCall(simulated, call))) {
      different.insert(CallKey(call));
      isReportDifferent = isReportDifferent || IsReportOperation(call.operation);
    }
  }
  for (const RecordedCall& call : calls) {
    if (isReportDifferent && IsReportOperation(call.operation)) {
      different.insert(CallKey(call));
    }
  }
  return different;
}

}  // namespace

std::string RecordedMachineText(const std::vector<RecordedCall>& calls, const Origin& origin) {
  Object machine = ReadableJson(calls, origin);
  const std::set<std::string> different = DifferentKeys(calls, machine);
  Array answers;
  for (const RecordedCall& call : calls) {
    if (different.count(CallKey(call)) != 0) {
      answers.emplace_back(AnswerJson(call));
    }
  }
  if (!answers.empty()) {
    machine["answers"] = std::move(answers);
  }
  return json::Write(machine, 2) + '\n';
}

}  // namespace norv::simulator
