#pragma once

#include <string>

#include "report/Report.h"

namespace norv::tool {

// What a report is of, in the words of its first line: "the simulated machine two-batteries".
std::string SubjectText(const Source& source);

// For people: aligned names and values, ASCII only.
std::string TextReport(const Report& report);

// For programs: one object in UTF-8, whose keys docs/tool.md lists.
std::string JsonReport(const Report& report);

}  // namespace norv::tool
