#include "watch/ShowReading.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "fields/Catalogue.h"
#include "json/Write.h"
#include "output/EscapeText.h"
#include "report/EmptySlot.h"
#include "report/TextBattery.h"

namespace norv::tool {

namespace {

namespace fields = shared::battery::fields;

using json::Array;
using json::Object;
using json::Value;

constexpr std::size_t kNameWidth = 27;
constexpr std::size_t kValueWidth = 25;

std::string Joined(const std::string& list, const std::string& item) {
  return list.empty() ? item : list + " " + item;
}

// A value of the JSON report in one line of ASCII.
std::string ValueText(const Value& value) {
  if (const auto* const content = value.As<std::string>()) {
    return content->empty() ? "(empty)" : EscapeText(*content);
  }
  std::string text;
  if (const auto* const items = value.As<Array>()) {
    for (const Value& item : *items) {
      text = Joined(text, ValueText(item));
    }
    return text;
  }
  // The names of those that are set, of flags; of an error, its words.
  if (const auto* const object = value.As<Object>()) {
    for (const auto& [key, item] : *object) {
      text = item == true ? Joined(text, key) : text;
    }
    const auto* const message = value["message"].As<std::string>();
    return message != nullptr ? EscapeText(WithoutLineBreak(*message)) : text;
  }
  return value.IsNull() ? "none" : json::Write(value);
}

// The row of the catalogue that a key of the JSON report is of; null for what is beyond it.
const fields::Row* FindRow(std::string_view key) {
  const auto* const row = std::find_if(fields::kCatalogue.begin(), fields::kCatalogue.end(),
                                       [key](const fields::Row& one) { return one.key == key; });
  return row != fields::kCatalogue.end() ? row : nullptr;
}

std::optional<Divisor> DivisorOf(std::string_view key) {
  const fields::Row* const row = FindRow(key);
  return row != nullptr ? FindDivisor(row->number) : std::nullopt;
}

std::string MemberText(std::string_view key, const Value& value) {
  return value.IsNull() && DivisorOf(key) ? "not computable" : ValueText(value);
}

// In brackets why what has changed cannot be computed any more; empty for any other change.
std::string ReasonText(std::string_view key, const Value& after, const Value& battery) {
  const auto divisor = DivisorOf(key);
  if (!divisor || !after.IsNull()) {
    return "";
  }
  const fields::Row& row = fields::RowOf(divisor->field);
  return " (" + WhyNotComputable(battery[row.group->key][row.key] == 0, divisor->name) + ")";
}

// That a slot is empty is no failure, and is told as "removed" or "no battery".
const Value& WithoutEmptySlot(const Value& error) {
  static const Value none = nullptr;
  const auto code = error["code"].Number();
  const auto category = error["category"].Number();
  const auto* const function = error["function"].As<std::string>();
  const bool isEmptySlot = code && category && function != nullptr &&
                           MeansEmptySlot(static_cast<int>(*category), static_cast<std::int64_t>(*code), *function);
  return isEmptySlot ? none : error;
}

bool IsChanged(const std::string& path, const std::vector<Change>& changes) {
  return std::any_of(changes.begin(), changes.end(), [&](const Change& change) {
    const std::string& shorter = change.path.size() < path.size() ? change.path : path;
    const std::string& longer = change.path.size() < path.size() ? path : change.path;
    const bool isWithin = longer.starts_with(shorter);
    return isWithin &&
           (longer.size() == shorter.size() || longer[shorter.size()] == '.' || longer[shorter.size()] == '[');
  });
}

std::string Padded(std::string text, std::size_t width) {
  if (text.size() >= width) {
    text = text.substr(0, width - 3) + "..";
  }
  text.resize(width, ' ');
  return text;
}

// A changed value is bold, and has a star for terminals that know no bold.
std::string Cell(const std::string& text, bool isChanged) {
  const std::string padded = Padded((isChanged ? "*" : " ") + text, kValueWidth);
  return isChanged ? "\x1b[1m" + padded + "\x1b[0m" : padded;
}

std::string WithoutTrailingBlanks(const std::string& line) {
  return line.substr(0, line.find_last_not_of(' ') + 1);
}

// Every line clears what an earlier screen left behind it.
void AddScreenLine(const std::string& line, std::string& screen) {
  screen += WithoutTrailingBlanks(line) + "\x1b[K\n";
}

const Array& BatteriesOf(const Reading& reading) {
  return *reading.body.Find("batteries")->As<Array>();
}

std::string BatteryPath(std::size_t slot) {
  return "batteries[" + std::to_string(slot) + "]";
}

// A row of the screen: a member of the JSON report, which is a field, a list of fields or the flags.
struct ScreenRow {
  std::string name;
  std::string group;
  std::string key;
  const char* unit = "";
};

// What changes from one moment to the next, and which battery it is.
bool IsWatched(const fields::Group* group) {
  return group == &fields::kIdentity || group == &fields::kCapacity || group == &fields::kCells ||
         group == &fields::kCellSwell;
}

std::vector<ScreenRow> ScreenRows() {
  std::vector<ScreenRow> rows;
  for (const fields::Group* group : fields::kGroups) {
    if (group == &fields::kFlags) {
      rows.push_back({"Status flags", fields::kStatus.key, "flags"});
    }
    for (const fields::Row& row : fields::kCatalogue) {
      if (row.group == group && IsWatched(group)) {
        // The column has no room for why a percentage is none; the divisor stands in a row above.
        rows.push_back({row.label, group->key, row.key, row.kind == NORV_BATTERY_REAL ? " %" : ""});
      }
    }
  }
  return rows;
}

// The value at `key` in `group`, of which one may be an item of a list, "voltages[0]".
const Value& At(const Value& group, const std::string& key) {
  const std::size_t bracket = key.find('[');
  if (bracket == std::string::npos) {
    return group[key];
  }
  return group[key.substr(0, bracket)][static_cast<std::size_t>(key[bracket + 1] - '0')];
}

void AddRows(const Reading& reading, const std::vector<Change>& changes, std::string& screen) {
  const Array& batteries = BatteriesOf(reading);
  static const std::vector<ScreenRow> rows = ScreenRows();
  for (const ScreenRow& row : rows) {
    std::string line = Padded(row.name, kNameWidth);
    bool isThere = false;
    for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
      const Value& group = batteries[slot][row.group];
      const Value& value = At(group, row.key);
      const bool isTold = !group.IsNull() && !(value.IsNull() && !batteries[slot]["notTold"].IsNull());
      isThere |= isTold;
      const std::string path = BatteryPath(slot) + "." + row.group + "." + row.key;
      line += !isTold ? Cell("", false)
                      : Cell(MemberText(row.key, value) + (value.IsNull() ? "" : row.unit), IsChanged(path, changes));
    }
    if (isThere) {
      AddScreenLine(line, screen);
    }
  }
}

std::string BatteryName(const Value& battery) {
  return ValueText(battery["identity"]["deviceName"]) + ", serial number " +
         ValueText(battery["identity"]["serialNumber"]);
}

std::string PresenceText(const Value& battery, bool isChanged) {
  if (battery.IsNull()) {
    return isChanged ? "removed" : "no battery";
  }
  return isChanged ? "put in" : "present";
}

bool IsPresenceChanged(std::size_t slot, const std::vector<Change>& changes) {
  return std::any_of(changes.begin(), changes.end(),
                     [&](const Change& change) { return change.path == BatteryPath(slot); });
}

// "Battery 1  capacity.voltage  11800 -> 11790"
std::string ChangeLine(const Change& change, const Array& batteries) {
  const std::string_view key = std::string_view(change.path).substr(change.path.find_last_of('.') + 1);
  const std::string values = MemberText(key, change.before) + " -> " + MemberText(key, change.after);
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    const std::string path = BatteryPath(slot);
    const std::string name = "Battery " + std::to_string(slot + 1) + "  ";
    if (change.path == path) {
      return name + PresenceText(change.after, true) + (change.after.IsNull() ? "" : ": " + BatteryName(change.after));
    }
    if (change.path.starts_with(path + ".")) {
      std::string line = name;
      line.append(change.path, path.size() + 1).append("  ").append(values);
      return line.append(ReasonText(key, change.after, batteries[slot]));
    }
  }
  return change.path + "  " + values;
}

