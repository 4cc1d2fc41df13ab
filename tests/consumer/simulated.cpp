// A host that tries itself on a simulated machine.
#include <battery/NorvBatteries.h>
#include <battery/NorvBatteryInfo.h>
#include <norv/simulator/MachineRecorder.h>
#include <norv/simulator/SimulatedMachine.h>

#include <cstring>
#include <iostream>
#include <string>

using norv::shared::battery::NorvBatteries;
using norv::simulator::SimulatedMachine;

static int Fail(const char* what) {
  std::cerr << "simulated: " << what << '\n';
  return 1;
}

int main() {
  // A notebook has batteries of its own.
  const bool hasBattery = NorvBatteries().Query(0) != nullptr;
  {
    auto machine = SimulatedMachine::FromSample("two-batteries");
    NorvBatteries batteries;
    if (batteries.Query(0) == nullptr || batteries.Query(1) == nullptr) {
      return Fail("the library does not read the machine that the simulator put in place");
    }
    if (std::strlen(batteries.Query(0)->GetSerialNumber()) == 0 || batteries.Query(0)->GetDesignEnergyCapacity() <= 0) {
      return Fail("the record of slot 0 is empty");
    }
    if (machine->Operations().empty()) {
      return Fail("the machine did not notice that it was asked");
    }
  }
  NorvBatteries batteries;
  return (batteries.Query(0) != nullptr) == hasBattery ? 0 : Fail("the running machine is not back in place");
}
