#include "machine/JsonNode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "json/Describe.h"
#include "machine/Text.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::simulator {

JsonNode::JsonNode(const json::Value& value, const std::string& file) : value_(&value), file_(&file) {
}

JsonNode::JsonNode(const JsonNode& parent, const std::string& name, const json::Value& value)
    : value_(&value), file_(parent.file_), path_(json::MemberPath(parent.path_, name)), name_(name) {
}

JsonNode::JsonNode(const JsonNode& parent, std::size_t index, const json::Value& value)
    : value_(&value), file_(parent.file_), path_(json::ItemPath(parent.path_, index)) {
}

bool JsonNode::IsNull() const {
  return value_->IsNull();
}
bool JsonNode::IsText() const {
  return value_->Is<std::string>();
}
bool JsonNode::IsObject() const {
  return value_->Is<json::Object>();
}

const std::string& JsonNode::Text() const {
  if (!IsText()) {
    FailExpecting("a text");
  }
  return *value_->As<std::string>();
}

std::string JsonNode::ByteText(std::size_t maxLength) const {
  const std::string expected = "a text of at most " + std::to_string(maxLength) + " characters from U+0000 to U+00FF";
  if (!IsText()) {
    FailExpecting(expected);
  }
  std::optional<std::string> bytes = ToBytes(Text());
  if (!bytes.has_value() || bytes->size() > maxLength) {
    FailExpecting(expected);
  }
  return *std::move(bytes);
}

std::int64_t JsonNode::WholeNumber(std::int64_t least, std::int64_t most) const {
  const std::string expected = "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
  // A number beyond 2^53 is beyond every range here, so that reading it as a real loses nothing that counts.
  const std::optional<double> number = value_->Number();
  const bool isWhole = number && std::trunc(*number) == *number;
  if (!isWhole || *number < static_cast<double>(least) || *number > static_cast<double>(most)) {
    FailExpecting(expected);
  }
  return static_cast<std::int64_t>(*number);
}

std::optional<std::uint32_t> JsonNode::HexCode() const {
  const std::string& text = Text();
  std::uint32_t code = 0;
  const bool isHex = text.size() > 2 && text.size() <= 10 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  if (!isHex) {
    return std::nullopt;
  }
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data() + 2, end, code, 16);
  return result.ec == std::errc() && result.ptr == end && code != 0 ? std::optional(code) : std::nullopt;
}

std::uint32_t JsonNode::Code() const {
  return static_cast<std::uint32_t>(
      CodeWithin("a code other than 0, from 1 to 4294967295 or a text such as \"0x80070005\"", 1,
                 std::numeric_limits<std::uint32_t>::max()));
}

std::int32_t JsonNode::SignedCode() const {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      CodeWithin("a code other than 0, from -2147483648 to 2147483647 or a text such as \"0x80070005\"", Limits::min(),
                 Limits::max()));
}

std::int64_t JsonNode::CodeWithin(const char* expected, std::int64_t least, std::int64_t most) const {
  const std::optional<std::uint32_t> hex = IsText() ? HexCode() : std::nullopt;
  if (!hex && (IsText() || value_->Number().value_or(0) == 0)) {
    FailExpecting(expected);
  }
  return hex ? *hex : WholeNumber(least, most);
}

void JsonNode::ExpectTrue() const {
  if (*value_ != true) {
    FailExpecting("true");
  }
}

std::vector<JsonNode> JsonNode::Items(std::size_t most) const {
  const auto* const array = value_->As<json::Array>();
  if (array == nullptr || array->size() > most) {
    FailExpecting(most < std::numeric_limits<std::size_t>::max()
                      ? "an array of at most " + std::to_string(most) + " entries"
                      : "an array");
  }
  std::vector<JsonNode> items;
  for (const json::Value& item : *array) {
    items.push_back(JsonNode(*this, items.size(), item));
  }
  return items;
}

std::vector<JsonNode> JsonNode::Members() const {
  const auto* const object = value_->As<json::Object>();
  if (object == nullptr) {
    FailExpecting("an object");
  }
  std::vector<JsonNode> members;
  for (const auto& [key, value] : *object) {
    members.push_back(JsonNode(*this, key, value));
  }
  return members;
}

std::optional<JsonNode> JsonNode::Member(const std::string& key) const {
  const auto* const object = value_->As<json::Object>();
  const json::Value* const found = object != nullptr ? object->Find(key) : nullptr;
  return found != nullptr ? std::optional(JsonNode(*this, key, *found)) : std::nullopt;
}

std::optional<JsonNode> JsonNode::OneMember(const std::vector<std::string>& keys, const std::string& purpose) const {
  std::optional<JsonNode> found;
  for (const std::string& key : keys) {
    const std::optional<JsonNode> member = Member(key);
    if (member && found) {
      member->Fail("expected only one of the keys that " + purpose + ", found \"" + found->Name() + "\" too");
    }
    found = member ? member : found;
  }
  return found;
}

JsonNode JsonNode::RequiredMember(const std::string& key, const std::string& expected) const {
  const std::optional<JsonNode> member = Member(key);
  if (!member.has_value()) {
    throw MachineFileError(*file_ + ": " + json::MemberPath(path_, key) + ": expected " + expected + ", found nothing");
  }
  return *member;
}

void JsonNode::ExpectKeys(const std::vector<std::string>& keys) const {
  for (const JsonNode& member : Members()) {
    if (std::find(keys.begin(), keys.end(), member.name_) == keys.end()) {
      std::string known;
      for (const std::string& key : keys) {
        known += (known.empty() ? "" : ", ") + key;
      }
      member.Fail("unknown key, expected one of: " + known);
    }
  }
}

void JsonNode::FailExpecting(const std::string& expected) const {
  Fail("expected " + expected + ", got " + json::Describe(*value_));
}

void JsonNode::Fail(const std::string& message) const {
  throw MachineFileError(*file_ + ": " + (path_.empty() ? "" : path_ + ": ") + message);
}

}  // namespace norv::simulator
