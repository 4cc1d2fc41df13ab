#include "machine/AnswerWords.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>

#include "base/Utf8.h"
#include "machine/BlockFile.h"
#include "machine/HexText.h"
#include "machine/SlotFile.h"
#include "machine/VersionText.h"

namespace norv::simulator {

namespace {

using json::Object;
using json::Value;

constexpr std::int64_t kLargestTime = std::int64_t{1} << 53;  // beyond it a number of JSON is not exact everywhere
constexpr std::uint32_t kLargestCode = std::numeric_limits<std::uint32_t>::max();

void ReadBios(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  const std::string& key = result.Name();
  if (key == "status") {
    outcome.number = result.SignedCode();
  } else if (key == "returnCode") {
    outcome.returnCode = result.Code();
  } else if (key == "block") {
    outcome.block = ReadBlockHex(result);
  } else {
    outcome.block = key == "battery" ? ReadBattery(result) : ReadCellSwell(result);
  }
}

void WriteBios(const Outcome& outcome, Object& answer) {
  if (outcome.number != 0) {
    answer["status"] = CodeText(outcome.number);
  } else if (outcome.returnCode != 0) {
    answer["returnCode"] = outcome.returnCode;
  } else {
    answer["block"] = HexText(outcome.block.value_or(Block()));
  }
}

void ReadCode(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  outcome.number = result.Value().Number() == 0.0 ? 0 : result.SignedCode();
  outcome.fails = outcome.number != 0;
}

void WriteCode(const Outcome& outcome, Object& answer) {
  answer["result"] = outcome.number == 0 ? Value(0) : Value(CodeText(outcome.number));
}

void ReadTruth(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  const auto* const truth = result.Value().As<bool>();
  if (truth == nullptr) {
    result.FailExpecting("true or false");
  }
  outcome.fails = !*truth;
}

void WriteTruth(const Outcome& outcome, Object& answer) {
  answer["result"] = !outcome.fails;
}

void ReadVersionWord(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  const auto version = ReadVersion(result);
  outcome.fails = !version.has_value();
  outcome.text = version ? std::optional(VersionText(*version)) : std::nullopt;
}

void WriteVersionWord(const Outcome& outcome, Object& answer) {
  answer["result"] = outcome.fails ? Value() : Value(outcome.text.value_or(""));
}

void ReadBuffer(const JsonNode& result, const JsonNode& answer, Outcome& outcome) {
  outcome.text = result.IsNull() ? std::string() : result.ByteText();
  const auto length = answer.Member("length");
  outcome.number = length ? length->WholeNumber(0, kLargestCode) : static_cast<std::int64_t>(outcome.text->size());
}

void WriteBuffer(const Outcome& outcome, Object& answer) {
  const std::string text = outcome.text.value_or("");
  answer["result"] = base::BytesToUtf8(text);
  if (outcome.number != static_cast<std::int64_t>(text.size())) {
    answer["length"] = outcome.number;
  }
}

void ReadName(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  outcome.text = result.Text();
}

void WriteName(const Outcome& outcome, Object& answer) {
  answer["result"] = base::AsUtf8(outcome.text.value_or(""));
}

void ReadFolder(const JsonNode& result, const JsonNode& answer, Outcome& outcome) {
  ReadTruth(result, answer, outcome);
  const auto report = answer.Member("report");
  if (report && !report->IsNull()) {
    outcome.text = report->ByteText();
  }
}

void WriteFolder(const Outcome& outcome, Object& answer) {
  WriteTruth(outcome, answer);
  if (outcome.text.has_value()) {
    answer["report"] = base::BytesToUtf8(*outcome.text);
  }
}

void ReadSystemCode(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  outcome.number = result.WholeNumber(0, kLargestCode);
}

void ReadTime(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  outcome.number = result.WholeNumber(-kLargestTime, kLargestTime);
}

void WriteNumber(const Outcome& outcome, Object& answer) {
  answer["result"] = outcome.number;
}

void ReadNothing(const JsonNode& result, const JsonNode& /*answer*/, Outcome& /*outcome*/) {
  result.ExpectTrue();
}

void ReadPercent(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  outcome.fails = result.IsNull();
  outcome.number = result.IsNull() ? 0 : result.WholeNumber(0, kLargestCode);
}

void ReadSlotWord(const JsonNode& result, const JsonNode& /*answer*/, Outcome& outcome) {
  outcome.slot = ReadSlotDescription(result);
}

void WriteSlotWord(const Outcome& outcome, Object& answer) {
  answer["result"] = SlotDescriptionJson(outcome.slot.value_or(platform::SlotDescription()));
}

}  // namespace

const AnswerWords& WordsOf(AnswerForm form) {
  static const std::array<AnswerWords, 13> kWords{{
      {AnswerForm::Bios, {"status", "returnCode", "block", "battery", "cellSwell"}, {"input"}, ReadBios, WriteBios},
      {AnswerForm::Connects, {"result"}, {}, ReadCode, WriteCode},
      {AnswerForm::Objects, {"result", "rows"}, {"namespace", "end"}, ReadCode, WriteCode},
      {AnswerForm::Truth, {"result"}, {}, ReadTruth, WriteTruth},
      {AnswerForm::Version, {"result"}, {}, ReadVersionWord, WriteVersionWord},
      {AnswerForm::Buffer, {"result"}, {"length"}, ReadBuffer, WriteBuffer},
      {AnswerForm::Name, {"result"}, {}, ReadName, WriteName},
      {AnswerForm::Folder, {"result"}, {"report"}, ReadFolder, WriteFolder},
      {AnswerForm::SystemCode, {"result"}, {}, ReadSystemCode, WriteNumber},
      {AnswerForm::Nothing, {"result"}, {}, ReadNothing, WriteTruth},
      {AnswerForm::Time, {"result"}, {}, ReadTime, WriteNumber},
      {AnswerForm::Percent, {"result"}, {}, ReadPercent, nullptr},
      {AnswerForm::Slot, {"result"}, {}, ReadSlotWord, WriteSlotWord},
  }};
  return *std::find_if(kWords.begin(), kWords.end(), [&](const AnswerWords& words) { return words.form == form; });
}

const std::vector<std::string> kThrownKeys{"throws", "text", "number", "category"};

Thrown ReadThrown(const JsonNode& node) {
  const JsonNode kind = node.RequiredMember("throws", "one of " + ThrownKinds());
  Thrown thrown;
  thrown.kind = kind.Text();
  if (!IsThrownKind(thrown.kind)) {
    kind.FailExpecting("one of " + ThrownKinds());
  }
  if (const auto text = node.Member("text")) {
    thrown.text = text->ByteText();
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

Object ThrownJson(const Thrown& thrown) {
  Object json{{"throws", thrown.kind}};
  if (!thrown.text.empty()) {
    json["text"] = base::BytesToUtf8(thrown.text);
  }
  if (thrown.number != 0) {
    json["number"] = thrown.number;
  }
  if (!thrown.category.empty()) {
    json["category"] = thrown.category;
  }
  return json;
}

std::string CodeText(std::int64_t code) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned int>(code));
  return text.data();
}

}  // namespace norv::simulator
