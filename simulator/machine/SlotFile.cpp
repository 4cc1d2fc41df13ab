#include "machine/SlotFile.h"

#include <array>
#include <limits>
#include <string>

#include "base/Utf8.h"
#include "machine/HexText.h"

namespace norv::simulator {

namespace {

using platform::SlotDescription;

struct TextWord {
  const char* key;
  std::string SlotDescription::*text;
};

constexpr std::array kTexts{
    TextWord{"modelName", &SlotDescription::modelName},
    TextWord{"serialNumber", &SlotDescription::serialNumber},
    TextWord{"manufacturer", &SlotDescription::manufacturer},
    TextWord{"technology", &SlotDescription::technology},
};

struct NumberWord {
  const char* key;
  std::optional<std::int64_t> SlotDescription::*number;
};

constexpr std::array kNumbers{
    NumberWord{"designEnergy", &SlotDescription::designEnergy},
    NumberWord{"fullChargeEnergy", &SlotDescription::fullChargeEnergy},
    NumberWord{"remainingEnergy", &SlotDescription::remainingEnergy},
    NumberWord{"power", &SlotDescription::power},
};

constexpr std::int64_t kLargestNumber = std::int64_t{1} << 53;  // beyond it a number of JSON is not exact everywhere

constexpr std::size_t kBitsOfByte = 8;
using ToldBytes = std::array<unsigned char, SlotDescription::Told().size() / kBitsOfByte>;

// Of the bytes that hold the bits, the first bit of each is its highest.
constexpr unsigned char MaskOf(std::size_t place) {
  return static_cast<unsigned char>(0x80U >> place % kBitsOfByte);
}

SlotDescription::Told ReadTold(const JsonNode& node) {
  const auto bytes = FromHexText(node.Text());
  if (!bytes.has_value() || bytes->size() != ToldBytes().size()) {
    node.FailExpecting("a bit for each of the 128 bytes of the block as 32 hex digits");
  }
  SlotDescription::Told told;
  for (std::size_t place = 0; place < told.size(); ++place) {
    told[place] = ((*bytes)[place / kBitsOfByte] & MaskOf(place)) != 0;
  }
  return told;
}

std::string ToldText(const SlotDescription::Told& told) {
  ToldBytes bytes{};
  for (std::size_t place = 0; place < told.size(); ++place) {
    bytes.at(place / kBitsOfByte) |= told[place] ? MaskOf(place) : static_cast<unsigned char>(0);
  }
  return HexText(bytes);
}

std::vector<std::string> DriverKeys() {
  std::vector<std::string> keys{"told"};
  for (const TextWord& word : kTexts) {
    keys.emplace_back(word.key);
  }
  for (const NumberWord& word : kNumbers) {
    keys.emplace_back(word.key);
  }
  return keys;
}

void ReadWords(const JsonNode& node, SlotDescription& description) {
  if (const auto told = node.Member("told")) {
    description.told = ReadTold(*told);
  }
  for (const TextWord& word : kTexts) {
    const auto text = node.Member(word.key);
    description.*word.text = text ? text->Text() : "";
  }
  for (const NumberWord& word : kNumbers) {
    if (const auto number = node.Member(word.key)) {
      description.*word.number = number->WholeNumber(-kLargestNumber, kLargestNumber);
    }
  }
}

}  // namespace

SlotDescription ReadDriver(const JsonNode& node) {
  node.ExpectKeys(DriverKeys());
  SlotDescription description;
  ReadWords(node, description);
  return description;
}

json::Object DriverJson(const SlotDescription& description) {
  json::Object json;
  if (!description.told.all()) {
    json["told"] = ToldText(description.told);
  }
  for (const TextWord& word : kTexts) {
    if (!(description.*word.text).empty()) {
      json[word.key] = base::AsUtf8(description.*word.text);
    }
  }
  for (const NumberWord& word : kNumbers) {
    const std::int64_t number = (description.*word.number).value_or(0);
    if ((description.*word.number).has_value() && number >= -kLargestNumber && number <= kLargestNumber) {
      json[word.key] = number;
    }
  }
  return json;
}

SlotDescription ReadSlotDescription(const JsonNode& node) {
  std::vector<std::string> keys = DriverKeys();
  keys.insert(keys.end(), {"source", "stateOfCharge"});
  node.ExpectKeys(keys);
  SlotDescription description;
  ReadWords(node, description);
  if (const auto source = node.Member("source")) {
    description.source = source->Text();
  }
  if (const auto percent = node.Member("stateOfCharge")) {
    description.stateOfCharge =
        static_cast<std::uint32_t>(percent->WholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
  }
  return description;
}

json::Object SlotDescriptionJson(const SlotDescription& description) {
  json::Object json = DriverJson(description);
  if (!description.source.empty()) {
    json["source"] = base::AsUtf8(description.source);
  }
  if (description.stateOfCharge.has_value()) {
    json["stateOfCharge"] = *description.stateOfCharge;
  }
  return json;
}

}  // namespace norv::simulator
