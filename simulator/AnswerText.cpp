#include "AnswerText.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "HexText.h"
#include "OperationText.h"
#include "Text.h"

namespace norv::simulator {

namespace {

using Json = nlohmann::ordered_json;

Json ThrownJson(const Thrown& thrown) {
  Json json{{"throws", thrown.kind}};
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

Json ResultCode(std::int64_t code) {
  return code == 0 ? Json(0) : Json(CodeText(code));
}

Json TextReadJson(const TextRead& read) {
  if (read.thrown.has_value()) {
    return ThrownJson(*read.thrown);
  }
  return read.code != 0 ? Json{{"fail", CodeText(read.code)}} : Json(ByteText(read.value));
}

Json NumberReadJson(const NumberRead& read) {
  if (read.thrown.has_value()) {
    return ThrownJson(*read.thrown);
  }
  return read.value.has_value() ? Json(*read.value) : Json(nullptr);
}

// A property in as few words as say all that was read of it.
Json PropertyJson(const PropertyReads& reads) {
  const bool onlyNumber = reads.number.has_value() && !reads.text.has_value();
  if (onlyNumber && !reads.number->thrown.has_value()) {
    return NumberReadJson(*reads.number);
  }
  const bool onlyText = reads.text.has_value() && !reads.number.has_value() && !reads.text->thrown.has_value();
  if (onlyText && (reads.text->code != 0 || IsUtf8(reads.text->value))) {
    return reads.text->code != 0 ? TextReadJson(*reads.text) : Json(reads.text->value);
  }
  Json json = Json::object();
  if (reads.text.has_value()) {
    json["text"] = TextReadJson(*reads.text);
  }
  if (reads.number.has_value()) {
    json["number"] = NumberReadJson(*reads.number);
  }
  return json;
}

void AddBiosResult(const Outcome& outcome, Json& json) {
  if (outcome.number != 0) {
    json["status"] = CodeText(outcome.number);
  } else if (outcome.returnCode != 0) {
    json["returnCode"] = outcome.returnCode;
  } else {
    json["block"] = HexText(outcome.block.value_or(Block()));
  }
}

void AddBuffer(const Outcome& outcome, Json& json) {
  const std::string text = outcome.text.value_or("");
  json["result"] = ByteText(text);
  if (outcome.number != static_cast<std::int64_t>(text.size())) {
    json["length"] = outcome.number;
  }
}

void AddQueryResult(const RecordedCall& call, Json& json) {
  if (call.outcome.number != 0) {
    json["result"] = CodeText(call.outcome.number);
    return;
  }
  Json rows = Json::array();
  for (const RecordedRow& row : call.rows) {
    rows.push_back(RowJson(row));
  }
  json["rows"] = rows;
  if (call.end.has_value()) {
    json["end"] = ThrownJson(*call.end);
  }
}

void AddFolder(const Outcome& outcome, Json& json) {
  json["result"] = !outcome.fails;
  if (outcome.text.has_value()) {
    json["report"] = ByteText(*outcome.text);
  }
}

void AddResult(const RecordedCall& call, Json& json) {
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
    json["result"] = outcome.fails ? Json(nullptr) : Json(outcome.text.value_or(""));
  } else if (operation == kLibraryPath || operation == kFormatSystemMessage) {
    AddBuffer(outcome, json);
  } else if (operation == kModuleName || operation == kBatterySource) {
    json["result"] = AsUtf8(outcome.text.value_or(""));
  } else if (operation == kProgramDataFolder) {
    AddFolder(outcome, json);
  } else if (operation == kDriverStateOfCharge) {
    json["result"] = outcome.fails ? Json(nullptr) : Json(outcome.number);
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

nlohmann::ordered_json RowJson(const RecordedRow& row) {
  Json json = Json::object();
  for (const auto& [property, reads] : row) {
    json[property] = PropertyJson(reads);
  }
  return json;
}

nlohmann::ordered_json AnswerJson(const RecordedCall& call) {
  Json json{{"operation", call.operation}};
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
    json.update(ThrownJson(*call.outcome.thrown));
  } else {
    AddResult(call, json);
  }
  if (call.outcome.left.has_value()) {
    const LeftCode& left = *call.outcome.left;
    json["lastSystemCode"] = left.thrown.has_value() ? ThrownJson(*left.thrown) : Json(left.code);
  }
  return json;
}

}  // namespace norv::simulator
