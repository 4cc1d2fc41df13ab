#include "faults/FaultTable.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace norv::simulator {

namespace {

struct NamedEffect {
  std::string_view name;
  FaultEffect effect;
};

constexpr std::array kNamedEffects{
    NamedEffect{"status", FaultEffect::Status},
    NamedEffect{"returnCode", FaultEffect::ReturnCode},
    NamedEffect{"code", FaultEffect::Code},
    NamedEffect{"fails", FaultEffect::Fails},
};

// By the kinds of Thrown.
constexpr std::array kThrown{
    NamedEffect{"runtime_error", FaultEffect::ThrowsRuntimeError},
    NamedEffect{"system_error", FaultEffect::ThrowsSystemError},
    NamedEffect{"bad_alloc", FaultEffect::ThrowsBadAlloc},
    NamedEffect{"int", FaultEffect::ThrowsInt},
    NamedEffect{"unsigned long", FaultEffect::ThrowsUnsignedLong},
    NamedEffect{"string", FaultEffect::ThrowsString},
    NamedEffect{"text", FaultEffect::ThrowsText},
    NamedEffect{"other", FaultEffect::ThrowsOther},
};

const NamedEffect* FindThrown(FaultEffect effect) {
  const auto* const found =
      std::find_if(kThrown.begin(), kThrown.end(), [&](const NamedEffect& entry) { return entry.effect == effect; });
  return found != kThrown.end() ? found : nullptr;
}

Thrown InjectedThrown(const NamedEffect& entry) {
  if (entry.effect == FaultEffect::ThrowsSystemError) {
    return {std::string(entry.name), kInjectedText, static_cast<int>(std::errc::permission_denied), "generic"};
  }
  return {std::string(entry.name), kInjectedText, kInjectedNumber, ""};
}

std::string Quoted(std::string_view text) {
  std::string quoted;
  return quoted.append(1, '"').append(text).append(1, '"');
}

bool NeedsNumber(FaultEffect effect) {
  return effect == FaultEffect::Status || effect == FaultEffect::ReturnCode || effect == FaultEffect::Code;
}

}  // namespace

bool HasEffect(const OperationRow& operation, FaultEffect effect) {
  const Failures failures = operation.failures;
  switch (effect) {
    case FaultEffect::Status:
    case FaultEffect::ReturnCode:
      return failures == Failures::Bios;
    case FaultEffect::Code:
      return failures == Failures::Code || failures == Failures::LeftCode;
    case FaultEffect::Fails:
      return failures == Failures::Fails;
    default:
      return FindThrown(effect) != nullptr;
  }
}

std::string EffectKeys(const OperationRow& operation) {
  std::string keys;
  for (const NamedEffect& entry : kNamedEffects) {
    if (HasEffect(operation, entry.effect)) {
      keys.append(Quoted(entry.name)).append(" or ");
    }
  }
  return keys.append(Quoted("throws"));
}

std::optional<FaultEffect> ThrowsEffect(std::string_view thrown) {
  const auto* const found =
      std::find_if(kThrown.begin(), kThrown.end(), [&](const NamedEffect& entry) { return entry.name == thrown; });
  return found != kThrown.end() ? std::optional(found->effect) : std::nullopt;
}

std::string ThrownNames() {
  std::string names;
  for (const NamedEffect& entry : kThrown) {
    names.append(names.empty() ? "" : ", ").append(Quoted(entry.name));
  }
  return names;
}

Outcome FaultOutcome(const Fault& fault) {
  Outcome outcome;
  if (const NamedEffect* const thrown = FindThrown(fault.effect)) {
    outcome.thrown = InjectedThrown(*thrown);
  } else if (fault.effect == FaultEffect::ReturnCode) {
    outcome.returnCode = fault.number;
  } else {
    outcome.fails = true;
    outcome.number = static_cast<std::int32_t>(fault.number);
  }
  const OperationRow* const operation = FindOperation(fault.operation);
  if (operation != nullptr && operation->failures == Failures::LeftCode && fault.effect == FaultEffect::Code) {
    outcome.left = LeftCode{fault.number, std::nullopt};
  }
  return outcome;
}

std::string FaultProblem(const Fault& fault) {
  const OperationRow* const operation = FindOperation(fault.operation);
  if (operation == nullptr) {
    return Quoted(fault.operation) + " is no operation, expected one of: " + OperationNames(Operations());
  }
  if (!HasEffect(*operation, fault.effect)) {
    return fault.operation + " does not fail in this way, expected " + EffectKeys(*operation);
  }
  if (NeedsNumber(fault.effect) && fault.number == 0) {
    return fault.operation + " cannot fail with 0, which stands for success";
  }
  if (fault.call == 0U) {
    return "calls of " + fault.operation + " are counted from 1, got 0";
  }
  return {};
}

}  // namespace norv::simulator
