#include "Machine.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "PowerSupply.h"
#include "base/Time.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

using simulator::SimulatedMachine;

bool IsFileName(const std::string& name) {
  return name.find_first_of("/\\") != std::string::npos || name.ends_with(".json");
}

bool IsSample(const std::string& name) {
  const auto samples = simulator::SampleMachines();
  return std::any_of(samples.begin(), samples.end(), [&name](const auto& sample) { return sample.name == name; });
}

// A report's kinds are constants.
const char* KindName(const std::string& kind) {
  constexpr std::array kKinds = {"machine", "sample", "file", "folder", "listing"};
  const auto* const found = std::find(kKinds.begin(), kKinds.end(), kind);
  return found != kKinds.end() ? *found : kKinds.front();
}

std::optional<std::string> ClockText(const SimulatedMachine& machine) {
  const auto time = machine.Clock();
  return time ? std::optional(base::TimeText(*time)) : std::nullopt;
}

// A recording stands for the machine that it was made of.
Source SourceOf(const char* kind, const std::string& name, const SimulatedMachine& machine) {
  if (const auto& origin = machine.RecordedFrom()) {
    return {KindName(origin->kind), origin->name, origin->description, "", true, ClockText(machine)};
  }
  return {kind, name, machine.Description(), ""};
}

Machine Attach(const char* kind, const std::string& name, std::unique_ptr<SimulatedMachine> machine) {
  Source source = SourceOf(kind, name, *machine);
  return {std::move(source), std::move(machine), nullptr};
}

}  // namespace

Machine ChooseMachine(const std::optional<std::string>& name) {
  if (!name) {
    return {};
  }
  if (IsFileName(*name)) {
    return Attach("file", *name, SimulatedMachine::FromFile(*name));
  }
  if (IsSample(*name)) {
    return Attach("sample", *name, SimulatedMachine::FromSample(*name));
  }
  std::error_code ignored;
  if (!std::filesystem::exists(std::u8string(name->begin(), name->end()), ignored)) {
    throw simulator::MachineFileError(Quote(*name) +
                                      " is neither a sample machine ('norv-battery machines' lists them) nor a file");
  }
  return Attach("file", *name, SimulatedMachine::FromFile(*name));
}

Machine ChoosePowerSupply(const std::string& path) {
  std::error_code ignored;
  const char* kind = std::filesystem::is_directory(path, ignored) ? "folder" : "listing";
  return {Source{kind, path, "", ""}, nullptr, PlacePowerSupply(path)};
}

Machine ChooseMachine(const std::optional<std::string>& name, const std::optional<std::string>& powerSupply) {
  return powerSupply ? ChoosePowerSupply(*powerSupply) : ChooseMachine(name);
}

}  // namespace norv::tool
