// Which fault effects each operation has, what machine files call them, and what they make of a call.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "calls/Operations.h"
#include "calls/Outcome.h"
#include "norv/simulator/FaultInjector.h"

namespace norv::simulator {

bool HasEffect(const OperationRow& operation, FaultEffect effect);

// The keys that a fault of `operation` may have as its effect: "status", "returnCode" or "throws".
std::string EffectKeys(const OperationRow& operation);

// The effect of "throws": "runtime_error".
std::optional<FaultEffect> ThrowsEffect(std::string_view thrown);

// What "throws" may be: "runtime_error", "system_error" ...
std::string ThrownNames();

// What is answered to a call that the fault strikes, which has no FaultProblem.
Outcome FaultOutcome(const Fault& fault);

}  // namespace norv::simulator
