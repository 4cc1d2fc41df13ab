// All fields of a record.
#pragma once

#include "fields/Catalogue.h"
#include "report/AskedBattery.h"

namespace norv::bench {

// Reads every field of `battery` once, and gives each answer to `take`.
template <typename Take>
void ReadEveryField(shared::battery::NorvBatteryInfo& battery, Take take) {
  const tool::AskedBattery asked(battery);
  for (const shared::battery::fields::Row& row : shared::battery::fields::kCatalogue) {
    take(row.read(row, asked.AsSubject()));
  }
}

}  // namespace norv::bench
