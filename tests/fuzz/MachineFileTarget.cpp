// Any text as a machine file: it is refused with a reason, or it makes a machine that the library can read.
#include <cstddef>
#include <cstdint>
#include <string>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "fuzz/Check.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/Snapshot.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using norv::test::Require;
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const auto machine = norv::simulator::SimulatedMachine::FromText(text, "input");
    // No battery test here: a machine may describe one that takes hours.
    norv::shared::battery::NorvBatteries batteries(true, false, nullptr, nullptr);
    for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
      if (auto* record = batteries.Query(slot)) {
        Require(!norv::test::Answers(*record).empty(), "a record's answers");
      }
    }
  } catch (const norv::simulator::MachineFileError& refusal) {
    Require(std::string(refusal.what()).find("input") == 0, "the refusal names its file");
  }
  return 0;
}
