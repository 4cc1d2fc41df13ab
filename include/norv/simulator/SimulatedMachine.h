// A notebook described by a file, for tests, demonstrations and offline work.
#pragma once

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "norv/platform/Platform.h"

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

// One operation that the library asked of a machine, in the order in which it asked.
struct Operation {
  std::string name;      // that of the Platform or WmiConnection operation: "SendBiosCommand", "ConnectWmi", "Query" ...
  std::string argument;  // "1,7,1 slot 0", the namespace, the query, the property, the path ... ; UTF-8
};

struct MachineDescription;  // the file, read

// A machine that a file describes, as the current platform of the process for as long as the object lives.
//
//   auto machine = norv::simulator::SimulatedMachine::FromSample("two-batteries");
//   norv::shared::battery::NorvBatteries batteries;   // reads the simulated machine
//
// Machines nest and end in reverse order. One thread at a time.
class SimulatedMachine {
 public:
  // Each throws MachineFileError.
  static std::unique_ptr<SimulatedMachine> FromFile(const std::string& path);
  static std::unique_ptr<SimulatedMachine> FromText(const std::string& json, const std::string& name);
  static std::unique_ptr<SimulatedMachine> FromSample(const std::string& name);

  SimulatedMachine(const SimulatedMachine&) = delete;
  SimulatedMachine& operator=(const SimulatedMachine&) = delete;
  ~SimulatedMachine();

  const std::string& Description() const;

  // Everything asked of the machine so far.
  const std::vector<Operation>& Operations() const;

  // The machine as a platform, faults and recording included.
  platform::Platform& AsPlatform();

 private:
  struct Parts;
  explicit SimulatedMachine(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace norv::simulator
