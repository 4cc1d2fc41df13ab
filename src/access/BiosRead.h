// Commands to the BIOS about one battery slot.
#pragma once

#include <array>
#include <cstdint>

#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace norv::shared::battery::access {

// A block as the BIOS answers it, and as large as every input is declared to be.
constexpr std::size_t kBlockSize = 128;
using Block = std::array<unsigned char, kBlockSize>;

// The second of a command's three numbers; the first and the third are 1.
enum class Command : std::uint32_t { BatteryInformation = 7, CellSwellProtection = 86 };

// Return codes with a meaning of their own.
constexpr std::uint32_t kSuccess = 0;
constexpr std::uint32_t kNotSupported = 4;
constexpr std::uint32_t kNoBatteryInSlot = 6;
constexpr std::uint32_t kNoBattery = 52;

struct Answer {
  std::int32_t channelStatus = 0;  // HRESULT form; 0: the BIOS answered
  std::uint32_t returnCode = 0;    // of the BIOS
  Block block{};
};

// The channel at `bios`; where there is none yet, the machine's own is made and stored there first.
norvbios::PrivateBiosWmi& Channel(norvbios::PrivateBiosWmi*& bios);

// Asks about slot `index` and waits for the answer.
Answer Ask(norvbios::PrivateBiosWmi& bios, Command command, unsigned char index);

}  // namespace norv::shared::battery::access
