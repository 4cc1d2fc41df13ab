#include "watch/ShowReading.h"

#include <algorithm>
#include <array>

#include "EscapeText.h"

namespace norv::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kNameWidth = 27;
constexpr std::size_t kValueWidth = 25;

struct TableRow {
  const char* name;
  const char* group;
  const char* key;
  const char* unit;
};

constexpr std::array kTableRows = {
    TableRow{"Device name", "identity", "deviceName", ""},
    TableRow{"Serial number", "identity", "serialNumber", ""},
    TableRow{"Design capacity", "capacity", "designCapacity", ""},
    TableRow{"Full charge capacity", "capacity", "fullChargeCapacity", ""},
    TableRow{"Remaining capacity", "capacity", "remainingCapacity", ""},
    TableRow{"Relative state of charge", "capacity", "remainingCapacityPercentage", " %"},
    TableRow{"Cycle count", "capacity", "cycleCount", ""},
    TableRow{"Voltage", "capacity", "voltage", ""},
    TableRow{"Current", "capacity", "current", ""},
    TableRow{"Temperature", "capacity", "temperature", ""},
    TableRow{"Charge rate", "capacity", "chargeRate", ""},
    TableRow{"Discharge rate", "capacity", "dischargeRate", ""},
    TableRow{"Cell voltages", "cells", "voltages", ""},
    TableRow{"Status flags", "status", "flags", ""},
};

std::string Joined(const std::string& list, const std::string& item) {
  return list.empty() ? item : list + " " + item;
}

// A value of the JSON report in one line of ASCII.
std::string ValueText(const Json& value) {
  if (value.is_string()) {
    return value.get_ref<const std::string&>().empty() ? "(empty)" : EscapeText(value.get_ref<const std::string&>());
  }
  std::string text;
  if (value.is_array()) {
    for (const Json& item : value) {
      text = Joined(text, ValueText(item));
    }
    return text;
  }
  // The names of those that are set, of flags; of an error, its words.
  if (value.is_object()) {
    for (const auto& [key, item] : value.items()) {
      text = item.is_boolean() && item.get<bool>() ? Joined(text, key) : text;
    }
    return value.contains("message") ? EscapeText(WithoutLineBreak(value["message"].get<std::string>())) : text;
  }
  return value.is_null() ? "none" : value.dump();
}

// The current is a signed word: what it is for a battery that discharges.
std::string RowText(const TableRow& row, const Json& value) {
  constexpr int kWordSize = 65536;
  if (std::string_view(row.key) == "current" && value.get<int>() >= kWordSize / 2) {
    return std::to_string(value.get<int>() - kWordSize);
  }
  return ValueText(value) + row.unit;
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

std::string BatteryPath(std::size_t slot) {
  return "batteries[" + std::to_string(slot) + "]";
}

void AddRows(const Reading& reading, const std::vector<Change>& changes, std::string& screen) {
  const Json& batteries = reading.body["batteries"];
  for (const TableRow& row : kTableRows) {
    std::string line = Padded(row.name, kNameWidth);
    for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
      const bool isThere = !batteries[slot].is_null();
      const std::string path = BatteryPath(slot) + "." + row.group + "." + row.key;
      line +=
          isThere ? Cell(RowText(row, batteries[slot][row.group][row.key]), IsChanged(path, changes)) : Cell("", false);
    }
    AddScreenLine(line, screen);
  }
}

// The counters of the cell swell protection, where they were read.
void AddCellSwellRows(const Reading& reading, const std::vector<Change>& changes, std::string& screen) {
  const Json& batteries = reading.body["batteries"];
  const auto hasCounters = [](const Json& battery) {
    return !battery.is_null() && battery["cellSwellProtection"].is_object();
  };
  const auto first = std::find_if(batteries.begin(), batteries.end(), hasCounters);
  if (first == batteries.end()) {
    return;
  }
  for (const auto& [key, ignored] : (*first)["cellSwellProtection"].items()) {
    std::string line = Padded(key, kNameWidth);
    for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
      const std::string path = BatteryPath(slot) + ".cellSwellProtection." + key;
      line += hasCounters(batteries[slot])
                  ? Cell(ValueText(batteries[slot]["cellSwellProtection"][key]), IsChanged(path, changes))
                  : Cell("", false);
    }
    AddScreenLine(line, screen);
  }
}

