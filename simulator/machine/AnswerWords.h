// The words that a machine file has for what an operation answers, for reading and for writing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "calls/Operations.h"
#include "calls/Outcome.h"
#include "json/Value.h"
#include "machine/JsonNode.h"

namespace norv::simulator {

struct AnswerWords {
  AnswerForm form;
  std::vector<std::string> results;  // the keys of which one holds the answer
  std::vector<std::string> others;   // and what may stand beside it
  void (*read)(const JsonNode& result, const JsonNode& answer, Outcome& outcome);
  // Null for what only earlier recordings hold.
  void (*write)(const Outcome& outcome, json::Object& answer);
};

// Of a form that answers can be given in: not of a part of an object, which is in the rows of a query.
const AnswerWords& WordsOf(AnswerForm form);

// What is thrown: "throws" and what belongs to it.
extern const std::vector<std::string> kThrownKeys;
Thrown ReadThrown(const JsonNode& node);
json::Object ThrownJson(const Thrown& thrown);

// A status or a code, "0x80070005".
std::string CodeText(std::int64_t code);

}  // namespace norv::simulator
