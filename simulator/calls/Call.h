// What is asked of a platform.
#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

namespace norv::simulator {

// Only the members mean something that the operation has arguments for.
struct Call {
  std::string_view operation;              // the name in its row (see Operations.h)
  std::string argument;                    // as the public Operation has it, in UTF-8
  std::string wmiNamespace;                // Query
  std::array<std::uint32_t, 3> command{};  // SendBiosCommand
  std::vector<unsigned char> input;        // SendBiosCommand
  std::string path;                        // RunProgram, ReadProductVersion: as it was given
  std::uint32_t size = 0;                  // of the buffer of LibraryPath and FormatSystemMessage
  std::uint32_t code = 0;                  // FormatSystemMessage
  std::tm calendarTime{};                  // LocalTimeValue
  std::uint32_t slot = 0;                  // DescribeSlot
};

}  // namespace norv::simulator