std::string BatteryName(const Json& battery) {
  return ValueText(battery["identity"]["deviceName"]) + ", serial number " +
         ValueText(battery["identity"]["serialNumber"]);
}

std::string PresenceText(const Json& battery, bool isChanged) {
  if (battery.is_null()) {
    return isChanged ? "removed" : "no battery";
  }
  return isChanged ? "put in" : "present";
}

bool IsPresenceChanged(std::size_t slot, const std::vector<Change>& changes) {
  return std::any_of(changes.begin(), changes.end(),
                     [&](const Change& change) { return change.path == BatteryPath(slot); });
}

// "Battery 1  capacity.voltage  11800 -> 11790"
std::string ChangeLine(const Change& change) {
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    const std::string path = BatteryPath(slot);
    const std::string name = "Battery " + std::to_string(slot + 1) + "  ";
    if (change.path == path) {
      return name + PresenceText(change.after, true) + (change.after.is_null() ? "" : ": " + BatteryName(change.after));
    }
    if (change.path.starts_with(path + ".")) {
      return name + change.path.substr(path.size() + 1) + "  " + ValueText(change.before) + " -> " +
             ValueText(change.after);
    }
  }
  return change.path + "  " + ValueText(change.before) + " -> " + ValueText(change.after);
}

}  // namespace

std::string JsonLine(const Reading& reading, const std::vector<Change>& changes) {
  Json line{{"reading", reading.number}, {"time", reading.time}};
  line.update(reading.body);
  Json paths = Json::array();
  for (const Change& change : changes) {
    paths.push_back(change.path);
  }
  line["changed"] = paths;
  return line.dump() + '\n';
}

std::string TextBlock(const Reading& reading, const std::vector<Change>& changes) {
  std::string text = "Reading " + std::to_string(reading.number) + ", " + reading.time + '\n';
  if (reading.number == 1) {
    const Json& batteries = reading.body["batteries"];
    for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
      text += "  Battery " + std::to_string(slot + 1) + "  " + PresenceText(batteries[slot], false) +
              (batteries[slot].is_null() ? "" : ": " + BatteryName(batteries[slot])) + '\n';
    }
    return text;
  }
  for (const Change& change : changes) {
    text += "  " + ChangeLine(change) + '\n';
  }
  return changes.empty() ? text + "  no change\n" : text;
}

std::string Screen(const std::string& title, const Reading& reading, const std::vector<Change>& changes) {
  std::string screen = reading.number == 1 ? "\x1b[2J\x1b[H" : "\x1b[H";
  AddScreenLine(title, screen);
  AddScreenLine("Reading " + std::to_string(reading.number) + ", " + reading.time, screen);
  AddScreenLine("", screen);
  std::string heading = Padded("", kNameWidth);
  std::string presence = Padded("", kNameWidth);
  const Json& batteries = reading.body["batteries"];
  for (std::size_t slot = 0; slot < batteries.size(); ++slot) {
    const bool isChanged = IsPresenceChanged(slot, changes);
    heading += Cell("Battery " + std::to_string(slot + 1), false);
    presence += Cell(PresenceText(batteries[slot], isChanged), isChanged);
  }
  AddScreenLine(heading, screen);
  AddScreenLine(presence, screen);
  AddRows(reading, changes, screen);
  AddCellSwellRows(reading, changes, screen);
  if (!reading.body["readError"].is_null()) {
    AddScreenLine("", screen);
    AddScreenLine("Last error: " + ValueText(reading.body["readError"]), screen);
  }
  return screen + "\x1b[J";
}

}  // namespace norv::tool
