// A place in a machine file: reads the value there as what is expected, or says what it is instead.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/Value.h"

namespace norv::simulator {

class JsonNode {
 public:
  static constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

  // Both must outlive the node and those made from it.
  JsonNode(const json::Value& value, const std::string& file);

  bool IsNull() const;
  bool IsText() const;
  bool IsObject() const;
  const json::Value& Value() const { return *value_; }

  // Each throws MachineFileError when the value is not of its kind. Whole numbers may be written as 3, 3.0 or 3e0.
  const std::string& Text() const;
  std::string ByteText(std::size_t maxLength = kAnyNumber) const;  // one byte for each code point up to U+00FF
  std::int64_t WholeNumber(std::int64_t least, std::int64_t most) const;
  std::uint32_t Code() const;       // not 0; a number, or "0x80070005"
  std::int32_t SignedCode() const;  // the same, a number as a signed one
  void ExpectTrue() const;
  std::vector<JsonNode> Items(std::size_t most = kAnyNumber) const;
  std::vector<JsonNode> Members() const;
  std::optional<JsonNode> Member(const std::string& key) const;
  // The one of `keys` that is there, if any. Two are refused: only one can do what `purpose` says ("say how it fails").
  std::optional<JsonNode> OneMember(const std::vector<std::string>& keys, const std::string& purpose) const;
  JsonNode RequiredMember(const std::string& key, const std::string& expected) const;

  // Throws MachineFileError when the value is no object or has a key that is not in `keys`.
  void ExpectKeys(const std::vector<std::string>& keys) const;

  // The member's own name, for a node that Members() gave.
  const std::string& Name() const { return name_; }

  // Throws MachineFileError: "expected ..., got ..." at this place.
  [[noreturn]] void FailExpecting(const std::string& expected) const;
  // Throws MachineFileError with `message` at this place.
  [[noreturn]] void Fail(const std::string& message) const;

 private:
  JsonNode(const JsonNode& parent, const std::string& name, const json::Value& value);
  JsonNode(const JsonNode& parent, std::size_t index, const json::Value& value);

  std::optional<std::uint32_t> HexCode() const;
  std::int64_t CodeWithin(const char* expected, std::int64_t least, std::int64_t most) const;

  const json::Value* value_;
  const std::string* file_;
  std::string path_;
  std::string name_;
};

}  // namespace norv::simulator
