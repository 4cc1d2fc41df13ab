#include "decode/Utf16.h"

#include <cstddef>

#include "base/Utf8.h"

namespace norv::tool {

namespace {

constexpr std::size_t kUnitSize = 2;

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
    const char32_t unit = UnitAt(rest_, position, order_);
    const std::size_t next = position + kUnitSize;
    const bool hasNext = next + kUnitSize <= rest_.size();
    if (base::IsHighSurrogate(unit) && !hasNext && !isLast) {
      break;
    }
    const char32_t low = hasNext ? UnitAt(rest_, next, order_) : 0;
    const bool isPair = base::IsSurrogatePair(unit, low);
    base::AppendUtf8(isPair ? base::JoinSurrogates(unit, low) : base::CharacterOrReplacement(unit), text);
    position = next + (isPair ? kUnitSize : 0);
  }
  rest_.erase(0, position);
  if (isLast && !rest_.empty()) {
    base::AppendUtf8(base::kReplacementCharacter, text);
    rest_.clear();
  }
}

}  // namespace norv::tool
