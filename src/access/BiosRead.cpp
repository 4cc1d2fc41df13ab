#include "access/BiosRead.h"

namespace norv::shared::battery::access {

norvbios::PrivateBiosWmi& EnsureChannel(norvbios::PrivateBiosWmi*& bios) {
  if (bios == nullptr) {
    bios = new norvbios::PrivateBiosWmi;
  }
  return *bios;
}

Answer Ask(norvbios::PrivateBiosWmi& bios, firmware::Command command, unsigned char index) {
  firmware::Block input{};
  input[0] = index;
  Answer answer;
  answer.channelStatus =
      bios.ExecuteCommand(firmware::kRead, static_cast<std::uint32_t>(command), firmware::kOfBattery, input.data(),
                          firmware::kBlockSize, answer.block.data(), &answer.returnCode);
  return answer;
}

}  // namespace norv::shared::battery::access
