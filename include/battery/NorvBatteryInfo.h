// The record of one battery.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "battery/Export.h"
#include "battery/NorvBatteryCellSwellProtectionInfo.h"
#include "battery/NorvBatteryStatus.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery {

namespace fields {
struct BlockOf;
}

class BiosBatterySettings;
class NorvBatteryTestInfo;

namespace record {
struct RecordMaker;
}

// Decodes the 128-byte battery-information block of one battery and answers every question about it.
//
// Numbers carry no unit of their own: each is the BIOS's unsigned 16-bit word, 0 to 65535, as the firmware gave it. The
// units below are those of the Smart Battery Data Specification, for firmware that follows it.
//
// Texts are zero-terminated, never null, 8-bit and as the firmware wrote them, so not necessarily ASCII or UTF-8. They
// belong to the record unless an accessor says that they are constants, and live as long as the record or a copy of it.
//
// Copies share the texts and the attached objects with their source; each is released once, when the last sharer is
// gone. Attaching again replaces for this record only; what was replaced stays alive as long as the record or a copy of
// it.
//
// Threads: a record is used by one thread at a time, and a record and its copies count as one.
class NORV_BATTERY_API NorvBatteryInfo {
 public:
  // Decodes the 128 bytes at `block`, which must not be null, and asks the operating system for its charge and
  // discharge rates (both 0 when it does not know). Throws nothing but the standard allocation exception.
  explicit NorvBatteryInfo(const unsigned char* const block);
  NorvBatteryInfo(const NorvBatteryInfo& other);
  NorvBatteryInfo& operator=(const NorvBatteryInfo& other);
  virtual ~NorvBatteryInfo();

  // True when manufacturer, serial number, device name (all not empty) and CT number (a 6 and 13 letters or digits) are
  // those of a real battery and no earlier failure is on record. The first defect becomes the record's error and stays.
  virtual bool IsValid();

  // Identity, as the firmware wrote it: everything before the first NUL of the field, nothing trimmed.
  virtual const char* GetManufacturer() const;  // at most 18 characters
  virtual const char* GetCtNumber() const;      // at most 16 characters
  virtual const char* GetDeviceName() const;    // at most 7 ASCII letters and digits; empty if the field held any other
  virtual const char* GetSerialNumber() const;  // at most 16 characters

  // Capacity and health.
  virtual int GetDesignVoltage() const;         // of the new pack, mV
  virtual int GetDesignEnergyCapacity() const;  // of the new pack, mAh or 10 mWh
  virtual int GetFullEnergyCapacity() const;    // what the pack takes by now when it is charged fully; the same unit
  // Full charge capacity in percent of the design capacity, cut (not rounded) to three decimals. -2147483.75 when the
  // design capacity is 0 or the figure is too large to be cut.
  virtual float GetFullEnergyCapacityPercentage() const;
  virtual int GetRemainingCapacity() const;  // what is left in the pack; the same unit
  // Remaining capacity in percent of the full charge capacity (not of the design capacity), otherwise as above.
  virtual float GetRemainingEnergyCapacityPercentage() const;
  virtual int GetMaxErrorPercentage() const;  // how far off the pack's own gauge may be, percent
  virtual int GetCycleCount() const;          // how often the pack was charged and discharged
  virtual int GetTemperature() const;         // 0.1 K
  virtual int GetVoltage() const;             // of the whole pack, mV
  // mA, negative while the battery discharges: a two's complement word that comes out as 0 to 65535 all the same, and
  // that the caller sign-extends.
  virtual int GetElectricCurrent() const;
  virtual int GetStatusWord() const;  // bits, see GetStatus()
  // Writes the voltages of cells 1 to 4 in mV, four ints, to `voltages`, where the caller has room for four.
  virtual void GetCellVoltages(int* const voltages);

  // The day the battery was made, "2021-05-06T00:00:00+00:00"; empty without a month of 1 to 12 and a day of 1 to 31.
  virtual const char* GetManufacturingDate();

  // What the letters and digits of the manufacturer text mean. All but GetCalibrationType and GetOverCurrentProtection
  // are constant texts.
  virtual const char* GetPackSupplier() const;      // "UNKNOWN" without a known code
  virtual const char* GetCellSupplier() const;      // "UNKNOWN" without a known code
  virtual std::string GetCalibrationType() const;   // one character, or empty
  virtual int GetOverCurrentProtection() const;     // in the unit of the design capacity; 0 without a known code
  virtual const char* GetWarrantyType() const;      // "6_MONTHS", "1_YEAR", "2_YEARS", "3_YEARS" or "UNKNOWN"
  virtual const char* GetDesignCycleCount() const;  // "300", "600", "1000" or "UNKNOWN"

  // Fields of the CT number, "NA" when it is too short. Each text lies in ONE BUFFER PER OPERATION FOR THE WHOLE
  // PROCESS: a call on any record overwrites the text of the call before, and two threads may not call the same one at
  // once.
  virtual const char* GetCtAssembly() const;
  virtual const char* GetCtRevision() const;
  virtual const char* GetCtSupplier() const;
  virtual const char* GetCtMfgWeek() const;

