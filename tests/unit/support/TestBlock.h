// BIOS blocks for tests, written by offset as the firmware's document has them.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace norv::test {

class TestBlock {
 public:
  TestBlock() = default;

  TestBlock& Word(std::size_t offset, unsigned value) {
    bytes_[offset] = static_cast<unsigned char>(value & 0xFF);
    bytes_[offset + 1] = static_cast<unsigned char>(value >> 8);
    return *this;
  }

  // Clears the field and writes what fits of `text`, which may hold NUL bytes.
  TestBlock& Text(std::size_t offset, std::size_t width, std::string_view text) {
    for (std::size_t index = 0; index < width; ++index) {
      bytes_[offset + index] = index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
    }
    return *this;
  }

  TestBlock& Byte(std::size_t offset, unsigned char value) {
    bytes_[offset] = value;
    return *this;
  }

  TestBlock& SerialNumber(std::string_view text) { return Text(0x1C, 16, text); }
  TestBlock& Manufacturer(std::string_view text) { return Text(0x2C, 18, text); }
  TestBlock& CtNumber(std::string_view text) { return Text(0x3E, 16, text); }
  TestBlock& DeviceName(std::string_view text) { return Text(0x4F, 7, text); }
  TestBlock& DesignCapacity(unsigned value) { return Word(0x00, value); }
  TestBlock& FullChargeCapacity(unsigned value) { return Word(0x02, value); }
  TestBlock& RemainingCapacity(unsigned value) { return Word(0x04, value); }
  TestBlock& StatusWord(unsigned value) { return Word(0x12, value); }
  TestBlock& PackedDate(unsigned value) { return Word(0x5C, value); }

  const unsigned char* Data() const { return bytes_.data(); }
  const std::array<unsigned char, 128>& Bytes() const { return bytes_; }

 private:
  std::array<unsigned char, 128> bytes_{};
};

// A block of a battery that is all right: valid, with every field filled and no two words alike.
inline TestBlock HealthyBlock() {
  TestBlock block;
  for (unsigned offset = 0; offset < 0x1C; offset += 2) {
    block.Word(offset, 0x1101 + 0x0101 * offset);
  }
  return block.SerialNumber("SN00012019-05-06")
      .Manufacturer("123-45-67-A")
      .CtNumber("6ABCDEFGH12345")
      .DeviceName("BAT0001")
      .PackedDate(0x52A6);
}

}  // namespace norv::test
