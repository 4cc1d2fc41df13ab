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
  // `readCellSwellProtection`: also reads the cell swell protection data of each battery that is there.
  //
  // `runBatteryTest`: also runs the battery test, which blocks until the test program has ended, and hands its verdict
  // to the battery of slot 0.
  //
  // `bios`: a channel made with new, or null for the machine's own. A pointer to a derived class must be converted to
  // PrivateBiosWmi* before it becomes a void*, since the collection converts it back to that and nothing else:
  // static_cast<PrivateBiosWmi*>(channel). Where PrivateBiosWmi is not the first base the two addresses differ.
  //
  // `testInfo`: a test object made with new, or null for the library's own.
  NorvBatteries(bool readCellSwellProtection, bool runBatteryTest, void* bios, NorvBatteryTestInfo* testInfo);

  NorvBatteries(const NorvBatteries& other);
  NorvBatteries& operator=(const NorvBatteries& other);  // does not release what it held before
  ~NorvBatteries();  // not virtual: an object of a derived class is not deleted through a pointer to this one

  // Takes over the verdict of the test object: hands the object to the record of slot 0, if there is one, which refers
  // to it from then on. False, with an error stored, when there is no verdict or no test object. Does not run the test.
  virtual bool RunBatteryTest();

  // The record of slot `index`, 0 or 1 (debug builds assert it); null when the slot holds no battery or could not be
  // read. It stays the collection's and is valid until the collection is destroyed. The same pointer on every call.
  virtual NorvBatteryInfo* Query(unsigned char index);

  // The last failure of a read or of the test. A second slot without a battery is no failure. The reference is valid
  // until the collection is destroyed, and always shows the newest failure; a copy of the Error keeps one.
  const error::Error& GetError() const;

  // Fills the first `byteCount` bytes of the object with zeros, at most its whole size. The object may not be used
  // afterwards, not even be destroyed; storage that is to be constructed in is what this is for.
  void ZeroFill(std::size_t byteCount);

 protected:
  // Reads the battery-information block of slot `index`. On success the slot holds a fresh record, and what it held
  // before is deleted. On failure the slot keeps what it held and, unless slot 1 just holds no battery, the error is
  // stored. An index above 1 is such a failure: nothing is sent to the BIOS.
  bool ReadNorvBatteryInfo(unsigned char index);

  // Reads the cell swell protection block of slot `index` and attaches it to the slot's record, if there is one. Fails
  // as above, also for an index above 1.
  bool ReadNorvBatteryCSP(unsigned char index);

 private:
  NorvBatteryInfo* batteries_[2];
  error::Error error_;
  norvbios::PrivateBiosWmi* bios_;
  NorvBatteryTestInfo* testInfo_;
};

}  // namespace norv::shared::battery
