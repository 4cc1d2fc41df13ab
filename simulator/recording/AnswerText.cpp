#include "recording/AnswerText.h"

#include "base/Utf8.h"
#include "calls/Operations.h"
#include "machine/AnswerWords.h"

namespace norv::simulator {

namespace {

using json::Array;
using json::Object;
using json::Value;

Value TextReadJson(const TextRead& read) {
  if (read.thrown.has_value()) {
    return ThrownJson(*read.thrown);
  }
  return read.code != 0 ? Value(Object{{"fail", CodeText(read.code)}}) : Value(base::BytesToUtf8(read.value));
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
  if (onlyText && (reads.text->code != 0 || base::IsUtf8(reads.text->value))) {
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

void AddResult(const RecordedCall& call, Object& json) {
  const AnswerForm form = FindOperation(call.operation)->answers;
  if (form != AnswerForm::Objects || call.outcome.number != 0) {
    WordsOf(form).write(call.outcome, json);
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

}  // namespace

Object RowJson(const RecordedRow& row) {
  Object json;
  for (const auto& [property, reads] : row) {
    json[property] = PropertyJson(reads);
  }
  return json;
}

Object AnswerJson(const RecordedCall& call) {
  Object json{{"operation", std::string(call.operation)}};
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
