// The commands about a battery, and the return codes with a meaning of their own.
#pragma once

#include <cstdint>

namespace norv::firmware {

// A command is three numbers, of which the second says what is asked for. The first byte of its input is the slot.
inline constexpr std::uint32_t kRead = 1;
enum class Command : std::uint32_t { BatteryInformation = 7, CellSwellProtection = 86 };
inline constexpr std::uint32_t kOfBattery = 1;

inline constexpr std::uint32_t kSuccess = 0;
inline constexpr std::uint32_t kNotSupported = 4;
inline constexpr std::uint32_t kEmptySlot = 6;
inline constexpr std::uint32_t kNoBattery = 52;

}  // namespace norv::firmware
