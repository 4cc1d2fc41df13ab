// The cell swell protection data of a battery.
#pragma once

#include "battery/Export.h"

namespace norv::shared::battery {

// Fourteen time counters from the 128-byte cell swell protection block. Each is the BIOS's unsigned 16-bit word, 0 to
// 65535, in the BIOS's own unit. A record belongs to the NorvBatteryInfo that hands it out and lives as long as that
// one and its copies. Reading it from several threads is safe as long as nobody assigns to it.
class NORV_BATTERY_API NorvBatteryCellSwellProtectionInfo {
 public:
  // Copies the 128 bytes at `block`. With a null pointer every counter is 0, errno is EINVAL and, on Windows, the
  // runtime's invalid-parameter handler is called.
  explicit NorvBatteryCellSwellProtectionInfo(const unsigned char* block);
  virtual ~NorvBatteryCellSwellProtectionInfo();

  // Copies all 128 bytes.
  NorvBatteryCellSwellProtectionInfo& operator=(const NorvBatteryCellSwellProtectionInfo& other);

  int GetTimeCharge() const;       // charging
  int GetTimeDischarge() const;    // discharging
  int GetTimeRelax() const;        // relaxed (idle)
  int GetTimeSleep() const;        // sleeping
  int GetTimeFullCharge() const;   // at full charge
  int GetTimeRSOC() const;         // against the relative state of charge
  int GetCSPATime() const;         // in protection level A
  int GetCSPBTime() const;         // in protection level B
  int GetCSPARunningTime() const;  // running time of level A
  int GetCSPBRunningTime() const;  // running time of level B
  int GetCSPATemp1Time() const;    // level A in temperature band 1
  int GetCSPBTemp1Time() const;    // level B in temperature band 1
  int GetCSPATemp2Time() const;    // level A in temperature band 2
  int GetCSPBTemp2Time() const;    // level B in temperature band 2

 private:
  // Not for hosts: yields a record of 128 zero bytes, whatever the source holds.
  NorvBatteryCellSwellProtectionInfo(const NorvBatteryCellSwellProtectionInfo& other);

  unsigned char block_[128];
};

}  // namespace norv::shared::battery
