#include "recording/RedactedBlock.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "firmware/BatteryInformationBlock.h"
#include "firmware/CellSwellProtectionBlock.h"
#include "recording/NumberMask.h"

namespace norv::simulator {

namespace {

// A way to write a date: '#' stands for a digit and '-' for any separator.
struct DateShape {
  std::string_view layout;
  std::size_t month;
  std::size_t day;
};

// In the order in which a record looks for them.
constexpr std::array<DateShape, 4> kDateShapes{{
    {"20##-##-##", 5, 8},
    {"19-##-##", 3, 6},
    {"##-##-20##", 0, 3},
    {"##-##-19", 0, 3},
}};

bool HasLayout(std::string_view text, std::string_view layout) {
  return std::equal(text.begin(), text.end(), layout.begin(), layout.end(), [](char c, char wanted) {
    if (wanted == '#') {
      return c >= '0' && c <= '9';
    }
    return wanted == '-' ? std::string_view("- /.").find(c) != std::string_view::npos : c == wanted;
  });
}

int TwoDigits(std::string_view text) {
  return 10 * (text[0] - '0') + (text[1] - '0');
}

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

std::string KeptManufacturer(const std::string& text, const KeyedHash&) {
  return text;
}

// A name that is not of letters and digits alone counts as an empty one.
std::string KeptDeviceName(const std::string& text, const KeyedHash&) {
  const bool isName = std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  });
  return isName ? text : "";
}

// Assembly, revision, supplier and week stay: thousands of packs share them.
std::string MaskedCtNumber(const std::string& text, const KeyedHash& hash) {
  constexpr std::size_t kSharedLength = 10;
  return MaskedNumber(text, {std::min(kSharedLength, text.size()), 0}, "CT number", hash);
}

struct TextRule {
  firmware::Field field;
  std::string (*replace)(const std::string& text, const KeyedHash& hash);
};

constexpr std::array<TextRule, 4> kBlockTexts{{
    {firmware::kSerialNumber, MaskedSerialNumber},
    {firmware::kManufacturer, KeptManufacturer},
    {firmware::kCtNumber, MaskedCtNumber},
    {firmware::kDeviceName, KeptDeviceName},
}};

}  // namespace

std::size_t TrailingDateLength(const std::string& serialNumber) {
  for (const DateShape& shape : kDateShapes) {
    if (serialNumber.size() >= shape.layout.size()) {
      const std::string_view end = std::string_view(serialNumber).substr(serialNumber.size() - shape.layout.size());
      const int month = TwoDigits(end.substr(shape.month));
      const int day = TwoDigits(end.substr(shape.day));
      if (HasLayout(end, shape.layout) && month >= 1 && month <= 12 && day >= 1 && day <= 31) {
        return shape.layout.size();
      }
    }
  }
  return 0;
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
  for (const TextRule& rule : kBlockTexts) {
    const std::string text(firmware::Text(block.data(), rule.field));
    WriteText(block, rule.field, rule.replace(text, hash));
  }
  Clear(block, firmware::kCtNumber.End(), firmware::kDeviceName.offset);
  Clear(block, firmware::kDeviceName.End(), firmware::kManufactureDate.offset);
  Clear(block, firmware::kManufactureDate.End(), block.size());
}

void RedactCellSwell(Block& block) {
  Clear(block, firmware::kLevelBTemperature2Time.End(), block.size());
}

}  // namespace norv::simulator
