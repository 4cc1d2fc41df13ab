// What the operations of a simulated machine have in common with the system's own.
#pragma once

#include <cstdint>
#include <string>

namespace norv::simulator {

inline constexpr std::uint32_t kFileNotFound = 2;
inline constexpr std::uint32_t kInsufficientBuffer = 122;
inline constexpr std::uint32_t kMessageNotFound = 317;
inline constexpr std::uint32_t kNoVersionResource = 1812;

// Writes a zero-terminated text into `size` bytes, cut where it does not fit. The number of bytes written.
std::uint32_t CopyCut(const std::string& text, char* buffer, std::uint32_t size);

}  // namespace norv::simulator
