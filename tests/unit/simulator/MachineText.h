// Machines for the simulator's tests, written in place.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "norv/simulator/SimulatedMachine.h"

namespace norv::simulator {

// A machine whose file holds `members` besides a description.
inline std::unique_ptr<SimulatedMachine> MachineWith(const std::string& members) {
  return SimulatedMachine::FromText("{\"description\": \"A machine\", " + members + "}", "test");
}

// What a machine answers to a BIOS command. The return code and the output start with values that no answer has.
struct BiosAnswer {
  std::int32_t status = 0;
  std::uint32_t returnCode = 12345;
  std::array<unsigned char, 128> output{};
};

inline constexpr unsigned char kUntouched = 0xEE;

inline BiosAnswer Ask(platform::Platform& platform, std::uint32_t command, unsigned char slot) {
  std::array<unsigned char, 128> input{};
  input[0] = slot;
  BiosAnswer answer;
  answer.output.fill(kUntouched);
  answer.status = platform.SendBiosCommand(1, command, 1, input.data(), 128, answer.output.data(), &answer.returnCode);
  return answer;
}

inline bool IsUntouched(const BiosAnswer& answer) {
  std::array<unsigned char, 128> untouched{};
  untouched.fill(kUntouched);
  return answer.output == untouched;
}

inline long Hresult(std::uint32_t code) {
  return static_cast<std::int32_t>(code);
}

}  // namespace norv::simulator
