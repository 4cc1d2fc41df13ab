#include "norv/simulator/SimulatedMachine.h"

#include <utility>

#include "machine/MachineFile.h"
#include "machine/Samples.h"
#include "play/AnswerPlayer.h"
#include "play/SimulatedPlatform.h"

namespace norv::simulator {

// Inside out: what the machine answers, call by call where its file says so, where it fails instead, and what notes all
// of it down.
struct SimulatedMachine::Parts {
  explicit Parts(MachineDescription described)
      : machine(std::make_shared<MachineDescription>(std::move(described))),
        simulated(machine),
        player(simulated, AnsweringHook(machine->answers)),
        faults(player, machine->faults),
        recorder(faults),
        scope(recorder) {}

  std::shared_ptr<const MachineDescription> machine;
  SimulatedPlatform simulated;
  Interceptor player;
  FaultInjector faults;
  OperationRecorder recorder;
  platform::ScopedPlatform scope;
};

std::vector<SampleMachine> SampleMachines() {
  std::vector<SampleMachine> samples;
  for (const SampleFile& file : SampleFiles()) {
    samples.push_back({file.name, ReadMachine(file.text, file.name).description});
  }
  return samples;
}

std::string SampleText(const std::string& name) {
  std::string names;
  for (const SampleFile& file : SampleFiles()) {
    if (file.name == name) {
      return file.text;
    }
    names += (names.empty() ? "" : ", ") + std::string(file.name);
  }
  throw MachineFileError(name + ": there is no such sample machine, expected one of: " + names);
}

std::unique_ptr<SimulatedMachine> SimulatedMachine::FromFile(const std::string& path) {
  return FromText(ReadTextFile(path), path);
}

std::unique_ptr<SimulatedMachine> SimulatedMachine::FromText(const std::string& json, const std::string& name) {
  // The constructor is private, which keeps make_unique out.
  return std::unique_ptr<SimulatedMachine>(new SimulatedMachine(std::make_unique<Parts>(ReadMachine(json, name))));
}

std::unique_ptr<SimulatedMachine> SimulatedMachine::FromSample(const std::string& name) {
  return FromText(SampleText(name), name);
}

SimulatedMachine::SimulatedMachine(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {
}

SimulatedMachine::~SimulatedMachine() = default;

const std::string& SimulatedMachine::Description() const {
  return parts_->machine->description;
}

const std::optional<Origin>& SimulatedMachine::RecordedFrom() const {
  return parts_->machine->origin;
}

std::optional<std::time_t> SimulatedMachine::Clock() const {
  return parts_->machine->now;
}

const std::vector<Operation>& SimulatedMachine::Operations() const {
  return parts_->recorder.Operations();
}

void SimulatedMachine::ForgetOperations() {
  parts_->recorder.Clear();
}

platform::Platform& SimulatedMachine::AsPlatform() {
  return parts_->recorder;
}

}  // namespace norv::simulator
