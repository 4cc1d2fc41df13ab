#include "faults/FaultTable.h"

#include <algorithm>
#include <array>
#include <span>

#include "calls/OperationText.h"

namespace norv::simulator {

namespace {

// Every operation can throw besides.
constexpr std::array kBiosEffects{FaultEffect::Status, FaultEffect::ReturnCode};
constexpr std::array kCodeEffects{FaultEffect::Code};
constexpr std::array kFailsEffects{FaultEffect::Fails};

struct OperationEffects {
  std::string_view operation;
  std::span<const FaultEffect> effects;
};

constexpr std::array kOperations{
    OperationEffects{kSendBiosCommand, kBiosEffects},
    OperationEffects{kConnectWmi, kCodeEffects},
    OperationEffects{kQuery, kCodeEffects},
    OperationEffects{kNext, kFailsEffects},
    OperationEffects{kReadText, kCodeEffects},
    OperationEffects{kReadNumber, kFailsEffects},
    OperationEffects{kRunProgram, kCodeEffects},
    OperationEffects{kReadProductVersion, kCodeEffects},
    OperationEffects{kLibraryPath, kFailsEffects},
    OperationEffects{kModuleName, kFailsEffects},
    OperationEffects{kProgramDataFolder, kFailsEffects},
    OperationEffects{kFormatSystemMessage, kCodeEffects},
    OperationEffects{kLastSystemCode, kCodeEffects},
    OperationEffects{kReportInvalidParameter, {}},
    OperationEffects{kNow, {}},
    OperationEffects{kLocalTimeValue, kFailsEffects},
    OperationEffects{kBatterySource, kFailsEffects},
    OperationEffects{kDriverStateOfCharge, kFailsEffects},
};

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

const OperationEffects* Find(std::string_view operation) {
  const auto* const found = std::find_if(kOperations.begin(), kOperations.end(),
                                         [&](const OperationEffects& entry) { return entry.operation == operation; });
  return found != kOperations.end() ? found : nullptr;
}

std::string Quoted(std::string_view text) {
  std::string quoted;
  return quoted.append(1, '"').append(text).append(1, '"');
}

void AppendToList(const std::string& item, std::string& list) {
  if (!list.empty()) {
    list += ", ";
  }
  list += item;
}

bool Throws(FaultEffect effect) {
  return std::any_of(kThrown.begin(), kThrown.end(), [&](const NamedEffect& entry) { return entry.effect == effect; });
}

bool NeedsNumber(FaultEffect effect) {
  return effect == FaultEffect::Status || effect == FaultEffect::ReturnCode || effect == FaultEffect::Code;
}

}  // namespace

bool IsOperation(std::string_view operation) {
  return Find(operation) != nullptr;
}

std::string OperationNames() {
  std::string names;
  for (const OperationEffects& entry : kOperations) {
    AppendToList(std::string(entry.operation), names);
  }
  return names;
}

bool HasEffect(std::string_view operation, FaultEffect effect) {
  const OperationEffects* const entry = Find(operation);
  return entry != nullptr &&
         (Throws(effect) || std::find(entry->effects.begin(), entry->effects.end(), effect) != entry->effects.end());
}

std::string EffectKeys(std::string_view operation) {
  std::string keys;
  for (const NamedEffect& entry : kNamedEffects) {
    if (HasEffect(operation, entry.effect)) {
      keys.append(Quoted(entry.name)).append(" or ");
    }
  }
  return keys.append(Quoted("throws"));
}

std::optional<FaultEffect> ThrowsEffect(std::string_view thrown) {
  for (const NamedEffect& entry : kThrown) {
    if (entry.name == thrown) {
      return entry.effect;
    }
  }
  return std::nullopt;
}

std::string ThrownNames() {
  std::string names;
  for (const NamedEffect& entry : kThrown) {
    AppendToList(Quoted(entry.name), names);
  }
  return names;
}

std::string FaultProblem(const Fault& fault) {
  if (!IsOperation(fault.operation)) {
    return Quoted(fault.operation) + " is no operation, expected one of: " + OperationNames();
  }
  if (!HasEffect(fault.operation, fault.effect)) {
    return fault.operation + " does not fail in this way, expected " + EffectKeys(fault.operation);
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
