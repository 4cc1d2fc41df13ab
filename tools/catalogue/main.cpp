// Prints what is made of the catalogue of fields and is no part of the library:
//
//   norv-battery-catalogue python          the module of the Python package with its fields
//   norv-battery-catalogue schema FILE     the schema of machine files in FILE, with the keys of both blocks
//   norv-battery-catalogue document FILE   the page in FILE, with the table of all fields
#include <array>
#include <cctype>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fields/Stored.h"
#include "json/Parse.h"
#include "json/Write.h"
#include "machine/BlockFile.h"

namespace norv::catalogue {

namespace {

namespace fields = shared::battery::fields;

using fields::kCatalogue;
using fields::Row;
using json::Object;
using json::Value;

// "full_charge_capacity" of "full charge capacity". That a test is the battery's need not be said of a battery.
std::string PropertyName(const Row& row) {
  constexpr std::string_view kOfBattery = "battery test ";
  std::string name = row.name;
  name = name.starts_with(kOfBattery) ? name.substr(std::string_view("battery ").size()) : name;
  for (char& character : name) {
    character = character == ' ' ? '_' : character;
  }
  return name;
}

std::string ConstantName(const Row& row) {
  std::string name = PropertyName(row);
  for (char& character : name) {
    character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  }
  return name;
}

const char* KindName(norv_battery_kind kind) {
  constexpr std::array kNames{"number", "text", "flag", "real"};
  return kNames.at(static_cast<std::size_t>(kind) - 1);
}

const char* PythonClass(norv_battery_kind kind) {
  constexpr std::array kNames{"Number", "Text", "Flag", "Real"};
  return kNames.at(static_cast<std::size_t>(kind) - 1);
}

const char* SourceName(norv_battery_source source) {
  constexpr std::array kNames{"information block", "cell swell protection block", "operating system", "BIOS settings",
                              "battery test"};
  return kNames.at(static_cast<std::size_t>(source) - 1);
}

std::string PythonModule() {
  std::string text =
      "\"\"\"The fields of a battery. Made of the library's catalogue by `./dev generate`; not to be edited.\"\"\"\n\n"
      "import enum\n\n"
      "from ._property import Flag, Number, Real, Text\n\n\n"
      "class Field(enum.IntEnum):\n"
      "    \"\"\"Everything that a battery can answer.\"\"\"\n\n";
  for (const Row& row : kCatalogue) {
    text += "    " + ConstantName(row) + " = " + std::to_string(row.number) + "\n";
  }
  text += "\n\nclass Properties:\n    \"\"\"Each field as a property.\"\"\"\n\n";
  for (const Row& row : kCatalogue) {
    text += "    " + PropertyName(row) + " = " + PythonClass(row.kind) + "(Field." + ConstantName(row) + ")\n";
  }
  return text;
}

Value WordSchema(const Row& row) {
  if (!row.place.isSigned) {
    return Object{{"$ref", "#/$defs/word"}};
  }
  return Object{{"type", "integer"},
                {"minimum", -32768},
                {"maximum", 65535},
                {"description", "A 16-bit word, also as a negative number in two's complement"}};
}

Value FieldSchema(const Row& row) {
  switch (fields::FormOf(row)) {
    case fields::Form::PackedDate:
      return Object{{"$ref", "#/$defs/packedDate"}};
    case fields::Form::Text:
      return Object{{"type", "string"},
                    {"maxLength", row.place.width},
                    {"pattern", "^[\\u0000-\\u00ff]*$"},
                    {"description", "Each character is one byte"}};
    default:
      return WordSchema(row);
  }
}

Object BlockSchema(std::span<const Row* const> rows) {
  Object properties{{"hex", Object{{"$ref", "#/$defs/blockHex"}}}};
  simulator::ForEachMember(rows, [&](const std::string& key, std::span<const Row* const> members) {
    const bool isList = fields::ItemIndex(*members.front()).has_value();
    properties[key] =
        isList
            ? Value(Object{{"type", "array"}, {"maxItems", members.size()}, {"items", FieldSchema(*members.front())}})
            : FieldSchema(*members.front());
  });
  return {{"type", "object"}, {"additionalProperties", false}, {"properties", std::move(properties)}};
}

std::string Schema(const std::string& old) {
  Value schema = json::Parse(old);
  Object& definitions = *(*schema.As<Object>())["$defs"].As<Object>();
  definitions["battery"] = BlockSchema(fields::kStored<NORV_BATTERY_FROM_INFORMATION_BLOCK>);
  definitions["cellSwell"] = BlockSchema(fields::kStored<NORV_BATTERY_FROM_CELL_SWELL_BLOCK>);
  return json::Write(schema, 2) + "\n";
}

std::string Place(const Row& row) {
  if (row.place.width == 0) {
    return "";
  }
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "0x%02zX, %zu", row.place.offset, row.place.width);
  return text.data() + (row.bit != fields::kNoBit ? ", bit " + std::to_string(row.bit) : "");
}

std::string TableRow(const Row& row) {
  return "| " + std::to_string(row.number) + " | `" + row.key + "` | " + row.label + " | " + KindName(row.kind) +
         " | " + row.unit + " | " + SourceName(row.source) + " | " + Place(row) + " | `NORV_BATTERY_" +
         ConstantName(row) + "` | `" + PropertyName(row) + "` |\n";
}

std::string Tables() {
  std::string text;
  for (const fields::Group* group : fields::kGroups) {
    text += std::string("\n### ") + group->label + ": `" + group->key +
            "`\n\n| | key | for people | kind | unit | from | place | C | Python |\n"
            "|---|---|---|---|---|---|---|---|---|\n";
    for (const Row& row : kCatalogue) {
      text += row.group == group ? TableRow(row) : "";
    }
  }
  return text;
}

// Between the two marks; the rest of the page is people's.
std::string Document(const std::string& old) {
  constexpr std::string_view kBegin = "<!-- the table is made of the catalogue by ./dev generate -->\n";
  constexpr std::string_view kEnd = "<!-- end of the table -->\n";
  const std::size_t begin = old.find(kBegin);
  const std::size_t end = old.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) {
    throw std::runtime_error("expected a page with the lines \"" + std::string(kBegin.substr(0, kBegin.size() - 1)) +
                             "\" and \"" + std::string(kEnd.substr(0, kEnd.size() - 1)) + '"');
  }
  return old.substr(0, begin + kBegin.size()) + Tables() + "\n" + old.substr(end);
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  if (!file || text.empty()) {
    throw std::runtime_error(path + " cannot be read, or is empty");
  }
  return text;
}

int Run(int count, char** arguments) {
  const std::string form = count > 1 ? arguments[1] : "";
  if (form == "python" && count == 2) {
    std::cout << PythonModule();
  } else if (form == "schema" && count == 3) {
    std::cout << Schema(ReadFile(arguments[2]));
  } else if (form == "document" && count == 3) {
    std::cout << Document(ReadFile(arguments[2]));
  } else {
    std::cerr << "usage: norv-battery-catalogue python | schema FILE | document FILE\n";
    return 2;
  }
  return 0;
}

}  // namespace

}  // namespace norv::catalogue

int main(int count, char** arguments) {
  try {
    return norv::catalogue::Run(count, arguments);
  } catch (const std::exception& failure) {
    std::cerr << "norv-battery-catalogue: " << failure.what() << '\n';
    return 1;
  }
}
