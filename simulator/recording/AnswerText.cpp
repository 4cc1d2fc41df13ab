#include "recording/AnswerText.h"

#include <array>
#include <cstdio>

#include "calls/OperationText.h"
#include "machine/HexText.h"
#include "machine/Text.h"

namespace norv::simulator {

namespace {

using json::Array;
using json::Object;
using json::Value;

Object ThrownJson(const Thrown& thrown) {
  Object json{{"throws", thrown.kind}};
  if (!thrown.text.empty()) {
    json["text"] = ByteText(thrown.text);
  }
  if (thrown.number != 0) {
    json["number"] = thrown.number;
  }
  if (!thrown.category.empty()) {
    json["category"] = thrown.category;
  }
  return json;
}

Value ResultCode(std::int64_t code) {
  return code == 0 ? Value(0) : Value(CodeText(code));
}

Value TextReadJson(const TextRead& read) {
  if (read.thrown.has_value()) {
    return ThrownJson(*read.thrown);
  }
  return read.code != 0 ? Value(Object{{"fail", CodeText(read.code)}}) : Value(ByteText(read.value));
}

Value NumberReadJson(const NumberRead& read) {
  if (read.thrown.has_value()) {
    return ThrownJson(*read.thrown);
  }
  return read.value;
}

// A property in as few words as say all that was read of it.
Value PropertyJson(const PropertyReads& reads) {
  const bool onlyNumber = reads.number.has_value() && !reads.text.has_value();
  if (onlyNumber && !reads.number->thrown.has_value()) {
    return NumberReadJson(*reads.number);
  }
  const bool onlyText = reads.text.has_value() && !reads.number.has_value() && !reads.text->thrown.has_value();
  if (onlyText && (reads.text->code != 0 || IsUtf8(reads.text->value))) {
    return reads.text->code != 0 ? TextReadJson(*reads.text) : Value(reads.text->value);
  }
  Object json;
  if (reads.text.has_value()) {
    json["text"] = TextReadJson(*reads.text);
  }
  if (reads.number.has_value()) {
    json["number"] = NumberReadJson(*reads.number);
  }
  return json;
}

void AddBiosResult(const Outcome& outcome, Object& json) {
  if (outcome.number != 0) {
    json["status"] = CodeText(outcome.number);
  } else if (outcome.returnCode != 0) {
    json["returnCode"] = outcome.returnCode;
  } else {
    json["block"] = HexText(outcome.block.value_or(Block()));
  }
}

void AddBuffer(const Outcome& outcome, Object& json) {
  const std::string text = outcome.text.value_or("");
  json["result"] = ByteText(text);
  if (outcome.number != static_cast<std::int64_t>(text.size())) {
    json["length"] = outcome.number;
  }
}

void AddQueryResult(const RecordedCall& call, Object& json) {
  if (call.outcome.number != 0) {
    json["result"] = CodeText(call.outcome.number);
    return;
  }
  Array rows;
  for (const RecordedRow& row : call.rows) {
    rows.emplace_back(RowJson(row));
  }
  json["rows"] = std::move(rows);
  if (call.end.has_value()) {
    json["end"] = ThrownJson(*call.end);
  }
}

void AddFolder(const Outcome& outcome, Object& json) {
  json["result"] = !outcome.fails;
  if (outcome.text.has_value()) {
    json["report"] = ByteText(*outcome.text);
  }
}

void AddResult(const RecordedCall& call, Object& json) {
  const Outcome& outcome = call.outcome;
  const std::string& operation = call.operation;
  if (operation == kSendBiosCommand) {
    AddBiosResult(outcome, json);
  } else if (operation == kConnectWmi) {
    json["result"] = ResultCode(outcome.number);
  } else if (operation == kQuery) {
    AddQueryResult(call, json);
  } else if (operation == kRunProgram) {
    json["result"] = !outcome.fails;
  } else if (operation == kReadProductVersion) {
    json["result"] = outcome.fails ? Value() : Value(outcome.text.value_or(""));
  } else if (operation == kLibraryPath || operation == kFormatSystemMessage) {
    AddBuffer(outcome, json);
  } else if (operation == kModuleName || operation == kBatterySource) {
    json["result"] = AsUtf8(outcome.text.value_or(""));
  } else if (operation == kProgramDataFolder) {
    AddFolder(outcome, json);
  } else if (operation == kDriverStateOfCharge) {
    json["result"] = outcome.fails ? Value() : Value(outcome.number);
  } else if (operation == kReportInvalidParameter) {
    json["result"] = true;
  } else {
    json["result"] = outcome.number;
  }
}

}  // namespace

std::string CodeText(std::int64_t code) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned int>(code));
  return text.data();
}

Object RowJson(const RecordedRow& row) {
  Object json;
  for (const auto& [property, reads] : row) {
    json[property] = PropertyJson(reads);
  }
  return json;
}

Object AnswerJson(const RecordedCall& call) {
  Object json{{"operation", call.operation}};
  if (!call.wmiNamespace.empty()) {
    json["namespace"] = call.wmiNamespace;
  }
  if (!call.argument.empty()) {
    json["argument"] = call.argument;
  }
  const std::string input = ExtraInput(call.input);
  if (!input.empty()) {
    json["input"] = input;
  }
  if (call.outcome.thrown.has_value()) {
    for (const auto& [key, value] : ThrownJson(*call.outcome.thrown)) {
      json[key] = value;
    }
  } else {
    AddResult(call, json);
  }
  if (call.outcome.left.has_value()) {
    const LeftCode& left = *call.outcome.left;
    json["lastSystemCode"] = left.thrown.has_value() ? Value(ThrownJson(*left.thrown)) : Value(left.code);
  }
  return json;
}

}  // namespace norv::simulator
