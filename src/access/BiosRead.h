// Commands to the BIOS about one battery slot.
#pragma once

#include <cstdint>

#include "firmware/Block.h"
#include "firmware/Commands.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace norv::shared::battery::access {

struct Answer {
  std::int32_t channelStatus = 0;  // HRESULT form; 0: the BIOS answered
  std::uint32_t returnCode = 0;    // of the BIOS
  firmware::Block block{};
};

// The channel at `bios`; where there is none yet, the machine's own is made and stored there first.
norvbios::PrivateBiosWmi& EnsureChannel(norvbios::PrivateBiosWmi*& bios);

// Asks about slot `index` and waits for the answer.
Answer Ask(norvbios::PrivateBiosWmi& bios, firmware::Command command, unsigned char index);

}  // namespace norv::shared::battery::access
