#include "watch/Reading.h"

#include "base/Time.h"
#include "json/Describe.h"
#include "json/Parse.h"
#include "report/WriteReport.h"

namespace norv::tool {

namespace {

using json::Array;
using json::Object;
using json::Value;

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
  return {number, base::TimeText(now), {{"batteries", whole["batteries"]}, {"readError", whole["readError"]}}};
}

std::vector<Change> FindChanges(const Reading& before, const Reading& after) {
  std::vector<Change> changes;
  Compare("", before.body, after.body, changes);
  return changes;
}

}  // namespace norv::tool
