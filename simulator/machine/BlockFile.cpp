#include "machine/BlockFile.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string_view>

#include "base/Time.h"
#include "fields/Stored.h"
#include "firmware/PackedDate.h"
#include "machine/HexText.h"
#include "machine/SlotFile.h"

namespace norv::simulator {

namespace {

namespace fields = shared::battery::fields;

// Fields that machine files have had under a name of their own from the beginning.
struct OwnKey {
  norv_battery_field field;
  const char* key;
};

constexpr std::array kOwnKeys{
    OwnKey{NORV_BATTERY_STATUS_WORD, "batteryStatus"},
    OwnKey{NORV_BATTERY_CELL_VOLTAGE_1, "cellVoltages"},
    OwnKey{NORV_BATTERY_MANUFACTURING_DATE, "manufactureDate"},
};

void PutNumber(const JsonNode& node, firmware::Field place, Block& block) {
  const std::int64_t least = place.isSigned ? std::numeric_limits<std::int16_t>::min() : 0;
  const std::int64_t word = node.WholeNumber(least, std::numeric_limits<std::uint16_t>::max());
  firmware::PutWord(block.data(), place, static_cast<std::uint16_t>(word));
}

// A text is filled up with zeros.
void PutText(const JsonNode& node, firmware::Field place, Block& block) {
  std::string text = node.ByteText(place.width);
  text.resize(place.width, '\0');
  std::transform(text.begin(), text.end(), block.begin() + static_cast<std::ptrdiff_t>(place.offset),
                 [](char c) { return static_cast<unsigned char>(c); });
}

// The word itself, or its date, which no calendar need have.
void PutDate(const JsonNode& node, firmware::Field place, Block& block) {
  if (!node.IsText()) {
    PutNumber(node, place, block);
    return;
  }
  const auto digits = base::ReadDateDigits(node.Text());
  const auto date = digits ? firmware::PackedDate{(*digits)[0], (*digits)[1], (*digits)[2]} : firmware::PackedDate{};
  if (!firmware::CanPack(date)) {
    node.FailExpecting("a date \"YYYY-MM-DD\" with a year from 1980 to 2107, a month up to 15 and a day up to 31");
  }
  firmware::PutWord(block.data(), place, firmware::Pack(date));
}

// Fills the items of a list, and leaves those that the file does not have.
void PutItems(const JsonNode& node, StoredRows items, Block& block) {
  std::size_t count = 0;
  for (const JsonNode& item : node.Items(items.size())) {
    PutNumber(item, items[count++]->place, block);
  }
}

void PutField(const JsonNode& node, const fields::Row& row, Block& block) {
  switch (fields::FormOf(row)) {
    case fields::Form::Word:
    case fields::Form::SignedWord:
      return PutNumber(node, row.place, block);
    case fields::Form::PackedDate:
      return PutDate(node, row.place, block);
    case fields::Form::Text:
      return PutText(node, row.place, block);
  }
}

Block ReadFields(const JsonNode& node, StoredRows rows) {
  std::vector<std::string> keys{"hex"};
  ForEachMember(rows, [&](const std::string& key, StoredRows) { keys.push_back(key); });
  node.ExpectKeys(keys);
  Block block{};
  if (const auto hex = node.Member("hex")) {
    block = ReadBlockHex(*hex);
  }
  ForEachMember(rows, [&](const std::string& key, StoredRows members) {
    if (const auto member = node.Member(key)) {
      fields::ItemIndex(*members.front()) ? PutItems(*member, members, block)
                                          : PutField(*member, *members.front(), block);
    }
  });
  return block;
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

std::string BlockKey(const fields::Row& row) {
  const auto* const own =
      std::find_if(kOwnKeys.begin(), kOwnKeys.end(), [&](const OwnKey& one) { return one.field == row.number; });
  return std::string(own != kOwnKeys.end() ? own->key : fields::BareKey(row.key));
}

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
  return ReadFields(node, fields::kStored<NORV_BATTERY_FROM_INFORMATION_BLOCK>);
}

Block ReadCellSwell(const JsonNode& node) {
  return ReadFields(node, fields::kStored<NORV_BATTERY_FROM_CELL_SWELL_BLOCK>);
}

SlotContents ReadSlot(const JsonNode& slot) {
  SlotContents description;
  if (slot.IsNull()) {
    return description;
  }
  slot.ExpectKeys({"battery", "batteryReturnCode", "batteryChannelStatus", "cellSwell", "cellSwellReturnCode",
                   "cellSwellChannelStatus", "driverStateOfCharge", "driver"});
  if (const auto battery = slot.Member("battery")) {
    description.battery = {0, 0, ReadBattery(*battery)};
    description.cellSwell.returnCode = firmware::kNotSupported;
  }
  if (const auto cellSwell = slot.Member("cellSwell")) {
    description.cellSwell = {0, 0, ReadCellSwell(*cellSwell)};
  }
  if (const auto driver = slot.Member("driver")) {
    description.driver = ReadDriver(*driver);
  }
  if (const auto percent = slot.Member("driverStateOfCharge")) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max();
    description.driver.stateOfCharge = static_cast<std::uint32_t>(percent->WholeNumber(0, kLargest));
  }
  ReadFailures(slot, "batteryReturnCode", "batteryChannelStatus", description.battery);
  ReadFailures(slot, "cellSwellReturnCode", "cellSwellChannelStatus", description.cellSwell);
  return description;
}

}  // namespace norv::simulator
