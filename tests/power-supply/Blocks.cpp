// Prints what the library's Linux platform answers for a folder or a listing of the power supply class: blocks PATH.
// For each slot a line with the return code and, where that is 0, the 128 bytes of the block in hexadecimal, 16 to a
// line.
#include <array>
#include <cstdint>
#include <cstdio>

#include "norv/platform/PowerSupplyPlatform.h"

namespace {

using norv::platform::Platform;
using norv::platform::PowerSupplyPlatform;

void PrintSlot(Platform& platform, unsigned char slot) {
  std::array<unsigned char, 128> input{slot};
  std::array<unsigned char, 128> output{};
  std::uint32_t returnCode = 0;
  const std::int32_t status = platform.SendBiosCommand(1, 7, 1, input.data(), static_cast<std::uint32_t>(input.size()),
                                                       output.data(), &returnCode);
  std::printf("slot %d: status %d, return code %u\n", slot, status, returnCode);
  for (std::size_t index = 0; returnCode == 0 && index < output.size(); ++index) {
    std::printf("%02x%c", output[index], index % 16 == 15 ? '\n' : ' ');
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: blocks PATH\n", stderr);
    return 2;
  }
  PowerSupplyPlatform platform(Platform::Current(), argv[1]);
  PrintSlot(platform, 0);
  PrintSlot(platform, 1);
  return 0;
}
