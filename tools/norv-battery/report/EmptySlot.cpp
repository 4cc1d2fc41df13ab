#include "report/EmptySlot.h"

#include <algorithm>
#include <array>

#include "firmware/Commands.h"

namespace norv::tool {

namespace {

constexpr std::array<std::int64_t, 2> kEmptySlotCodes = {firmware::kEmptySlot, firmware::kNoBattery};

}  // namespace

bool MeansEmptySlot(int category, std::int64_t code, std::string_view function) {
  const bool isKnownCode = std::find(kEmptySlotCodes.begin(), kEmptySlotCodes.end(), code) != kEmptySlotCodes.end();
  return category == kValueFailure && isKnownCode && function.ends_with("::ReadNorvBatteryInfo");
}

bool MeansEmptySlot(const Failure& failure) {
  return MeansEmptySlot(failure.category, failure.code, failure.function);
}

bool HasNoBattery(const Report& report) {
  return !report.HasBattery() && (!report.readError || MeansEmptySlot(*report.readError));
}

}  // namespace norv::tool
