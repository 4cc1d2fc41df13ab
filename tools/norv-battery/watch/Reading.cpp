#include "watch/Reading.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "WriteReport.h"
#include "json/Describe.h"
#include "json/Parse.h"

namespace norv::tool {

namespace {

using json::Array;
using json::Object;
using json::Value;

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
void Compare(const std::string& path, const Value& before, const Value& after, std::vector<Change>& changes) {
  if (before == after) {
    return;
  }
  const auto* const items = after.As<Array>();
  if (before.Is<Object>() && after.Is<Object>()) {
    for (const auto& [key, value] : *after.As<Object>()) {
      Compare(json::MemberPath(path, key), before[key], value, changes);
    }
  } else if (before.Is<Array>() && items != nullptr && before.As<Array>()->size() == items->size()) {
    for (std::size_t i = 0; i < items->size(); ++i) {
      Compare(json::ItemPath(path, i), before[i], (*items)[i], changes);
    }
  } else {
    changes.push_back({path, before, after});
  }
}

}  // namespace

Reading MakeReading(unsigned int number, std::time_t now, const Report& report) {
  const Value whole = json::Parse(JsonReport(report));
  return {number, TimeText(now), {{"batteries", whole["batteries"]}, {"readError", whole["readError"]}}};
}

std::vector<Change> FindChanges(const Reading& before, const Reading& after) {
  std::vector<Change> changes;
  Compare("", before.body, after.body, changes);
  return changes;
}

}  // namespace norv::tool
