// BIOS blocks for tests. Fields of a name lie where the firmware puts them; what holds that against an independent copy
// of the offsets is the plain decoder of the benchmarks.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "firmware/BatteryInformationBlock.h"

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

  TestBlock& Word(firmware::Field field, unsigned value) { return Word(field.offset, value); }
  TestBlock& Text(firmware::Field field, std::string_view text) { return Text(field.offset, field.width, text); }

  TestBlock& SerialNumber(std::string_view text) { return Text(firmware::kSerialNumber, text); }
  TestBlock& Manufacturer(std::string_view text) { return Text(firmware::kManufacturer, text); }
  TestBlock& CtNumber(std::string_view text) { return Text(firmware::kCtNumber, text); }
  TestBlock& DeviceName(std::string_view text) { return Text(firmware::kDeviceName, text); }
  TestBlock& DesignCapacity(unsigned value) { return Word(firmware::kDesignCapacity, value); }
  TestBlock& FullChargeCapacity(unsigned value) { return Word(firmware::kFullChargeCapacity, value); }
  TestBlock& RemainingCapacity(unsigned value) { return Word(firmware::kRemainingCapacity, value); }
  TestBlock& StatusWord(unsigned value) { return Word(firmware::kBatteryStatus, value); }
  TestBlock& PackedDate(unsigned value) { return Word(firmware::kManufactureDate, value); }

  const unsigned char* Data() const { return bytes_.data(); }
  const firmware::Block& Bytes() const { return bytes_; }

 private:
  firmware::Block bytes_{};
};

// A block of a battery that is all right: valid, with every field filled and no two words alike.
inline TestBlock HealthyBlock() {
  TestBlock block;
  for (unsigned offset = 0; offset < firmware::kSerialNumber.offset; offset += 2) {
    block.Word(offset, 0x1101 + 0x0101 * offset);
  }
  return block.SerialNumber("SN00012019-05-06")
      .Manufacturer("123-45-67-A")
      .CtNumber("6ABCDEFGH12345")
      .DeviceName("BAT0001")
      .PackedDate(0x52A6);
}

}  // namespace norv::test
