#include "machine/FaultFile.h"

#include <limits>

#include "faults/FaultTable.h"

namespace norv::simulator {

namespace {

constexpr const char* kEffectKeys[] = {"status", "returnCode", "code", "fails", "throws"};

// The one member that says how the operation fails.
JsonNode ReadEffectMember(const JsonNode& node, const std::string& operation) {
  std::optional<JsonNode> effect;
  for (const char* key : kEffectKeys) {
    const std::optional<JsonNode> member = node.Member(key);
    if (member.has_value() && effect.has_value()) {
      member->Fail("expected only one of the keys that say how " + operation + " fails, found \"" + effect->Name() +
                   "\" too");
    }
    effect = member.has_value() ? member : effect;
  }
  if (!effect.has_value()) {
    node.Fail("expected " + EffectKeys(operation) + " to say how " + operation + " fails, found neither");
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
  if (!IsOperation(fault.operation)) {
    operation.FailExpecting("one of: " + OperationNames());
  }
  if (const auto call = node.Member("call")) {
    fault.call = static_cast<unsigned>(call->WholeNumber(1, std::numeric_limits<std::int32_t>::max()));
  }
  if (const auto argument = node.Member("argument")) {
    fault.argument = argument->Text();
  }
  const JsonNode effect = ReadEffectMember(node, fault.operation);
  ReadEffect(effect, fault);
  if (!HasEffect(fault.operation, fault.effect)) {
    effect.Fail("unknown key for " + fault.operation + ", expected " + EffectKeys(fault.operation));
  }
  return fault;
}

}  // namespace norv::simulator
