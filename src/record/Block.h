// Fields of a BIOS block.
#pragma once

#include <cstddef>
#include <string_view>

namespace norv::shared::battery::record {

// Where a field lies in its block, in bytes.
struct Field {
  std::size_t offset;
  std::size_t width;
};

// An unsigned 16-bit little-endian word, widened without its sign: 0 to 65535.
inline int Word(const unsigned char* block, Field field) {
  return block[field.offset] | (block[field.offset + 1] << 8);
}

// A text field: its bytes before the first NUL, all of them if there is none. Refers into the block.
inline std::string_view Text(const unsigned char* block, Field field) {
  const std::string_view bytes(reinterpret_cast<const char*>(block) + field.offset, field.width);
  return bytes.substr(0, bytes.find('\0'));
}

}  // namespace norv::shared::battery::record
