#pragma once

#include <cstdint>
#include <string_view>

#include "report/Report.h"

namespace norv::tool {

// True when a failure of reading the batteries, by its category, code and operation, says just that a slot holds none.
bool MeansEmptySlot(int category, std::int64_t code, std::string_view function);

bool MeansEmptySlot(const Failure& failure);

// True when the machine has no battery at all, and was able to say so.
bool HasNoBattery(const Report& report);

}  // namespace norv::tool
