#include "encode/BlockFromJson.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Day.h"
#include "json/Describe.h"

namespace norv::tool {

namespace {

using json::Value;

// A 16-bit little-endian word of a block.
struct WordField {
  const char* group = "";
  const char* key = "";
  std::size_t offset = 0;
  std::int64_t lowest = 0;
};

constexpr std::array<WordField, 10> kWords{{
    {"capacity", "designCapacity", 0x00},
    {"capacity", "fullChargeCapacity", 0x02},
    {"capacity", "remainingCapacity", 0x04},
    {"capacity", "maxError", 0x06},
    {"capacity", "cycleCount", 0x08},
    {"capacity", "temperature", 0x0A},
    {"capacity", "voltage", 0x0C},
    {"capacity", "current", 0x0E, -0x8000},
    {"capacity", "designVoltage", 0x10},
    {"status", "word", 0x12},
}};

constexpr std::size_t kCellVoltages = 0x14;
constexpr std::size_t kCellVoltageCount = 4;

struct TextField {
  const char* key;  // of the identity
  std::size_t offset;
  std::size_t width;
};

constexpr std::array<TextField, 4> kTexts{{
    {"serialNumber", 0x1C, 16},
    {"manufacturer", 0x2C, 18},
    {"ctNumber", 0x3E, 16},
    {"deviceName", 0x4F, 7},
}};

constexpr std::size_t kManufactureDate = 0x5C;

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

void PutWord(Block& block, std::size_t offset, std::uint64_t word) {
  block[offset] = static_cast<unsigned char>(word & 0xFFU);
  block[offset + 1] = static_cast<unsigned char>(word >> 8U);
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

void PutNumber(Block& block, std::size_t offset, const Value& number, const std::string& path,
               std::int64_t lowest = 0) {
  const auto word = WordOf(number, lowest);
  if (!word) {
    Fail(path, "a whole number of " + std::to_string(lowest) + " to 65535", number);
  }
  PutWord(block, offset, *word);
}

void PutCells(Block& block, const Value& voltages) {
  const auto* const cells = voltages.As<json::Array>();
  if (cells == nullptr || cells->size() != kCellVoltageCount) {
    Fail("cells.voltages", "an array of four numbers", voltages);
  }
  for (std::size_t cell = 0; cell < kCellVoltageCount; ++cell) {
    PutNumber(block, kCellVoltages + 2 * cell, (*cells)[cell], json::ItemPath("cells.voltages", cell));
  }
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

void PutText(Block& block, const TextField& field, const Value& text) {
  const auto* const characters = text.As<std::string>();
  const auto bytes = characters != nullptr ? BytesOf(*characters) : std::nullopt;
  if (!bytes || bytes->size() > field.width) {
    Fail(std::string("identity.") + field.key,
         "a text of at most " + std::to_string(field.width) + " characters, U+0001 to U+00FF", text);
  }
  std::size_t position = field.offset;
  for (const char byte : *bytes) {
    block[position++] = static_cast<unsigned char>(byte);
  }
}

// An empty date stands for every word that is no date; zero is one of them.
void PutDate(Block& block, const Value& date) {
  constexpr int kFirstYear = 1980;
  constexpr int kLastYear = kFirstYear + 127;
  constexpr std::string_view kMidnight = "T00:00:00+00:00";
  const std::string text = date.Is<std::string>() ? *date.As<std::string>() : "no text";
  if (text.empty()) {
    return;
  }
  const auto packed = text.ends_with(kMidnight)
                          ? ParseDay(std::string_view(text).substr(0, text.size() - kMidnight.size()))
                          : std::nullopt;
  if (!packed || packed->year < kFirstYear || packed->year > kLastYear) {
    Fail("dates.manufacturingDate", "\"YYYY-MM-DDT00:00:00+00:00\" with a year of 1980 to 2107, or an empty text",
         date);
  }
  PutWord(block, kManufactureDate,
          static_cast<std::uint64_t>((packed->year - kFirstYear) << 9 | packed->month << 5 | packed->day));
}

}  // namespace

Block BlockFromJson(const Value& battery) {
  Block block{};
  for (const WordField& field : kWords) {
    PutNumber(block, field.offset, Member(battery, field.group, field.key), std::string(field.group) + "." + field.key,
              field.lowest);
  }
  PutCells(block, Member(battery, "cells", "voltages"));
  for (const TextField& field : kTexts) {
    PutText(block, field, Member(battery, "identity", field.key));
  }
  PutDate(block, Member(battery, "dates", "manufacturingDate"));
  return block;
}

}  // namespace norv::tool
