#include "access/BiosRead.h"

namespace norv::shared::battery::access {

norvbios::PrivateBiosWmi& Channel(norvbios::PrivateBiosWmi*& bios) {
  if (bios == nullptr) {
    bios = new norvbios::PrivateBiosWmi;
  }
  return *bios;
}

Answer Ask(norvbios::PrivateBiosWmi& bios, Command command, unsigned char index) {
  Block input{};
  input[0] = index;
  Answer answer;
  answer.channelStatus = bios.ExecuteCommand(1, static_cast<std::uint32_t>(command), 1, input.data(), kBlockSize,
                                             answer.block.data(), &answer.returnCode);
  return answer;
}

}  // namespace norv::shared::battery::access
