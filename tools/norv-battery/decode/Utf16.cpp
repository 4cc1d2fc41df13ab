#include "decode/Utf16.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace norv::tool {

namespace {

constexpr std::size_t kUnitSize = 2;
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kHighSurrogates = 0xD800;
constexpr char32_t kLowSurrogates = 0xDC00;
constexpr char32_t kBehindSurrogates = 0xE000;
constexpr char32_t kBehindTheBasicPlane = 0x10000;

char32_t UnitAt(std::string_view bytes, std::size_t position, std::endian order) {
  const auto first = static_cast<unsigned char>(bytes[position]);
  const auto second = static_cast<unsigned char>(bytes[position + 1]);
  return order == std::endian::little ? first | char32_t{second} << 8U : second | char32_t{first} << 8U;
}

// Up to `highest`, and no control character but tabs and line ends.
bool IsTextUpTo(char32_t highest, std::string_view bytes, std::endian order) {
  for (std::size_t position = 0; position + kUnitSize <= bytes.size(); position += kUnitSize) {
    const char32_t unit = UnitAt(bytes, position, order);
    if (unit > highest || (unit < U' ' && unit != U'\t' && unit != U'\r' && unit != U'\n')) {
      return false;
    }
  }
  return true;
}

bool IsUnitWithin(char32_t unit, char32_t first, char32_t behind) {
  return unit >= first && unit < behind;
}

void AppendUtf8(char32_t character, std::vector<char>& text) {
  constexpr std::array<unsigned char, 4> kLeads = {0x00, 0xC0, 0xE0, 0xF0};
  const unsigned int following = character < 0x80                   ? 0
                                 : character < 0x800                ? 1
                                 : character < kBehindTheBasicPlane ? 2
                                                                    : 3;
  text.push_back(static_cast<char>(kLeads[following] | character >> 6U * following));
  for (unsigned int left = following; left > 0; --left) {
    text.push_back(static_cast<char>(0x80U | (character >> 6U * (left - 1) & 0x3FU)));
  }
}

}  // namespace

std::optional<std::endian> Utf16OrderOf(std::string_view start) {
  for (const std::endian order : {std::endian::little, std::endian::big}) {
    constexpr char32_t kMark = 0xFEFF;
    constexpr char32_t kAnyUnit = 0xFFFF;
    if (start.size() >= kUtf16MarkSize && UnitAt(start, 0, order) == kMark && IsTextUpTo(kAnyUnit, start, order)) {
      return order;
    }
  }
  return std::nullopt;
}

bool IsUtf16WithoutMark(std::string_view start) {
  constexpr std::size_t kFewest = 2 * kUnitSize;
  constexpr char32_t kLastOfOneByte = 0xFF;
  return start.size() >= kFewest && (IsTextUpTo(kLastOfOneByte, start, std::endian::little) ||
                                     IsTextUpTo(kLastOfOneByte, start, std::endian::big));
}

void Utf16Decoder::Append(std::string_view bytes, bool isLast, std::vector<char>& text) {
  rest_ += bytes;
  std::size_t position = 0;
  while (position + kUnitSize <= rest_.size()) {
    char32_t character = UnitAt(rest_, position, order_);
    const std::size_t next = position + kUnitSize;
    const bool isHigh = IsUnitWithin(character, kHighSurrogates, kLowSurrogates);
    if (isHigh && next + kUnitSize > rest_.size() && !isLast) {
      break;
    }
    const char32_t low = isHigh && next + kUnitSize <= rest_.size() ? UnitAt(rest_, next, order_) : 0;
    const bool isPair = IsUnitWithin(low, kLowSurrogates, kBehindSurrogates);
    if (isPair) {
      character = kBehindTheBasicPlane + ((character - kHighSurrogates) << 10U) + (low - kLowSurrogates);
    } else if (IsUnitWithin(character, kHighSurrogates, kBehindSurrogates)) {
      character = kReplacement;
    }
    AppendUtf8(character, text);
    position = next + (isPair ? kUnitSize : 0);
  }
  rest_.erase(0, position);
  if (isLast && !rest_.empty()) {
    AppendUtf8(kReplacement, text);
    rest_.clear();
  }
}

}  // namespace norv::tool
