// An answer that a machine file spells out call by call.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "calls/Outcome.h"

namespace norv::simulator {

// A property that cannot be read.
struct FailedRead {
  std::int32_t code;
};

// PropertyReads: one whose two ways of reading do not follow from one value.
using PropertyValue =
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, FailedRead, PropertyReads>;
using Row = std::map<std::string, PropertyValue>;  // by folded property name

struct Answer {
  std::string key;  // CallKey
  Outcome outcome;
  std::vector<Row> rows;      // the objects of a query
  std::optional<Thrown> end;  // what asking for one after them throws
};

}  // namespace norv::simulator
