#include "JsonNode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "Text.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::simulator {

namespace {

constexpr std::size_t kShownLength = 60;

bool IsPlainKey(const std::string& key) {
  const auto isPlain = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$';
  };
  return !key.empty() && std::all_of(key.begin(), key.end(), isPlain);
}

std::string Quoted(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string MemberPath(const std::string& path, const std::string& key) {
  if (IsPlainKey(key)) {
    return path.empty() ? key : path + "." + key;
  }
  return path + "[" + Quoted(key) + "]";
}

JsonNode::JsonNode(const nlohmann::json& value, const std::string& file) : value_(&value), file_(&file) {
}

JsonNode::JsonNode(const JsonNode& parent, const std::string& name, const nlohmann::json& value)
    : value_(&value), file_(parent.file_), path_(MemberPath(parent.path_, name)), name_(name) {
}

JsonNode::JsonNode(const JsonNode& parent, std::size_t index, const nlohmann::json& value)
    : value_(&value), file_(parent.file_), path_(parent.path_ + "[" + std::to_string(index) + "]") {
}

bool JsonNode::IsNull() const {
  return value_->is_null();
}
bool JsonNode::IsText() const {
  return value_->is_string();
}
bool JsonNode::IsObject() const {
  return value_->is_object();
}

const std::string& JsonNode::Text() const {
  if (!IsText()) {
    FailExpecting("a text");
  }
  return value_->get_ref<const std::string&>();
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
  if (!value_->is_number()) {
    FailExpecting(expected);
  }
  // A number beyond 2^53 is beyond every range here, so that reading it as a real loses nothing that counts.
  const double number = value_->get<double>();
  const bool isWhole = std::trunc(number) == number;
  if (!isWhole || number < static_cast<double>(least) || number > static_cast<double>(most)) {
    FailExpecting(expected);
  }
  return static_cast<std::int64_t>(number);
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
  const std::string expected = "a code other than 0, from 1 to 4294967295 or a text such as \"0x80070005\"";
  if (IsText()) {
    const std::optional<std::uint32_t> code = HexCode();
    if (!code.has_value()) {
      FailExpecting(expected);
    }
    return *code;
  }
  if (!value_->is_number() || value_->get<double>() == 0) {
    FailExpecting(expected);
  }
  return static_cast<std::uint32_t>(WholeNumber(1, std::numeric_limits<std::uint32_t>::max()));
}

std::int32_t JsonNode::SignedCode() const {
  const std::string expected = "a code other than 0, from -2147483648 to 2147483647 or a text such as \"0x80070005\"";
  if (IsText()) {
    const std::optional<std::uint32_t> code = HexCode();
    if (!code.has_value()) {
      FailExpecting(expected);
    }
    return static_cast<std::int32_t>(*code);
  }
  if (!value_->is_number() || value_->get<double>() == 0) {
    FailExpecting(expected);
  }
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(WholeNumber(Limits::min(), Limits::max()));
}

void JsonNode::ExpectTrue() const {
  if (!value_->is_boolean() || !value_->get<bool>()) {
    FailExpecting("true");
  }
}

std::vector<JsonNode> JsonNode::Items(std::size_t most) const {
  if (!value_->is_array() || value_->size() > most) {
    FailExpecting(most < std::numeric_limits<std::size_t>::max()
                      ? "an array of at most " + std::to_string(most) + " entries"
                      : "an array");
  }
  std::vector<JsonNode> items;
  for (const nlohmann::json& item : *value_) {
    items.push_back(JsonNode(*this, items.size(), item));
  }
  return items;
}

std::vector<JsonNode> JsonNode::Members() const {
  if (!IsObject()) {
    FailExpecting("an object");
  }
  std::vector<JsonNode> members;
  for (const auto& member : value_->items()) {
    members.push_back(JsonNode(*this, member.key(), member.value()));
  }
  return members;
}

std::optional<JsonNode> JsonNode::Member(const std::string& key) const {
  const auto found = value_->find(key);
  return found != value_->end() ? std::optional(JsonNode(*this, key, *found)) : std::nullopt;
}

JsonNode JsonNode::RequiredMember(const std::string& key, const std::string& expected) const {
  const std::optional<JsonNode> member = Member(key);
  if (!member.has_value()) {
    throw MachineFileError(*file_ + ": " + MemberPath(path_, key) + ": expected " + expected + ", found nothing");
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

std::string JsonNode::Shown() const {
  if (value_->is_object()) {
    return "an object";
  }
  if (value_->is_array()) {
    return "an array of " + std::to_string(value_->size()) + (value_->size() == 1 ? " entry" : " entries");
  }
  const std::string text = value_->dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
  return text.size() <= kShownLength ? text : text.substr(0, kShownLength) + "...";
}

void JsonNode::FailExpecting(const std::string& expected) const {
  Fail("expected " + expected + ", got " + Shown());
}

void JsonNode::Fail(const std::string& message) const {
  throw MachineFileError(*file_ + ": " + (path_.empty() ? "" : path_ + ": ") + message);
}

}  // namespace norv::simulator
