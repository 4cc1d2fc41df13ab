#include "watch/Reading.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "WriteReport.h"

namespace norv::tool {

namespace {

using Json = nlohmann::ordered_json;

std::string TimeText(std::time_t now) {
  const std::chrono::sys_seconds time{std::chrono::seconds(now)};
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

// What is of one structure is compared part by part; anything else is one change.
void Compare(const std::string& path, const Json& before, const Json& after, std::vector<Change>& changes) {
  if (before == after) {
    return;
  }
  if (before.is_object() && after.is_object()) {
    for (const auto& [key, value] : after.items()) {
      std::string inner = path;
      inner.append(path.empty() ? "" : ".").append(key);
      Compare(inner, before.value(key, Json()), value, changes);
    }
  } else if (before.is_array() && after.is_array() && before.size() == after.size()) {
    for (std::size_t i = 0; i < after.size(); ++i) {
      std::string inner = path;
      inner.append("[").append(std::to_string(i)).append("]");
      Compare(inner, before[i], after[i], changes);
    }
  } else {
    changes.push_back({path, before, after});
  }
}

}  // namespace

Reading MakeReading(unsigned int number, std::time_t now, const Report& report) {
  Json whole = Json::parse(JsonReport(report));
  Reading reading;
  reading.number = number;
  reading.time = TimeText(now);
  reading.body["batteries"] = std::move(whole["batteries"]);
  reading.body["readError"] = std::move(whole["readError"]);
  return reading;
}

std::vector<Change> FindChanges(const Reading& before, const Reading& after) {
  std::vector<Change> changes;
  Compare("", before.body, after.body, changes);
  return changes;
}

}  // namespace norv::tool
