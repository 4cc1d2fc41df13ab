#include "record/Status.h"

#include <array>
#include <cstddef>

namespace norv::shared::battery::record {

namespace {

constexpr std::array<const char*, 7> kErrorCodes{
    "OK", "Busy", "ReservedCommand", "UnsupportedCommand", "AccessDenied", "Overflow/Underflow", "BadSize",
};

const char* ErrorCode(unsigned int word) {
  const std::size_t code = word & 15U;
  return code < kErrorCodes.size() ? kErrorCodes[code] : "UnknownError";
}

}  // namespace

NorvBatteryStatus DecodeStatus(int word) {
  const auto bits = static_cast<unsigned int>(word);
  const auto isSet = [bits](unsigned int bit) { return ((bits >> bit) & 1U) != 0; };
  return {
      .errorCode = ErrorCode(bits),
      .fullyDischarged = isSet(4),
      .fullyCharged = isSet(5),
      .discharging = isSet(6),
      .initialized = isSet(7),
      .remainingTimeAlarm = isSet(8),
      .remainingCapacityAlarm = isSet(9),
      .reservedBit10 = isSet(10),
      .terminateDischargeAlarm = isSet(11),
      .overTemperatureAlarm = isSet(12),
      .reservedBit13 = isSet(13),
      .terminateChargeAlarm = isSet(14),
      .overChargedAlarm = isSet(15),
  };
}

}  // namespace norv::shared::battery::record
