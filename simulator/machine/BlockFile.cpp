#include "machine/BlockFile.h"

#include <algorithm>
#include <limits>
#include <span>
#include <string_view>

#include "machine/HexText.h"

namespace norv::simulator {

namespace {

// A 16-bit word of a block, little-endian.
struct WordField {
  std::string_view key;
  std::size_t offset;
  std::int64_t least;
};

constexpr WordField kBatteryWords[] = {
    {"designCapacity", 0x00, 0}, {"fullChargeCapacity", 0x02, 0}, {"remainingCapacity", 0x04, 0},
    {"maxError", 0x06, 0},       {"cycleCount", 0x08, 0},         {"temperature", 0x0A, 0},
    {"voltage", 0x0C, 0},        {"current", 0x0E, -32768},  // two's complement: negative while the battery discharges
    {"designVoltage", 0x10, 0},  {"batteryStatus", 0x12, 0},
};

constexpr std::size_t kCellVoltagesOffset = 0x14;
constexpr std::size_t kCellCount = 4;

// A text field, filled up with zeros.
struct TextField {
  std::string_view key;
  std::size_t offset;
  std::size_t width;
};

constexpr TextField kBatteryTexts[] = {
    {"serialNumber", 0x1C, 16},
    {"manufacturer", 0x2C, 18},
    {"ctNumber", 0x3E, 16},
    {"deviceName", 0x4F, 7},
};

constexpr std::size_t kManufactureDateOffset = 0x5C;

constexpr WordField kCellSwellWords[] = {
    {"timeCharge", 0, 0},
    {"timeDischarge", 2, 0},
    {"timeRelax", 4, 0},
    {"timeSleep", 6, 0},
    {"timeFullCharge", 8, 0},
    {"timeRsoc", 10, 0},
    {"levelATime", 12, 0},
    {"levelBTime", 14, 0},
    {"levelARunningTime", 16, 0},
    {"levelBRunningTime", 18, 0},
    {"levelATemperature1Time", 20, 0},
    {"levelBTemperature1Time", 22, 0},
    {"levelATemperature2Time", 24, 0},
    {"levelBTemperature2Time", 26, 0},
};

void PutWord(std::int64_t value, std::size_t offset, Block& block) {
  const auto word = static_cast<std::uint16_t>(value);
  block[offset] = static_cast<unsigned char>(word & 0xFF);
  block[offset + 1] = static_cast<unsigned char>(word >> 8);
}

void ReadWords(const JsonNode& node, std::span<const WordField> fields, Block& block) {
  for (const WordField& field : fields) {
    if (const auto member = node.Member(std::string(field.key))) {
      PutWord(member->WholeNumber(field.least, 65535), field.offset, block);
    }
  }
}

void ReadTexts(const JsonNode& node, Block& block) {
  for (const TextField& field : kBatteryTexts) {
    if (const auto member = node.Member(std::string(field.key))) {
      std::string text = member->ByteText(field.width);
      text.resize(field.width, '\0');
      std::transform(text.begin(), text.end(), block.begin() + static_cast<std::ptrdiff_t>(field.offset),
                     [](char c) { return static_cast<unsigned char>(c); });
    }
  }
}

void ReadCellVoltages(const JsonNode& node, Block& block) {
  std::size_t offset = kCellVoltagesOffset;
  for (const JsonNode& voltage : node.Items(kCellCount)) {
    PutWord(voltage.WholeNumber(0, 65535), offset, block);
    offset += 2;
  }
}

// The digits of `text` at `position` as a number; nothing where something else stands.
std::optional<int> Digits(const std::string& text, std::size_t position, std::size_t count) {
  int number = 0;
  for (std::size_t i = position; i < position + count; ++i) {
    if (text[i] < '0' || text[i] > '9') {
      return std::nullopt;
    }
    number = number * 10 + (text[i] - '0');
  }
  return number;
}

// Years since 1980 in 7 bits, the month in 4, the day in 5: the word can hold dates that no calendar has.
std::optional<std::int64_t> PackedDate(const std::string& text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
    return std::nullopt;
  }
  const std::optional<int> year = Digits(text, 0, 4);
  const std::optional<int> month = Digits(text, 5, 2);
  const std::optional<int> day = Digits(text, 8, 2);
  const bool fits = year && month && day && *year >= 1980 && *year <= 2107 && *month <= 15 && *day <= 31;
  return fits ? std::optional<std::int64_t>((*year - 1980) * 512 + *month * 32 + *day) : std::nullopt;
}

std::int64_t ReadManufactureDate(const JsonNode& node) {
  const std::optional<std::int64_t> packed = node.IsText() ? PackedDate(node.Text()) : std::nullopt;
  if (packed.has_value()) {
    return *packed;
  }
  if (node.IsText()) {
    node.FailExpecting("a date \"YYYY-MM-DD\" with a year from 1980 to 2107, a month up to 15 and a day up to 31");
  }
  return node.WholeNumber(0, 65535);
}

std::vector<std::string> BlockKeys(std::span<const WordField> words) {
  std::vector<std::string> keys{"hex"};
  for (const WordField& field : words) {
    keys.emplace_back(field.key);
  }
  return keys;
}

// The failures that a slot has for one of its two commands.
void ReadFailures(const JsonNode& slot, const char* returnCodeKey, const char* statusKey, BlockAnswer& answer) {
  if (const auto returnCode = slot.Member(returnCodeKey)) {
    answer.returnCode = returnCode->Code();
  }
  if (const auto status = slot.Member(statusKey)) {
    answer.channelStatus = status->SignedCode();
  }
}

}  // namespace

