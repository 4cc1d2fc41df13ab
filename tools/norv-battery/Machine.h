#pragma once

#include <memory>
#include <optional>
#include <string>

#include "norv/simulator/SimulatedMachine.h"
#include "report/Report.h"

namespace norv::tool {

// The machine that a report reads: while it lives, the library meets it.
struct Machine {
  Source source;
  std::unique_ptr<simulator::SimulatedMachine> simulated;  // null for the running machine
  std::shared_ptr<void> powerSupply;                       // batteries in the place of its own; null without
};

// Takes the running machine without a `name`. A name with a slash in it or ".json" at its end is that of a file; any
// other is a sample's, or where there is no such sample a file's. Throws simulator::MachineFileError.
Machine ChooseMachine(const std::optional<std::string>& name);

// The running machine, but with the batteries of a folder or listing of the power supply class. See PowerSupply.h.
Machine ChoosePowerSupply(const std::string& path);

// The power supplies, where there are some, otherwise the machine.
Machine ChooseMachine(const std::optional<std::string>& name, const std::optional<std::string>& powerSupply);

}  // namespace norv::tool
