// Reads fields with their states.
#pragma once

#include "fields/Stored.h"

namespace norv::shared::battery::fields {

inline bool IsToldAt(firmware::Field place, const Told& told) {
  bool isTold = true;
  for (std::size_t byte = place.offset; byte < place.End(); ++byte) {
    isTold &= told[byte];
  }
  return isTold;
}

// A source that does not tell all is a system's driver, which knows nothing of the maker's texts: of what the block
// holds there is what the driver told, of what is worked out the shares of the capacities, and of the status whether
// the battery is charged or discharged. A rate of 0 is what stands where nobody tells one.
inline bool IsTold(const Row& row, const Answer& answer, const Told& told) {
  switch (row.number) {
    case NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE:
      return IsToldAt(firmware::kFullChargeCapacity, told) && IsToldAt(firmware::kDesignCapacity, told);
    case NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE:
      return IsToldAt(firmware::kRemainingCapacity, told) && IsToldAt(firmware::kFullChargeCapacity, told);
    case NORV_BATTERY_FULLY_CHARGED:
    case NORV_BATTERY_DISCHARGING:
      return IsToldAt(row.place, told);
    case NORV_BATTERY_STATUS_WORD:
      return false;
    case NORV_BATTERY_CHARGE_RATE:
    case NORV_BATTERY_DISCHARGE_RATE:
      return answer.number != 0;
    default:
      return row.source == NORV_BATTERY_FROM_BATTERY_TEST ||
             (row.source == NORV_BATTERY_FROM_INFORMATION_BLOCK && IsStored(row) && IsToldAt(row.place, told));
  }
}

// The answer of a field, with its state.
inline Answer Read(const Row& row, const Subject& subject) {
  Answer answer = row.read(row, subject);
  const bool isTold = subject.told == nullptr || IsTold(row, answer, *subject.told);
  answer.state = isTold ? row.state(subject, answer) : NORV_BATTERY_NOT_TOLD;
  return answer;
}

// True when `block` can be what a source gave that told only these bytes: the rest is 0, but for the status word, which
// follows from others. A block of another channel than the platform's is none of its source's.
inline bool IsOf(const unsigned char* block, const Told& told) {
  for (std::size_t byte = 0; byte < told.size(); ++byte) {
    const bool isStatus = byte >= firmware::kBatteryStatus.offset && byte < firmware::kBatteryStatus.End();
    if (block[byte] != 0 && !told[byte] && !isStatus) {
      return false;
    }
  }
  return true;
}

}  // namespace norv::shared::battery::fields
