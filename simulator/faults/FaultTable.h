// Which fault effects each operation has, and what machine files call them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "norv/simulator/FaultInjector.h"

namespace norv::simulator {

bool IsOperation(std::string_view operation);

// Every operation, "SendBiosCommand, ConnectWmi, ...".
std::string OperationNames();

// Whether `operation`, one of the above, can have the effect.
bool HasEffect(std::string_view operation, FaultEffect effect);

// The keys that a fault of `operation` may have as its effect: "status", "returnCode" or "throws".
std::string EffectKeys(std::string_view operation);

// The effect of "throws": "runtime_error".
std::optional<FaultEffect> ThrowsEffect(std::string_view thrown);

// What "throws" may be: "runtime_error", "system_error" ...
std::string ThrownNames();

}  // namespace norv::simulator
