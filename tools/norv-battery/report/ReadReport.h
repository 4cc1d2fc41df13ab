#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "battery/NorvBatteryInfo.h"
#include "report/Report.h"

namespace norv::tool {

struct ReadOptions {
  bool cellSwell = false;
  bool test = false;
};

// Reads both slots through the library and, if asked to, runs the battery test, which takes as long as the test program
// does. The current platform answers.
Report ReadReport(const Source& source, const ReadOptions& options);

// The parts of a record that its accessors give only with care. Any thread may read its own record's.

// What a percentage accessor gave; nothing where it stands for a figure that cannot be computed.
constexpr std::optional<float> Computed(float percentage) {
  constexpr float kNotComputable = -2147483.75F;
  return percentage != kNotComputable ? std::optional(percentage) : std::nullopt;
}

// The firmware's current is a word in two's complement.
constexpr int SignedCurrent(int word) {
  return static_cast<std::int16_t>(word);
}

// The fields of the CT number, copied out of the buffers that all records share.
struct CtFields {
  std::string assembly;
  std::string revision;
  std::string supplier;
  std::string manufacturingWeek;
};
CtFields ReadCtFields(const shared::battery::NorvBatteryInfo& battery);

Cells ReadCells(shared::battery::NorvBatteryInfo& battery);

// True when `error` is a failure of GetAge, whose failures name their operation, and not a defect that IsValid found.
bool IsAgeFailure(const shared::error::Error& error);

// Everything that the battery-information block says, and nothing of the machine that it came from.
BatteryReport ReadBlock(shared::battery::NorvBatteryInfo& battery);

}  // namespace norv::tool