Block ReadBlockHex(const JsonNode& node) {
  Block block{};
  const std::optional<std::vector<unsigned char>> bytes = FromHexText(node.Text());
  if (!bytes.has_value() || bytes->size() != block.size()) {
    const std::string& text = node.Text();
    const auto blanks = static_cast<std::size_t>(std::count(text.begin(), text.end(), ' '));
    node.Fail("expected the " + std::to_string(block.size()) + " bytes of the block as " +
              std::to_string(2 * block.size()) + " hex digits, with blanks between them or not, got " +
              std::to_string(text.size() - blanks) + " characters that are no blanks");
  }
  std::copy(bytes->begin(), bytes->end(), block.begin());
  return block;
}

Block ReadBattery(const JsonNode& node) {
  std::vector<std::string> keys = BlockKeys(kBatteryWords);
  keys.emplace_back("cellVoltages");
  for (const TextField& field : kBatteryTexts) {
    keys.emplace_back(field.key);
  }
  keys.emplace_back("manufactureDate");
  node.ExpectKeys(keys);
  Block block{};
  if (const auto hex = node.Member("hex")) {
    block = ReadBlockHex(*hex);
  }
  ReadWords(node, kBatteryWords, block);
  if (const auto voltages = node.Member("cellVoltages")) {
    ReadCellVoltages(*voltages, block);
  }
  ReadTexts(node, block);
  if (const auto date = node.Member("manufactureDate")) {
    PutWord(ReadManufactureDate(*date), kManufactureDateOffset, block);
  }
  return block;
}

Block ReadCellSwell(const JsonNode& node) {
  node.ExpectKeys(BlockKeys(kCellSwellWords));
  Block block{};
  if (const auto hex = node.Member("hex")) {
    block = ReadBlockHex(*hex);
  }
  ReadWords(node, kCellSwellWords, block);
  return block;
}

SlotDescription ReadSlot(const JsonNode& slot) {
  SlotDescription description;
  if (slot.IsNull()) {
    return description;
  }
  slot.ExpectKeys({"battery", "batteryReturnCode", "batteryChannelStatus", "cellSwell", "cellSwellReturnCode",
                   "cellSwellChannelStatus", "driverStateOfCharge"});
  if (const auto battery = slot.Member("battery")) {
    description.battery = {0, 0, ReadBattery(*battery)};
    description.cellSwell.returnCode = firmware::kNotSupported;
  }
  if (const auto cellSwell = slot.Member("cellSwell")) {
    description.cellSwell = {0, 0, ReadCellSwell(*cellSwell)};
  }
  if (const auto percent = slot.Member("driverStateOfCharge")) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max();
    description.driverStateOfCharge = static_cast<std::uint32_t>(percent->WholeNumber(0, kLargest));
  }
  ReadFailures(slot, "batteryReturnCode", "batteryChannelStatus", description.battery);
  ReadFailures(slot, "cellSwellReturnCode", "cellSwellChannelStatus", description.cellSwell);
  return description;
}

}  // namespace norv::simulator
