// The status word of a battery, decoded.
#pragma once

namespace norv::shared::battery {

// The layout of BatteryStatus() of the Smart Battery Data Specification: an error code in bits 0 to 3, flags above it.
struct NorvBatteryStatus {
  const char* errorCode;        // bits 0 to 3, a constant text that is never freed: "OK", "Busy", "ReservedCommand",
                                // "UnsupportedCommand", "AccessDenied", "Overflow/Underflow", "BadSize", "UnknownError"
  bool fullyDischarged;         // bit 4
  bool fullyCharged;            // bit 5
  bool discharging;             // bit 6
  bool initialized;             // bit 7
  bool remainingTimeAlarm;      // bit 8
  bool remainingCapacityAlarm;  // bit 9
  bool reservedBit10;           // bit 10, reserved by the standard
  bool terminateDischargeAlarm;  // bit 11
  bool overTemperatureAlarm;     // bit 12
  bool reservedBit13;            // bit 13, reserved by the standard
  bool terminateChargeAlarm;     // bit 14
  bool overChargedAlarm;         // bit 15
};

}  // namespace norv::shared::battery
