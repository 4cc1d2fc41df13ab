#include "encode/BlockFromJson.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "Day.h"
#include "fields/Stored.h"
#include "firmware/BatteryInformationBlock.h"
#include "firmware/PackedDate.h"
#include "json/Describe.h"

namespace norv::tool {

namespace {

namespace fields = shared::battery::fields;

using json::Value;

[[noreturn]] void Fail(const std::string& path, const std::string& expected, const Value& found) {
  throw BlockValueError(path + ": expected " + expected + ", found " + json::Describe(found));
}

const Value& Member(const Value& battery, const std::string& group, const std::string& key) {
  const auto* const outer = battery[group].As<json::Object>();
  if (outer == nullptr) {
    throw BlockValueError(group + ": expected an object of this name");
  }
  const Value* const inner = outer->Find(key);
  if (inner == nullptr) {
    throw BlockValueError(group + "." + key + ": is missing");
  }
  return *inner;
}

// Nothing for what is no whole number of `lowest` to 65535; a negative one becomes its two's complement.
std::optional<std::uint16_t> WordOf(const Value& number, std::int64_t lowest) {
  constexpr std::uint64_t kHighest = 0xFFFF;
  if (const auto* const word = number.As<std::uint64_t>()) {
    return *word <= kHighest ? std::optional(static_cast<std::uint16_t>(*word)) : std::nullopt;
  }
  const auto* const negative = number.As<std::int64_t>();
  return negative != nullptr && *negative >= lowest ? std::optional(static_cast<std::uint16_t>(*negative))
                                                    : std::nullopt;
}

void PutNumber(Block& block, firmware::Field place, const Value& number, const std::string& path) {
  const std::int64_t lowest = place.isSigned ? std::numeric_limits<std::int16_t>::min() : 0;
  const auto word = WordOf(number, lowest);
  if (!word) {
    Fail(path, "a whole number of " + std::to_string(lowest) + " to 65535", number);
  }
  firmware::PutWord(block.data(), place, *word);
}

// The items of a list are those of the four cells.
const Value& ItemOf(const Value& list, std::size_t index, const std::string& path) {
  const auto* const items = list.As<json::Array>();
  if (items == nullptr || items->size() != firmware::kCellCount) {
    Fail(path, "an array of four numbers", list);
  }
  return (*items)[index];
}

// The bytes that the code points U+0001 to U+00FF of `text`, which is UTF-8, stand for; nothing when it has others. A
// NUL would end the text.
std::optional<std::string> BytesOf(const std::string& text) {
  std::string bytes;
  for (std::size_t position = 0; position < text.size(); ++position) {
    const auto first = static_cast<unsigned char>(text[position]);
    if (first == 0 || first > 0xC3) {
      return std::nullopt;
    }
    if (first < 0x80) {
      bytes += text[position];
    } else {
      const auto second = static_cast<unsigned char>(text[++position]);
      bytes += static_cast<char>((first & 0x03U) << 6U | (second & 0x3FU));
    }
  }
  return bytes;
}

void PutText(Block& block, firmware::Field place, const Value& text, const std::string& path) {
  const auto* const characters = text.As<std::string>();
  const auto bytes = characters != nullptr ? BytesOf(*characters) : std::nullopt;
  if (!bytes || bytes->size() > place.width) {
    Fail(path, "a text of at most " + std::to_string(place.width) + " characters, U+0001 to U+00FF", text);
  }
  std::transform(bytes->begin(), bytes->end(), block.begin() + static_cast<std::ptrdiff_t>(place.offset),
                 [](char byte) { return static_cast<unsigned char>(byte); });
}

// An empty date stands for every word that is no date; zero is one of them.
void PutDate(Block& block, firmware::Field place, const Value& date, const std::string& path) {
  constexpr std::string_view kMidnight = "T00:00:00+00:00";
  const std::string text = date.Is<std::string>() ? *date.As<std::string>() : "no text";
  if (text.empty()) {
    return;
  }
  const auto day = text.ends_with(kMidnight)
                       ? ParseDay(std::string_view(text).substr(0, text.size() - kMidnight.size()))
                       : std::nullopt;
  const auto packed = day ? firmware::PackedDate{day->year, day->month, day->day} : firmware::PackedDate{};
  if (!firmware::CanPack(packed)) {
    Fail(path, "\"YYYY-MM-DDT00:00:00+00:00\" with a year of 1980 to 2107, or an empty text", date);
  }
  firmware::PutWord(block.data(), place, firmware::Pack(packed));
}

void PutField(Block& block, const fields::Row& row, const Value& value, const std::string& path) {
  switch (fields::FormOf(row)) {
    case fields::Form::Word:
    case fields::Form::SignedWord:
      return PutNumber(block, row.place, value, path);
    case fields::Form::PackedDate:
      return PutDate(block, row.place, value, path);
    case fields::Form::Text:
      return PutText(block, row.place, value, path);
  }
}

}  // namespace

Block BlockFromJson(const Value& battery) {
  Block block{};
  for (const fields::Row* row : fields::kStored<NORV_BATTERY_FROM_INFORMATION_BLOCK>) {
    const std::string group = row->group->key;
    const std::string key(fields::BareKey(row->key));
    const std::string path = group + '.';
    const Value& member = Member(battery, group, key);
    if (member.IsNull() && !battery["notTold"].IsNull()) {
      continue;  // a system's driver did not tell it, and leaves zeros there
    }
    const auto index = fields::ItemIndex(*row);
    const Value& value = index ? ItemOf(member, *index, path + key) : member;
    PutField(block, *row, value, path + row->key);
  }
  return block;
}

}  // namespace norv::tool
