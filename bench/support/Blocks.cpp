#include "Blocks.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "firmware/BatteryInformationBlock.h"
#include "firmware/Commands.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::bench {

namespace {

constexpr char kLettersAndDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr char kCodes[] = "0123456789ABC";

// 'x' stands for any letter or digit, 'c' for a code of the supplier tables, '0' for a digit.
constexpr std::array<const char*, 6> kManufacturers = {"0c0-cc-00-A", "0cc-cc-x-A", "0c-cc-xx-A",
                                                       "0c0-cc-A",    "0c-cc-A",    "0c0cc-A"};

void PutWord(Block& block, firmware::Field field, std::uint32_t word) {
  firmware::PutWord(block.data(), field, static_cast<std::uint16_t>(word));
}

}  // namespace

std::uint32_t BlockGenerator::Below(std::uint32_t bound) {
  return static_cast<std::uint32_t>(random_() % bound);
}

char BlockGenerator::Pick(const char* characters, std::size_t count) {
  return characters[Below(static_cast<std::uint32_t>(count))];
}

void BlockGenerator::PutText(Block& block, firmware::Field field, const char* layout) {
  for (std::size_t position = 0; position < field.width && layout[position] != '\0'; ++position) {
    char character = layout[position];
    if (character == 'x') {
      character = Pick(kLettersAndDigits, sizeof kLettersAndDigits - 1);
    } else if (character == 'c') {
      character = Pick(kCodes, sizeof kCodes - 1);
    } else if (character == '0') {
      character = Pick(kLettersAndDigits, 10);
    }
    block[field.offset + position] = static_cast<unsigned char>(character);
  }
}

void BlockGenerator::PutSerialNumber(Block& block) {
  const unsigned int year = 2012 + Below(14);
  const unsigned int month = 1 + Below(12);
  const unsigned int day = 1 + Below(28);
  const bool isYearFirst = Below(2) == 0;
  std::array<char, 40> text{};
  if (isYearFirst) {
    std::snprintf(text.data(), text.size(), "%05u %04u-%02u-%02u", Below(100000), year, month, day);
  } else {
    std::snprintf(text.data(), text.size(), "%05u %02u/%02u/%04u", Below(100000), month, day, year);
  }
  std::memcpy(block.data() + firmware::kSerialNumber.offset, text.data(), firmware::kSerialNumber.width);
}

Block BlockGenerator::Likely() {
  Block block{};
  const std::uint32_t design = 3000 + Below(6000);
  const std::uint32_t full = design / 2 + Below(design / 2);
  PutWord(block, firmware::kDesignCapacity, design);
  PutWord(block, firmware::kFullChargeCapacity, full);
  PutWord(block, firmware::kRemainingCapacity, Below(full));
  PutWord(block, firmware::kMaxError, Below(10));
  PutWord(block, firmware::kCycleCount, Below(1200));
  PutWord(block, firmware::kTemperature, 2731 + Below(500));
  PutWord(block, firmware::kVoltage, 9000 + Below(4000));
  PutWord(block, firmware::kCurrent, Below(0x10000));
  PutWord(block, firmware::kDesignVoltage, 11550);
  PutWord(block, firmware::kBatteryStatus, 0x0080U | Below(4) << 5U);
  for (std::size_t cell = 0; cell < 3; ++cell) {
    PutWord(block, firmware::kCellVoltages[cell], 3500 + Below(800));
  }
  PutSerialNumber(block);
  PutText(block, firmware::kManufacturer, kManufacturers[Below(kManufacturers.size())]);
  PutText(block, firmware::kCtNumber, "6xxxxxxxxxxxxx");
  PutText(block, firmware::kDeviceName, "NV0x00");
  PutWord(block, firmware::kManufactureDate, (32 + Below(14)) << 9U | (1 + Below(12)) << 5U | (1 + Below(28)));
  return block;
}

// Changes one character of a text into any byte.
void BlockGenerator::Spoil(Block& block, firmware::Field field) {
  constexpr char kTelling[] = "\0 -/.A0169\"\\,\n\x7F\x80\xFF";
  const std::size_t place = field.offset + Below(static_cast<std::uint32_t>(field.width));
  block[place] =
      static_cast<unsigned char>(OneIn(2) ? Pick(kTelling, sizeof kTelling - 1) : static_cast<char>(Below(256)));
}

void BlockGenerator::PutOddTexts(Block& block) {
  constexpr std::array kTexts{firmware::kSerialNumber, firmware::kManufacturer, firmware::kCtNumber,
                              firmware::kDeviceName};
  for (const firmware::Field text : kTexts) {
    if (OneIn(2)) {
      Spoil(block, text);
    }
    if (OneIn(12)) {  // cut short, or empty
      const std::size_t kept = Below(static_cast<std::uint32_t>(text.width));
      std::fill_n(block.begin() + static_cast<std::ptrdiff_t>(text.offset + kept), text.width - kept, '\0');
    }
  }
}

Block BlockGenerator::Odd() {
  Block block = Likely();
  if (OneIn(16)) {
    std::generate(block.begin(), block.end(), [this] { return static_cast<unsigned char>(Below(256)); });
    return block;
  }
  for (std::size_t offset = 0; offset < firmware::kSerialNumber.offset; offset += 2) {
    if (OneIn(4)) {
      PutWord(block, {offset, 2}, OneIn(3) ? 0 : Below(0x10000));
    }
  }
  PutOddTexts(block);
  PutWord(block, firmware::kManufactureDate, Below(0x10000));
  return block;
}

std::vector<Block> SampleBlocks() {
  std::vector<Block> blocks;
  for (const auto& sample : simulator::SampleMachines()) {
    const auto machine = simulator::SimulatedMachine::FromSample(sample.name);
    for (unsigned char slot = 0; slot < firmware::kSlotCount; ++slot) {
      Block input{};
      input[0] = slot;
      Block block{};
      std::uint32_t returnCode = 0;
      if (machine->AsPlatform().SendBiosCommand(
              firmware::kRead, static_cast<std::uint32_t>(firmware::Command::BatteryInformation), firmware::kOfBattery,
              input.data(), input.size(), block.data(), &returnCode) == 0 &&
          returnCode == firmware::kSuccess) {
        blocks.push_back(block);
      }
    }
  }
  return blocks;
}

}  // namespace norv::bench
