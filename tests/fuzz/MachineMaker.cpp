#include "fuzz/MachineMaker.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "base/Utf8.h"
#include "json/Parse.h"

namespace norv::test {

namespace {

using json::Array;
using json::Object;
using json::Value;
using Texts = std::vector<std::string>;

const Texts kNamespaces{R"(\\.\root\wmi)", R"(\\.\root\cimv2)", R"(\\.\root\Norv\InstrumentedBios)", "ROOT/WMI"};
const Texts kClasses{"BatteryStatus", "Win32_BaseBoard", "Win32_BIOS", "Norv_BIOSSetting", "batterystatus"};
const Texts kProperties{"Name",       "CurrentValue",  "Value",        "Product",
                        "ChargeRate", "DischargeRate", "InstanceName", "name"};
const Texts kMessages{"2", "5", "0x80070005", "4294967295"};
const Texts kModule{R"(C:\Program Files\Norv\norv-battery-info.dll)", "", R"(\\server\x.dll)", "x.dll"};
const Texts kFolders{"", "/nowhere", "nowhere", R"(C:\nowhere)"};

const Texts kTimes{"2024-06-01T12:00:00Z", "1970-01-01T00:00:00Z", "9999-12-31T23:59:59Z"};
const Texts kInputs{"", "0005", "01ff"};
const Texts kVersions{"1.2.3.4", "0.0.0.0", "65535.65535.65535.65535", "3.1.0.8"};
const Texts kCodes{"0x80070005", "0xFFFFFFFF", "0x1", "0x80041010"};
const Texts kLines{"A machine", "\xC3\xA9\xC2\x9B", "C:\\x"};
const Texts kDates{"2021-05-06", "1980-00-00", "2107-15-31"};

// What the library asks of a machine, word for word: an answer to anything else is never given.
const Texts kArguments{
    "1,7,1 slot 0",
    "1,7,1 slot 1",
    "1,86,1 slot 0",
    "1,86,1 slot 1",
    R"(\\.\root\wmi)",
    R"(\\.\root\cimv2)",
    R"(\\.\root\Norv\InstrumentedBios)",
    "SELECT * FROM BatteryStatus",
    "SELECT * FROM Win32_BaseBoard",
    "SELECT * FROM Win32_BIOS",
    "SELECT * FROM Norv_BIOSSetting where Name = 'Adaptive Battery Extender'",
    "SELECT * FROM Norv_BIOSSetting where Name = 'Battery Care Function'",
    R"(C:\Program Files\Norv\BatteryTest.exe)",
    "2021-05-06 00:00:00",
    "ChargeRate",
    "CurrentValue",
    "0",
    "1",
    "2",
    "5",
};

// The texts for a key or a definition, or for the names of an object's additional members of this definition.
struct Pool {
  std::string_view key;
  const Texts& texts;
};

const Pool kPools[] = {
    {"#/$defs/namespace", kNamespaces},
    {"#/$defs/class", kClasses},
    {"#/$defs/property", kProperties},
    {"#/$defs/version", kVersions},
    {"#/$defs/hexCode", kCodes},
    {"#/$defs/line", kLines},
    {"description", kLines},
    {"source", kLines},
    {"now", kTimes},
    {"input", kInputs},
    {"manufactureDate", kDates},
    {"systemMessages", kMessages},
    {"namespace", kNamespaces},
    {"argument", kArguments},
    {"modulePath", kModule},
    {"programData", kFolders},
};

// Texts that mean something to the library in some place, or that some key must have.
const Texts kWords{"Enable",
                   "Disable",
                   "Activated",
                   "9XQ4",
                   "F.16",
                   "F.17",
                   "Adaptive Battery Extender",
                   "1.2.3.4",
                   "0.0.0.0",
                   "2021-05-06",
                   "1980-00-00",
                   "2107-15-31",
                   "6ABC",
                   "Battery Care Function",
                   "0x80070005",
                   "0xFFFFFFFF",
                   "2024-06-01T12:00:00Z",
                   "1970-01-01T00:00:00Z",
                   "<r i=\"6\">4</r>",
                   "Adaptive Battery Extender Status"};

// Null for what may have any text.
const Texts* FindPool(const std::string& key) {
  const auto* const pool =
      std::find_if(std::begin(kPools), std::end(kPools), [&key](const Pool& entry) { return entry.key == key; });
  return pool != std::end(kPools) ? &pool->texts : nullptr;
}

const Value& Schema() {
  static const Value schema = [] {
    std::ifstream file(NORV_BATTERY_SCHEMA, std::ios::binary);
    return json::Parse(std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
  }();
  return schema;
}

std::string TextOf(const Value& value) {
  const auto* const text = value.As<std::string>();
  return text != nullptr ? *text : std::string();
}

Array ItemsOf(const Value& value) {
  const auto* const items = value.As<Array>();
  return items != nullptr ? *items : Array();
}

bool Holds(const Array& items, const std::string& text) {
  return std::find(items.begin(), items.end(), Value(text)) != items.end();
}

class MachineMaker {
 public:
  MachineMaker(const std::uint8_t* data, std::size_t size) : choices_(data, size) {}

  // `key` is that of the member that the value is for.
  Value Make(const Value& schema, const std::string& key) {
    for (const char* alternatives : {"enum", "oneOf"}) {
      const Array items = ItemsOf(schema[alternatives]);
      // An object's alternatives say which of its keys it needs.
      if (!items.empty() && TextOf(schema["type"]) != "object") {
        const Value& item = PickOf(items);
        return alternatives == std::string_view("enum") ? item : Make(item, key);
      }
    }
    if (schema["const"] != Value()) {
      return schema["const"];
    }
    const std::string reference = TextOf(schema["$ref"]);
    if (!reference.empty()) {
      const std::string name = reference.substr(reference.rfind('/') + 1);
      return name == "blockHex" ? Hex(128)
                                : Make(Schema()["$defs"][name], FindPool(reference) != nullptr ? reference : key);
    }
    const Array types = ItemsOf(schema["type"]);
    return MakeOfType(types.empty() ? TextOf(schema["type"]) : TextOf(PickOf(types)), schema, key);
  }

 private:
  Value MakeOfType(const std::string& type, const Value& schema, const std::string& key) {
    if (type == "object") {
      return MakeObject(schema, key);
    }
    if (type == "array") {
      return MakeArray(schema, key);
    }
    if (type == "string") {
      return MakeText(schema, key);
    }
    if (type == "integer") {
      return MakeNumber(schema, key);
    }
    if (type == "number") {
      return choices_.ConsumeBool() ? Value(choices_.ConsumeFloatingPoint<double>())
                                    : Value(choices_.ConsumeIntegral<std::int64_t>());
    }
    return type == "boolean" ? Value(choices_.ConsumeBool()) : Value();
  }

  template <typename Items>
  const typename Items::value_type& PickOf(const Items& items) {
    return items[choices_.ConsumeIntegralInRange<std::size_t>(0, items.size() - 1)];
  }

  std::string Hex(std::size_t bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    while (text.size() < 2 * bytes) {
      const auto byte = choices_.ConsumeIntegral<std::uint8_t>();
      text += kDigits[byte >> 4U];
      text += kDigits[byte & 0x0FU];
    }
    return text;
  }

  Value MakeText(const Value& schema, const std::string& key) {
    if (const Texts* const texts = FindPool(key)) {
      return PickOf(*texts);
    }
    if (choices_.ConsumeBool()) {
      return PickOf(kWords);
    }
    constexpr double kLongest = 40;
    const auto most = static_cast<std::size_t>(std::min(schema["maxLength"].Number().value_or(kLongest), kLongest));
    return base::BytesToUtf8(choices_.ConsumeRandomLengthString(most));
  }

  Value MakeNumber(const Value& schema, const std::string& key) {
    if (key == "runsMilliseconds") {
      return 0;
    }
    const auto least = static_cast<std::int64_t>(schema["minimum"].Number().value_or(0));
    const auto most = static_cast<std::int64_t>(schema["maximum"].Number().value_or(0));
    constexpr std::int64_t kSmall = 8;  // the number of a call, of a slot, a verdict
    return choices_.ConsumeIntegralInRange(least, choices_.ConsumeBool() ? most : std::min(most, least + kSmall));
  }

  Value MakeArray(const Value& schema, const std::string& key) {
    constexpr double kMost = 4;
    const auto most = static_cast<std::size_t>(schema["maxItems"].Number().value_or(kMost));
    Array items;
    for (auto left = choices_.ConsumeIntegralInRange<std::size_t>(0, most); left > 0; --left) {
      items.push_back(Make(schema["items"], key));
    }
    return items;
  }

  // The keys that one of the alternatives asks for are there, and those of the others are not.
  Value MakeObject(const Value& schema, const std::string& key) {
    Array required = ItemsOf(schema["required"]);
    Array left = ItemsOf(schema["not"]["required"]);
    for (const char* kind : {"oneOf", "anyOf"}) {
      const Array alternatives = ItemsOf(schema[kind]);
      const auto chosen =
          alternatives.empty() ? 0 : choices_.ConsumeIntegralInRange<std::size_t>(0, alternatives.size() - 1);
      for (std::size_t index = 0; index < alternatives.size(); ++index) {
        Array& into = index == chosen ? required : left;
        for (const Value& name : ItemsOf(alternatives[index]["required"])) {
          into.push_back(name);
        }
      }
    }
    Object object;
    const auto* const properties = schema["properties"].As<Object>();
    for (const auto& [name, property] : properties != nullptr ? *properties : Object()) {
      if (Holds(required, name) || (!Holds(left, name) && choices_.ConsumeBool())) {
        object[name] = Make(property, name);
      }
    }
    AddNamed(schema["additionalProperties"], key, object);
    return object;
  }

  // Members whose names are not the schema's.
  void AddNamed(const Value& schema, const std::string& key, Object& object) {
    if (!schema.Is<Object>()) {
      return;
    }
    const std::string reference = TextOf(schema["$ref"]);
    constexpr std::size_t kMost = 4;
    for (auto left = choices_.ConsumeIntegralInRange<std::size_t>(0, kMost); left > 0; --left) {
      const std::string name = TextOf(MakeText({}, reference.empty() ? key : reference));
      object[name] = Make(schema, "");
    }
  }

  FuzzedDataProvider choices_;
};

}  // namespace

json::Value MakeMachine(const std::uint8_t* data, std::size_t size) {
  return MachineMaker(data, size).Make(Schema(), "");
}

}  // namespace norv::test
