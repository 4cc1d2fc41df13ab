#pragma once

#include <string>

#include "Report.h"

namespace norv::tool {

// For people: aligned names and values, ASCII only.
std::string TextReport(const Report& report);

// For programs: one object in UTF-8, whose keys docs/tool.md lists.
std::string JsonReport(const Report& report);

}  // namespace norv::tool
