#include "recording/RedactedBlock.h"

#include <algorithm>
#include <cstddef>

#include "fields/Stored.h"
#include "record/Characters.h"
#include "record/TrailingDate.h"
#include "recording/NumberMask.h"

namespace norv::simulator {

namespace {

namespace fields = shared::battery::fields;
namespace record = shared::battery::record;

void Clear(Block& block, std::size_t start, std::size_t end) {
  std::fill(block.begin() + static_cast<std::ptrdiff_t>(start), block.begin() + static_cast<std::ptrdiff_t>(end),
            static_cast<unsigned char>(0));
}

// Writes `text` at the start of its field. Firmware may leave anything behind the end of a text: it is cleared.
void WriteText(Block& block, const firmware::Field& field, const std::string& text) {
  Clear(block, field.offset, field.End());
  std::transform(text.begin(), text.end(), block.begin() + static_cast<std::ptrdiff_t>(field.offset),
                 [](char c) { return static_cast<unsigned char>(c); });
}

// A name that is not of letters and digits alone counts as an empty one.
std::string KeptName(const std::string& text) {
  return record::AreLettersOrDigits(text) ? text : "";
}

// Assembly, revision, supplier and week stay: thousands of packs share them.
std::string MaskedCtNumber(const std::string& text, const KeyedHash& hash) {
  constexpr std::size_t kSharedLength = 10;
  return MaskedNumber(text, {std::min(kSharedLength, text.size()), 0}, "CT number", hash);
}

// A text that nothing is known of keeps its length only.
std::string Replaced(const fields::Row& row, const std::string& text, const KeyedHash& hash) {
  switch (row.number) {
    case NORV_BATTERY_SERIAL_NUMBER:
      return MaskedSerialNumber(text, hash);
    case NORV_BATTERY_MANUFACTURER:
      return text;
    case NORV_BATTERY_CT_NUMBER:
      return MaskedCtNumber(text, hash);
    case NORV_BATTERY_DEVICE_NAME:
      return KeptName(text);
    default:
      return std::string(text.size(), 'x');
  }
}

// Clears what lies between the fields and after them.
template <norv_battery_source kSource>
void ClearGaps(Block& block) {
  std::size_t end = 0;
  for (const fields::Row* row : fields::kStored<kSource>) {
    Clear(block, end, row->place.offset);
    end = row->place.End();
  }
  Clear(block, end, block.size());
}

}  // namespace

std::size_t TrailingDateLength(const std::string& serialNumber) {
  const auto date = record::FindTrailingDate(serialNumber);
  return date ? date->length : 0;
}

// The next number of its permutation that ends in the same date is the replacement: that is a permutation, too, of the
// numbers that end so, and the way there never ends without one, because it leads back to the number itself.
std::string MaskedSerialNumber(const std::string& number, const KeyedHash& hash) {
  const std::size_t date = TrailingDateLength(number);
  std::string masked = number;
  do {
    masked = MaskedNumber(masked, {0, date}, "serial number", hash);
  } while (TrailingDateLength(masked) != date);
  return masked;
}

void RedactBattery(Block& block, const KeyedHash& hash) {
  for (const fields::Row* row : fields::kStored<NORV_BATTERY_FROM_INFORMATION_BLOCK>) {
    if (fields::FormOf(*row) == fields::Form::Text) {
      const std::string text(firmware::Text(block.data(), row->place));
      WriteText(block, row->place, Replaced(*row, text, hash));
    }
  }
  ClearGaps<NORV_BATTERY_FROM_INFORMATION_BLOCK>(block);
}

void RedactCellSwell(Block& block) {
  ClearGaps<NORV_BATTERY_FROM_CELL_SWELL_BLOCK>(block);
}

}  // namespace norv::simulator