// Those that people are told of.
std::vector<Change> ToldChanges(const std::vector<Change>& changes) {
  std::vector<Change> told;
  for (const Change& change : changes) {
    if (change.path != "readError") {
      told.push_back(change);
    } else if (WithoutEmptySlot(change.before) != WithoutEmptySlot(change.after)) {
      told.push_back({change.path, WithoutEmptySlot(change.before), WithoutEmptySlot(change.after)});
    }
  }
  return told;
}

}  // namespace

std::string JsonLine(const Reading& reading, const std::vector<Change>& changes) {
  Object line{{"reading", reading.number}, {"time", reading.time}};
  for (const auto& [key, value] : reading.body) {
    line[key] = value;
  }
  Array paths;
  for (const Change& change : changes) {
    paths.emplace_back(change.path);
  }
  line["changed"] = std::move(paths);
  return json::Write(line) + '\n';
}

std::string TextBlock(const Reading& reading, const std::vector<Change>& changes) {
  std::string text = "Reading " + std::to_string(reading.number) + ", " + reading.time + '\n';
  const Array& batteries = BatteriesOf(reading);
  if (reading.number == 1) {
    for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
      text += "  Battery " + std::to_string(slot + 1) + "  " + PresenceText(batteries[slot], false) +
              (batteries[slot].IsNull() ? "" : ": " + BatteryName(batteries[slot])) + '\n';
    }
    return text;
  }
  const std::vector<Change> told = ToldChanges(changes);
  for (const Change& change : told) {
    text += "  " + ChangeLine(change, batteries) + '\n';
  }
  return told.empty() ? text + "  no change\n" : text;
}

std::string Screen(const std::string& title, const Reading& reading, const std::vector<Change>& changes) {
  std::string screen = reading.number == 1 ? "\x1b[2J\x1b[H" : "\x1b[H";
  AddScreenLine(title, screen);
  AddScreenLine("Reading " + std::to_string(reading.number) + ", " + reading.time, screen);
  AddScreenLine("", screen);
  std::string heading = Padded("", kNameWidth);
  std::string presence = Padded("", kNameWidth);
  const Array& batteries = BatteriesOf(reading);
  for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
    const bool isChanged = IsPresenceChanged(slot, changes);
    heading += Cell("Battery " + std::to_string(slot + 1), false);
    presence += Cell(PresenceText(batteries[slot], isChanged), isChanged);
  }
  AddScreenLine(heading, screen);
  AddScreenLine(presence, screen);
  AddRows(reading, changes, screen);
  const Value& readError = WithoutEmptySlot(*reading.body.Find("readError"));
  if (!readError.IsNull()) {
    AddScreenLine("", screen);
    AddScreenLine("Last error: " + ValueText(readError), screen);
  }
  return screen + "\x1b[J";
}

}  // namespace norv::tool
