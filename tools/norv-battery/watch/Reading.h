// One reading of a watch, and what differs from the one before.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "json/Value.h"
#include "report/Report.h"

namespace norv::tool {

struct Reading {
  unsigned int number = 1;
  std::string time;   // "2024-06-01T12:00:00Z", by the machine's clock
  json::Object body;  // "batteries" and "readError" as the JSON report has them
};

Reading MakeReading(unsigned int number, std::time_t now, const Report& report);

struct Change {
  std::string path;  // "batteries[0].capacity.voltage"; "batteries[0]" for a battery that was removed or put in
  json::Value before;
  json::Value after;
};

// In the order of the JSON report.
std::vector<Change> FindChanges(const Reading& before, const Reading& after);

}  // namespace norv::tool
