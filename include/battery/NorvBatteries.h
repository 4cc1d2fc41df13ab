// The batteries of this machine: where a host begins.
#pragma once

#include <cstddef>

#include "battery/Export.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::norvbios {
class PrivateBiosWmi;
}

namespace norv::shared::battery {

class NorvBatteryInfo;
class NorvBatteryTestInfo;

// Reads both battery slots of the machine while it is constructed and never again; for fresh values a host constructs a
// new collection.
//
// Ownership: the collection owns its records, its channel and its test object, also those that the host passed in, and
// deletes them when it is destroyed.
//
// Copies are shallow: they share everything that the collection owns, and nothing counts the sharers. Of two
// collections that share, ONLY ONE MAY BE DESTROYED; a host that copies one must see to it that the other is never
// destroyed.
//
// Threads: one thread at a time uses a collection; different collections may be used in parallel. Construction blocks
// while the BIOS, WMI and, if asked for, the test program do their work.
class NORV_BATTERY_API NorvBatteries {
 public:
  // The same as NorvBatteries(false, false, nullptr, nullptr).
  NorvBatteries();

  // Reads slot 0, then slot 1. Never throws because of a failed read: a slot that could not be read stays empty and
  // GetError() tells the last failure.
  //
  // `readCellSwellProtection`  also reads the cell swell protection data of each battery that is there.
  // `runBatteryTest`           also runs the battery test and hands its verdict to the battery of slot 0; blocks until
  // the
  //                            test program has ended.
  // `bios`                     a PrivateBiosWmi made with new, or null for the machine's own channel.
  // `testInfo`                 a NorvBatteryTestInfo made with new, or null for the library's own.
  NorvBatteries(bool readCellSwellProtection, bool runBatteryTest, void* bios, NorvBatteryTestInfo* testInfo);

  NorvBatteries(const NorvBatteries& other);
  NorvBatteries& operator=(const NorvBatteries& other);  // does not release what it held before
  ~NorvBatteries();

  // Takes over the verdict of the test object: hands the object to the record of slot 0, if there is one, which refers
  // to it from then on. False, with an error stored, when there is no verdict or no test object. Does not run the test.
  virtual bool RunBatteryTest();

  // The record of slot `index`, 0 or 1 (debug builds assert it); null when the slot holds no battery or could not be
  // read. It stays the collection's and is valid until the collection is destroyed. The same pointer on every call.
  virtual NorvBatteryInfo* Query(unsigned char index);

  // The last failure of a read or of the test. A second slot without a battery is no failure.
  const error::Error& GetError() const;

  // Fills the first `byteCount` bytes of the object with zeros, at most its whole size. The object may not be used
  // afterwards, not even be destroyed; storage that is to be constructed in is what this is for.
  void ZeroFill(std::size_t byteCount);

 protected:
  // Reads the battery-information block of slot `index`. On success the slot holds a fresh record. On failure the slot
  // keeps what it held and, unless slot 1 just holds no battery, the error is stored.
  bool ReadNorvBatteryInfo(unsigned char index);

  // Reads the cell swell protection block of slot `index` and attaches it to the slot's record, if there is one.
  bool ReadNorvBatteryCSP(unsigned char index);

 private:
  norvbios::PrivateBiosWmi& Channel();
  void ReadSlot(unsigned char index, bool readCellSwellProtection);
  void RunTest();

  NorvBatteryInfo* batteries_[2];
  error::Error error_;
  norvbios::PrivateBiosWmi* bios_;
  NorvBatteryTestInfo* testInfo_;
};

}  // namespace norv::shared::battery