  // Whole days from the date at the end of the serial number to now. -1 with an error on record when the serial number
  // has fewer than 16 characters, or when an exception stopped the computation; the days since 1 January 1970, with an
  // error on record, when the serial number ends in no date.
  virtual int GetAge();

  // The status word in its parts.
  virtual NorvBatteryStatus GetStatus() const;

  // BIOS battery-care settings: empty texts before GetBiosBatterySettings(), later its texts.
  virtual const char* GetAdaptiveBatteryOptimizerInfo() const;
  virtual const char* GetBatteryCareInfo() const;

  // Attaches a copy of the 128 bytes at `block` as the cell swell protection record. A null pointer attaches a record
  // of zeros, with errno EINVAL. Throws nothing but the standard allocation exception.
  virtual void SetCellSwellProtectionInfo(const unsigned char* const block);
  // The attached record, or null. It belongs to this record.
  virtual const NorvBatteryCellSwellProtectionInfo* GetCellSwellProtectionInfo();

  // Refers to `info` from now on; it stays the caller's, who keeps it alive for as long as the record may be asked.
  virtual void SetBatteryTestInfo(const NorvBatteryTestInfo& info);
  // What that object answers; without one -1 and empty texts.
  virtual int GetBatteryTestResult() const;
  virtual const char* GetBatteryTestResultLabel() const;
  virtual const char* GetBatteryTestVersion() const;

  // Asks the BIOS for its battery-care settings, through WMI, and attaches the answer. Blocks. Throws nothing but the
  // standard allocation exception.
  virtual void GetBiosBatterySettings();

  // The manufacturing date moved forward by the warranty type, its day unchanged; empty when that is no date.
  virtual const char* GetWarrantyDate();

  // The operating system's rates when the record was made; 0 when it gave none. In the driver's unit, mostly mW.
  virtual unsigned int GetBatteryChargeRate();
  virtual unsigned int GetBatteryDischargeRate();

  // The last failure of IsValid() or GetAge(). The reference is valid until the record is destroyed, and always shows
  // the newest failure; a copy of the Error keeps one.
  const error::Error& GetError() const;

 protected:
  // Decodes the packed date `packed` (day in bits 0 to 4, month in 5 to 8, years since 1980 above) into the
  // manufacturing date.
  void SetManufacturingDate(unsigned short packed);
  // Derives the warranty date from the manufacturing date and the warranty type.
  void SetWarrantyDate();

 private:
  friend struct fields::BlockOf;  // reads the bytes of the record's block, for fields that no accessor gives

  struct Holdings;  // what a record shares with its copies: its texts and everything ever attached

  // A record's share in its holdings. Assigning another share keeps what was held before, so that no text or pointer
  // that the record handed out ever dangles.
  class Share {
   public:
    Share() = default;
    explicit Share(std::shared_ptr<Holdings> holdings) : current_(std::move(holdings)) {}
    Share(const Share&) = default;
    Share& operator=(const Share& other) {
      if (this == &other) {
        return *this;
      }
      for (const auto& former : other.former_) {
        Keep(former);
      }
      if (current_ != other.current_) {
        Keep(current_);
        current_ = other.current_;
      }
      return *this;
    }
    ~Share() = default;
    Holdings* operator->() const { return current_.get(); }

   private:
    void Keep(const std::shared_ptr<Holdings>& holdings) {
      for (const auto& kept : former_) {
        if (kept == holdings) {
          return;
        }
      }
      former_.push_back(holdings);
    }

    std::shared_ptr<Holdings> current_;
    std::vector<std::shared_ptr<Holdings>> former_;
  };

  NorvBatteryInfo();  // a record without texts, which must not be asked for any

  // A record with the rates given, which the library alone makes. A template, so that Windows does not export it.
  friend struct record::RecordMaker;
  template <typename Rates>
  NORV_BATTERY_HIDDEN NorvBatteryInfo(const unsigned char* block, const Rates& rates);

  unsigned char block_[128];
  int designVoltage_;
  int designEnergyCapacity_;
  int fullEnergyCapacity_;
  int remainingCapacity_;
  int maxErrorPercentage_;
  int cycleCount_;
  int temperature_;
  int voltage_;
  int electricCurrent_;
  int statusWord_;
  int cellVoltages_[4];
  const NorvBatteryCellSwellProtectionInfo* cellSwellProtection_;  // one of the holdings, or null
  const NorvBatteryTestInfo* testInfo_;                            // the caller's, or null
  unsigned int chargeRate_;
  unsigned int dischargeRate_;
  [[maybe_unused]] const char* ctNumberPattern_;  // part of the layout; validation uses its own
  error::Error error_;
  const BiosBatterySettings* settings_;  // one of the holdings, or null
  Share holdings_;
};

}  // namespace norv::shared::battery
