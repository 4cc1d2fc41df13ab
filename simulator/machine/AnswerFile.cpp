#include "machine/AnswerFile.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include "calls/OperationText.h"
#include "machine/BlockFile.h"
#include "machine/HexText.h"
#include "machine/VersionText.h"
#include "machine/WmiFile.h"
#include "recording/Recording.h"

namespace norv::simulator {

namespace {

constexpr std::size_t kLongestText = std::numeric_limits<std::size_t>::max();
constexpr std::int64_t kLargestTime = std::int64_t{1} << 53;  // beyond it a number of JSON is not exact everywhere
constexpr std::uint32_t kLargestCode = std::numeric_limits<std::uint32_t>::max();

bool ReadTruth(const JsonNode& node) {
  const auto* const truth = node.Value().As<bool>();
  if (truth == nullptr) {
    node.FailExpecting("true or false");
  }
  return *truth;
}

void ReadFlag(const JsonNode& result, const JsonNode&, Answer& answer) {
  answer.outcome.fails = !ReadTruth(result);
}

void ReadNothing(const JsonNode& result, const JsonNode&, Answer&) {
  result.ExpectTrue();
}

void ReadCode(const JsonNode& result, const JsonNode&, Answer& answer) {
  answer.outcome.number = result.Value().Number() == 0.0 ? 0 : result.SignedCode();
}

void ReadTime(const JsonNode& result, const JsonNode&, Answer& answer) {
  answer.outcome.number = result.WholeNumber(-kLargestTime, kLargestTime);
}

void ReadPercent(const JsonNode& result, const JsonNode&, Answer& answer) {
  answer.outcome.fails = result.IsNull();
  answer.outcome.number = result.IsNull() ? 0 : result.WholeNumber(0, kLargestCode);
}

void ReadSystemCode(const JsonNode& result, const JsonNode&, Answer& answer) {
  answer.outcome.number = result.WholeNumber(0, kLargestCode);
}

void ReadVersion(const JsonNode& result, const JsonNode&, Answer& answer) {
  if (!result.IsNull() && (!result.IsText() || !ParseVersion(result.Text()).has_value())) {
    result.FailExpecting("null or a version \"1.2.3.4\" of four numbers from 0 to 65535");
  }
  answer.outcome.fails = result.IsNull();
  answer.outcome.text = result.IsNull() ? std::nullopt : std::optional(result.Text());
}

void ReadName(const JsonNode& result, const JsonNode&, Answer& answer) {
  answer.outcome.text = result.Text();
}

// A text that was written into a buffer, and the length that was told of it.
void ReadBuffer(const JsonNode& result, const JsonNode& node, Answer& answer) {
  answer.outcome.text = result.IsNull() ? std::string() : result.ByteText(kLongestText);
  const auto length = node.Member("length");
  answer.outcome.number =
      length ? length->WholeNumber(0, kLargestCode) : static_cast<std::int64_t>(answer.outcome.text->size());
}

void ReadFolder(const JsonNode& result, const JsonNode& node, Answer& answer) {
  answer.outcome.fails = !ReadTruth(result);
  const auto report = node.Member("report");
  if (report && !report->IsNull()) {
    answer.outcome.text = report->ByteText(kLongestText);
  }
}

// What an operation answers is read from "result" by its own reader.
struct ResultForm {
  std::string_view operation;
  bool hasArgument;
  void (*read)(const JsonNode& result, const JsonNode& node, Answer& answer);
};

constexpr std::array kForms{
    ResultForm{kConnectWmi, true, ReadCode},
    ResultForm{kQuery, true, ReadCode},
    ResultForm{kRunProgram, true, ReadFlag},
    ResultForm{kReadProductVersion, true, ReadVersion},
    ResultForm{kLibraryPath, false, ReadBuffer},
    ResultForm{kModuleName, false, ReadName},
    ResultForm{kProgramDataFolder, false, ReadFolder},
    ResultForm{kFormatSystemMessage, true, ReadBuffer},
    ResultForm{kLastSystemCode, false, ReadSystemCode},
    ResultForm{kReportInvalidParameter, false, ReadNothing},
    ResultForm{kNow, false, ReadTime},
    ResultForm{kLocalTimeValue, true, ReadTime},
    ResultForm{kBatterySource, false, ReadName},
    ResultForm{kDriverStateOfCharge, true, ReadPercent},
};

std::vector<std::string> KeysOf(std::string_view operation, bool hasArgument) {
  std::vector<std::string> keys{"operation", "throws", "text", "number", "category", "lastSystemCode"};
  const auto add = [&keys](std::initializer_list<std::string> more) { keys.insert(keys.end(), more); };
  if (hasArgument) {
    add({"argument"});
  }
  if (operation == kSendBiosCommand) {
    add({"input", "status", "returnCode", "block", "battery", "cellSwell"});
    return keys;
  }
  add({"result"});
  if (operation == kQuery) {
    add({"namespace", "rows", "end"});
  } else if (operation == kLibraryPath || operation == kFormatSystemMessage) {
    add({"length"});
  } else if (operation == kProgramDataFolder) {
    add({"report"});
  }
  return keys;
}

// The one of `keys` that is there.
JsonNode OneOf(const JsonNode& node, std::initializer_list<const char*> keys, const std::string& operation) {
  std::optional<JsonNode> found;
  std::string names;
  for (const char* key : keys) {
    names.append(names.empty() ? "\"" : ", \"").append(key).append("\"");
    const auto member = node.Member(key);
    if (member && found) {
      member->Fail("expected only one of the keys that say what " + operation + " answers, found \"" + found->Name() +
                   "\" too");
    }
    found = member ? member : found;
  }
  if (!found.has_value()) {
    node.Fail("expected one of " + names + " to say what " + operation + " answers, found none");
  }
  return *found;
}

void ReadBiosAnswer(const JsonNode& node, Answer& answer) {
  const JsonNode found =
      OneOf(node, {"status", "returnCode", "block", "battery", "cellSwell", "throws"}, kSendBiosCommand);
  const std::string& key = found.Name();
  if (key == "status") {
    answer.outcome.number = found.SignedCode();
  } else if (key == "returnCode") {
    answer.outcome.returnCode = found.Code();
  } else if (key == "block") {
    answer.outcome.block = ReadBlockHex(found);
  } else if (key == "battery") {
    answer.outcome.block = ReadBattery(found);
  } else if (key == "cellSwell") {
    answer.outcome.block = ReadCellSwell(found);
  }
}

void ReadQueryAnswer(const JsonNode& node, Answer& answer) {
  const JsonNode found = OneOf(node, {"result", "rows", "throws"}, kQuery);
  if (found.Name() == "result") {
    ReadCode(found, node, answer);
  } else if (found.Name() == "rows") {
    answer.rows = ReadRows(found);
  }
  if (const auto end = node.Member("end")) {
    end->ExpectKeys({"throws", "text", "number", "category"});
    answer.end = ReadThrown(*end);
  }
}

void ReadResult(const JsonNode& node, const std::string& operation, Answer& answer) {
  const auto* const form =
      std::find_if(kForms.begin(), kForms.end(), [&](const ResultForm& entry) { return entry.operation == operation; });
  const JsonNode found = OneOf(node, {"result", "throws"}, operation);
  if (form != kForms.end() && found.Name() == "result") {
    form->read(found, node, answer);
  }
}

LeftCode ReadLeftCode(const JsonNode& node) {
  LeftCode left;
  if (node.IsObject()) {
    node.ExpectKeys({"throws", "text", "number", "category"});
    left.thrown = ReadThrown(node);
  } else {
    left.code = static_cast<std::uint32_t>(node.WholeNumber(0, kLargestCode));
  }
  return left;
}

// The name of an operation whose answers can be given: those of a query's objects are in its rows.
std::string ReadOperation(const JsonNode& node) {
  const JsonNode operation = node.RequiredMember("operation", "the name of an operation");
  const std::string& name = operation.Text();
  if (name == kSendBiosCommand ||
      std::any_of(kForms.begin(), kForms.end(), [&](const ResultForm& form) { return form.operation == name; })) {
    return name;
  }
  std::string names = kSendBiosCommand;
  for (const ResultForm& form : kForms) {
    names.append(", ").append(form.operation);
  }
  operation.FailExpecting("one of: " + names);
}

bool HasArgument(const std::string& operation) {
  const auto* const form =
      std::find_if(kForms.begin(), kForms.end(), [&](const ResultForm& entry) { return entry.operation == operation; });
  return form == kForms.end() || form->hasArgument;
}

std::string ReadExtraInput(const JsonNode& node) {
  const auto bytes = FromHexText(node.Text());
  if (!bytes.has_value()) {
    node.FailExpecting("the bytes of the input as hex digits");
  }
  return ExtraInput(*bytes);
}

std::string ReadKey(const JsonNode& node, const std::string& operation) {
  std::string argument;
  std::string wmiNamespace;
  std::string extraInput;
  if (HasArgument(operation)) {
    argument = node.RequiredMember("argument", "what " + operation + " is asked for").Text();
  }
  if (operation == kQuery) {
    wmiNamespace = node.RequiredMember("namespace", "the namespace that is queried").Text();
  }
  if (const auto input = node.Member("input")) {
    extraInput = ReadExtraInput(*input);
  }
  return CallKey(operation, argument, wmiNamespace, extraInput);
}

}  // namespace

Thrown ReadThrown(const JsonNode& node) {
  const JsonNode kind = node.RequiredMember("throws", "one of " + ThrownKinds());
  Thrown thrown;
  thrown.kind = kind.Text();
  if (!IsThrownKind(thrown.kind)) {
    kind.FailExpecting("one of " + ThrownKinds());
  }
  if (const auto text = node.Member("text")) {
    thrown.text = text->ByteText(kLongestText);
  }
  if (const auto number = node.Member("number")) {
    using Limits = std::numeric_limits<std::int32_t>;
    thrown.number = thrown.kind == "unsigned long" ? number->WholeNumber(0, kLargestCode)
                                                   : number->WholeNumber(Limits::min(), Limits::max());
  }
  if (const auto category = node.Member("category")) {
    thrown.category = category->Text();
  }
  return thrown;
}

Answer ReadAnswer(const JsonNode& node) {
  if (!node.IsObject()) {
    node.FailExpecting("an object");
  }
  const std::string operation = ReadOperation(node);
  node.ExpectKeys(KeysOf(operation, HasArgument(operation)));
  Answer answer;
  answer.key = ReadKey(node, operation);
  if (operation == kSendBiosCommand) {
    ReadBiosAnswer(node, answer);
  } else if (operation == kQuery) {
    ReadQueryAnswer(node, answer);
  } else {
    ReadResult(node, operation, answer);
  }
  if (node.Member("throws")) {
    answer.outcome.thrown = ReadThrown(node);
  }
  if (const auto left = node.Member("lastSystemCode")) {
    answer.outcome.left = ReadLeftCode(*left);
  }
  return answer;
}

}  // namespace norv::simulator
