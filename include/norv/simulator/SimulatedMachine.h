// A notebook described by a file, for tests, demonstrations and offline work.
#pragma once

#include <ctime>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "norv/platform/Platform.h"
#include "norv/simulator/MachineRecorder.h"
#include "norv/simulator/OperationRecorder.h"

namespace norv::simulator {

// A machine file that cannot be used. what() names the file, the place (line and column, or the JSON path) and what was
// expected there.
class MachineFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One of the machines that come with the simulator.
struct SampleMachine {
  std::string name;         // "two-batteries"
  std::string description;  // one line
};

// All sample machines, in the order of their names.
std::vector<SampleMachine> SampleMachines();

// The machine file of a sample, for a start of one's own. Throws MachineFileError when there is no such sample.
std::string SampleText(const std::string& name);

// A machine that a file describes, as the current platform of the process for as long as the object lives.
//
//   auto machine = norv::simulator::SimulatedMachine::FromSample("two-batteries");
//   norv::shared::battery::NorvBatteries batteries;   // reads the simulated machine
//
// Machines nest and end in reverse order. They are made and destroyed while no other thread uses the library; in
// between the threads' rules are those of every platform.
class SimulatedMachine {
 public:
  // Each throws MachineFileError. `name` stands for the file in messages.
  static std::unique_ptr<SimulatedMachine> FromFile(const std::string& path);
  static std::unique_ptr<SimulatedMachine> FromText(const std::string& json, const std::string& name);
  static std::unique_ptr<SimulatedMachine> FromSample(const std::string& name);

  SimulatedMachine(const SimulatedMachine&) = delete;
  SimulatedMachine& operator=(const SimulatedMachine&) = delete;
  ~SimulatedMachine();

  const std::string& Description() const;

  // The machine that was recorded into the file; nothing for one that no recorder made.
  const std::optional<Origin>& RecordedFrom() const;

  // Where the machine's clock stands; nothing where it is the running system's.
  std::optional<std::time_t> Clock() const;

  // Everything asked of the machine so far, in order.
  const std::vector<Operation>& Operations() const;

  // Drops what Operations() holds, for a host that reads the machine again and again: they are kept without a limit.
  void ForgetOperations();

  // The machine as a platform, its faults and the recording included. It lives as long as the machine.
  platform::Platform& AsPlatform();

 private:
  struct Parts;
  explicit SimulatedMachine(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace norv::simulator
