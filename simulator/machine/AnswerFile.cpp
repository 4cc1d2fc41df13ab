#include "machine/AnswerFile.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "machine/AnswerWords.h"
#include "machine/HexText.h"
#include "machine/WmiFile.h"

namespace norv::simulator {

namespace {

// The operations whose answers can be given: those of a query's objects are in its rows.
std::vector<OperationRow> AnswerableOperations() {
  std::vector<OperationRow> rows;
  std::copy_if(Operations().begin(), Operations().end(), std::back_inserter(rows),
               [](const OperationRow& row) { return row.answers != AnswerForm::ObjectPart; });
  return rows;
}

const OperationRow& ReadOperation(const JsonNode& node) {
  const JsonNode operation = node.RequiredMember("operation", "the name of an operation");
  const OperationRow* const row = FindAnswered(operation.Text());
  if (row == nullptr) {
    operation.FailExpecting("one of: " + OperationNames(AnswerableOperations()));
  }
  return *row;
}

std::vector<std::string> KeysOf(const OperationRow& operation, const AnswerWords& words) {
  std::vector<std::string> keys{"operation", "throws", "text", "number", "category", "lastSystemCode"};
  if (operation.hasArgument) {
    keys.emplace_back("argument");
  }
  keys.insert(keys.end(), words.results.begin(), words.results.end());
  keys.insert(keys.end(), words.others.begin(), words.others.end());
  return keys;
}

// The one member that says what the operation answers.
JsonNode ReadResult(const JsonNode& node, const std::string& operation, std::vector<std::string> keys) {
  keys.emplace_back("throws");
  const std::string purpose = "say what " + operation + " answers";
  const auto result = node.OneMember(keys, purpose);
  if (!result.has_value()) {
    std::string names;
    for (const std::string& key : keys) {
      names.append(names.empty() ? "\"" : ", \"").append(key).append("\"");
    }
    node.Fail("expected one of " + names + " to " + purpose + ", found none");
  }
  return *result;
}

Call ReadCall(const JsonNode& node, const OperationRow& operation) {
  Call call;
  call.operation = operation.name;
  if (operation.hasArgument) {
    call.argument = node.RequiredMember("argument", "what " + std::string(operation.name) + " is asked for").Text();
  }
  if (operation.answers == AnswerForm::Objects) {
    call.wmiNamespace = node.RequiredMember("namespace", "the namespace that is queried").Text();
  }
  if (const auto input = node.Member("input")) {
    const auto bytes = FromHexText(input->Text());
    if (!bytes.has_value()) {
      input->FailExpecting("the bytes of the input as hex digits");
    }
    call.input = *bytes;
  }
  return call;
}

LeftCode ReadLeftCode(const JsonNode& node) {
  LeftCode left;
  if (node.IsObject()) {
    node.ExpectKeys(kThrownKeys);
    left.thrown = ReadThrown(node);
  } else {
    left.code = static_cast<std::uint32_t>(node.WholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
  }
  return left;
}

}  // namespace

Answer ReadAnswer(const JsonNode& node) {
  if (!node.IsObject()) {
    node.FailExpecting("an object");
  }
  const OperationRow& operation = ReadOperation(node);
  const AnswerWords& words = WordsOf(operation.answers);
  node.ExpectKeys(KeysOf(operation, words));
  Answer answer;
  answer.key = CallKey(ReadCall(node, operation));
  const JsonNode result = ReadResult(node, std::string(operation.name), words.results);
  if (result.Name() == "throws") {
    answer.outcome.thrown = ReadThrown(node);
  } else if (result.Name() == "rows") {
    answer.rows = ReadRows(result);
  } else {
    words.read(result, node, answer.outcome);
  }
  if (const auto end = node.Member("end")) {
    end->ExpectKeys(kThrownKeys);
    answer.end = ReadThrown(*end);
  }
  if (const auto left = node.Member("lastSystemCode")) {
    answer.outcome.left = ReadLeftCode(*left);
  }
  return answer;
}

}  // namespace norv::simulator
