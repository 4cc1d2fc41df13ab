// What a recorder keeps.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "calls/Call.h"
#include "calls/Outcome.h"

namespace norv::simulator {

using RecordedRow = std::map<std::string, PropertyReads>;  // by the property's name as it was asked for

struct RecordedCall : Call {
  RecordedCall() = default;
  explicit RecordedCall(const Call& call) : Call(call) {}

  std::string folder;  // what ProgramDataFolder gave
  Outcome outcome;
  std::vector<RecordedRow> rows;  // the objects of a query that were looked at
  bool ended = false;             // there was none after them
  std::optional<Thrown> end;      // what asking for one after them threw
};

}  // namespace norv::simulator
