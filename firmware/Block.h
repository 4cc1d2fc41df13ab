// What both blocks have in common: their size, their slots, and how a field lies in them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace norv::firmware {

// A block as the BIOS answers it, and as large as every input is declared to be.
inline constexpr std::size_t kBlockSize = 128;
using Block = std::array<unsigned char, kBlockSize>;

// The batteries that a notebook can have, numbered from 0.
inline constexpr int kSlotCount = 2;

// Where a field lies in its block, in bytes. A word is two bytes, little-endian; a text is 8-bit characters that need
// no NUL where they fill their field.
struct Field {
  std::size_t offset = 0;
  std::size_t width = 0;
  bool isSigned = false;  // a word in two's complement

  constexpr std::size_t End() const { return offset + width; }
};

// Of what is in no block.
inline constexpr Field kNowhere{0, 0};

// A word as the firmware gave it, widened without a sign: 0 to 65535.
constexpr int Word(const unsigned char* block, Field field) {
  return block[field.offset] | (block[field.offset + 1] << 8);
}

constexpr void PutWord(unsigned char* block, Field field, std::uint16_t word) {
  block[field.offset] = static_cast<unsigned char>(word & 0xFFU);
  block[field.offset + 1] = static_cast<unsigned char>(word >> 8U);
}

// The bytes of a text before its first NUL, all of them if there is none. Refers into the block.
inline std::string_view Text(const unsigned char* block, Field field) {
  const std::string_view bytes(reinterpret_cast<const char*>(block) + field.offset, field.width);
  return bytes.substr(0, bytes.find('\0'));
}

}  // namespace norv::firmware
