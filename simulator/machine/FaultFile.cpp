#include "machine/FaultFile.h"

#include <limits>

#include "faults/FaultTable.h"

namespace norv::simulator {

namespace {

// The one member that says how the operation fails.
JsonNode ReadEffectMember(const JsonNode& node, const OperationRow& operation) {
  const std::string name(operation.name);
  const auto effect = node.OneMember({"status", "returnCode", "code", "fails", "throws"}, "say how " + name + " fails");
  if (!effect.has_value()) {
    node.Fail("expected " + EffectKeys(operation) + " to say how " + name + " fails, found neither");
  }
  return *effect;
}

void ReadEffect(const JsonNode& member, Fault& fault) {
  const std::string& key = member.Name();
  if (key == "throws") {
    const std::optional<FaultEffect> thrown = member.IsText() ? ThrowsEffect(member.Text()) : std::nullopt;
    if (!thrown.has_value()) {
      member.FailExpecting("one of " + ThrownNames());
    }
    fault.effect = *thrown;
  } else if (key == "status") {
    fault.effect = FaultEffect::Status;
    fault.number = static_cast<std::uint32_t>(member.SignedCode());
  } else if (key == "fails") {
    fault.effect = FaultEffect::Fails;
    member.ExpectTrue();
  } else {
    fault.effect = key == "code" ? FaultEffect::Code : FaultEffect::ReturnCode;
    fault.number = member.Code();
  }
}

}  // namespace

Fault ReadFault(const JsonNode& node) {
  node.ExpectKeys({"operation", "call", "argument", "status", "returnCode", "code", "fails", "throws"});
  Fault fault;
  const JsonNode operation = node.RequiredMember("operation", "the name of an operation");
  fault.operation = operation.Text();
  const OperationRow* const row = FindOperation(fault.operation);
  if (row == nullptr) {
    operation.FailExpecting("one of: " + OperationNames(Operations()));
  }
  if (const auto call = node.Member("call")) {
    fault.call = static_cast<unsigned>(call->WholeNumber(1, std::numeric_limits<std::int32_t>::max()));
  }
  if (const auto argument = node.Member("argument")) {
    fault.argument = argument->Text();
  }
  const JsonNode effect = ReadEffectMember(node, *row);
  ReadEffect(effect, fault);
  if (!HasEffect(*row, fault.effect)) {
    effect.Fail("unknown key for " + fault.operation + ", expected " + EffectKeys(*row));
  }
  return fault;
}

}  // namespace norv::simulator
