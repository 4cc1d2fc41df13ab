#include "machine/WmiFile.h"

#include <limits>
#include <type_traits>

#include "machine/AnswerWords.h"
#include "machine/Text.h"

namespace norv::simulator {

namespace {

TextRead ReadTextRead(const JsonNode& node) {
  TextRead read;
  if (!node.IsObject()) {
    read.value = node.ByteText();
  } else if (node.Member("throws")) {
    node.ExpectKeys(kThrownKeys);
    read.thrown = ReadThrown(node);
  } else {
    node.ExpectKeys({"fail"});
    read.code = node.RequiredMember("fail", "the code that reading it gives").SignedCode();
  }
  return read;
}

NumberRead ReadNumberRead(const JsonNode& node) {
  NumberRead read;
  if (node.IsObject()) {
    node.ExpectKeys(kThrownKeys);
    read.thrown = ReadThrown(node);
  } else if (!node.IsNull()) {
    read.value = static_cast<std::uint32_t>(node.WholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
  }
  return read;
}

PropertyValue ReadPropertyObject(const JsonNode& node) {
  const auto text = node.Member("text");
  const auto number = node.Member("number");
  if (!text && !number) {
    node.ExpectKeys({"fail", "text", "number"});
    return FailedRead{node.RequiredMember("fail", "the code that reading it gives").SignedCode()};
  }
  node.ExpectKeys({"text", "number"});
  PropertyReads reads;
  reads.text = text ? std::optional(ReadTextRead(*text)) : std::nullopt;
  reads.number = number ? std::optional(ReadNumberRead(*number)) : std::nullopt;
  return reads;
}

PropertyValue ReadProperty(const JsonNode& property) {
  return std::visit(
      [&property]<typename Type>(const Type& value) -> PropertyValue {
        if constexpr (std::is_same_v<Type, json::Array>) {
          property.FailExpecting("a text, a number, true, false, null or {\"fail\": code}");
        } else if constexpr (std::is_same_v<Type, json::Object>) {
          return ReadPropertyObject(property);
        } else {
          return value;
        }
      },
      property.Value().Any());
}

Row ReadRow(const JsonNode& node) {
  Row row;
  for (const JsonNode& property : node.Members()) {
    if (!row.emplace(Folded(property.Name()), ReadProperty(property)).second) {
      property.Fail("this property stands twice (letter case does not count), expected it once");
    }
  }
  return row;
}

ClassDescription ReadClass(const JsonNode& node) {
  ClassDescription description;
  if (node.IsObject()) {
    node.ExpectKeys({"queryFails"});
    description.queryCode = node.RequiredMember("queryFails", "the code that its queries give").SignedCode();
    return description;
  }
  description.rows = ReadRows(node);
  return description;
}

NamespaceDescription ReadNamespace(const JsonNode& node) {
  NamespaceDescription description;
  if (node.IsObject() && node.Member("connectFails")) {
    node.ExpectKeys({"connectFails"});
    description.connectCode = node.Member("connectFails")->SignedCode();
    return description;
  }
  for (const JsonNode& wmiClass : node.Members()) {
    if (!description.classes.emplace(Folded(wmiClass.Name()), ReadClass(wmiClass)).second) {
      wmiClass.Fail("this class stands twice (letter case does not count), expected it once");
    }
  }
  return description;
}

}  // namespace

std::vector<Row> ReadRows(const JsonNode& node) {
  std::vector<Row> rows;
  for (const JsonNode& row : node.Items()) {
    rows.push_back(ReadRow(row));
  }
  return rows;
}

std::map<std::string, NamespaceDescription> ReadWmi(const JsonNode& wmi) {
  std::map<std::string, NamespaceDescription> namespaces;
  for (const JsonNode& node : wmi.Members()) {
    if (!namespaces.emplace(NamespaceKey(node.Name()), ReadNamespace(node)).second) {
      node.Fail("this namespace stands twice (letter case and a leading \\\\.\\ do not count), expected it once");
    }
  }
  return namespaces;
}

}  // namespace norv::simulator
