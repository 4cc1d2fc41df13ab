#include "battery/NorvBatteries.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "Remarks.h"
#include "access/BiosRead.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "diagnostics/Failures.h"
#include "diagnostics/Log.h"
#include "diagnostics/RemarksToLog.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

using diagnostics::Guarded;
using diagnostics::Log;
using diagnostics::Severity;
using test::kNoVerdict;

namespace {

constexpr const char* kConstructor = "norv::shared::battery::NorvBatteries::NorvBatteries";
constexpr const char* kRunBatteryTest = "norv::shared::battery::NorvBatteries::RunBatteryTest";

// Runs the test and takes its verdict over. A test object of the host's may throw; that counts as no verdict.
void RunTest(NorvBatteries& batteries, NorvBatteryTestInfo* testInfo, error::Error& stored) {
  const bool verdict = Guarded(stored, kRunBatteryTest, [&batteries, testInfo] {
    if (testInfo != nullptr) {
      testInfo->RunBatteryTest();
    }
    return batteries.RunBatteryTest();
  });
  if (!verdict) {
    Log(Severity::Error, kConstructor, {"Error running the battery test"});
  }
}

}  // namespace

NorvBatteries::NorvBatteries() : NorvBatteries(false, false, nullptr, nullptr) {
}

// Nothing leaves the constructor as an exception: the host's objects would have no owner then.
NorvBatteries::NorvBatteries(bool readCellSwellProtection, bool runBatteryTest, void* bios,
                             NorvBatteryTestInfo* testInfo)
    : batteries_{nullptr, nullptr}, bios_(static_cast<norvbios::PrivateBiosWmi*>(bios)), testInfo_(testInfo) {
  Log(Severity::Info, kConstructor, {"Started ", kConstructor, " "});
  Guarded(error_, kConstructor, [this] {
    access::Channel(bios_);
    return true;
  });
  if (testInfo_ == nullptr && runBatteryTest) {
    Guarded(error_, kConstructor, [this] {
      testInfo_ = new NorvBatteryTestInfo;
      return true;
    });
  }
  for (unsigned char index = 0; index < firmware::kSlotCount; ++index) {
    if (!ReadNorvBatteryInfo(index)) {
      if (index == 0) {  // a second battery that is missing is normal
        Log(Severity::Error, kConstructor, {"Error getting battery information"});
      }
    } else if (readCellSwellProtection && !ReadNorvBatteryCSP(index)) {
      Log(Severity::Error, kConstructor, {"Error reading Cell Swell Protection data"});
    }
  }
  if (runBatteryTest) {
    RunTest(*this, testInfo_, error_);
  }
  if (batteries_[0] != nullptr) {
    Guarded(error_, kConstructor, [this] {
      diagnostics::RemarksToLog remarks(kConstructor);
      const platform::ScopedRemarkListener listening(remarks);
      batteries_[0]->GetBiosBatterySettings();
      return true;
    });
  }
  Log(Severity::Info, kConstructor, {"Finished ", kConstructor});
}

NorvBatteries::NorvBatteries(const NorvBatteries& other) = default;

NorvBatteries& NorvBatteries::operator=(const NorvBatteries& other) = default;

NorvBatteries::~NorvBatteries() {
  delete bios_;
  delete testInfo_;
  for (NorvBatteryInfo*& battery : batteries_) {
    delete battery;
    battery = nullptr;
  }
}

bool NorvBatteries::RunBatteryTest() {
  Log(Severity::Info, kRunBatteryTest, {"Started ", kRunBatteryTest});
  const bool verdict = Guarded(error_, kRunBatteryTest, [this] {
    if (testInfo_ == nullptr || testInfo_->GetBatteryTestResult() == kNoVerdict) {
      diagnostics::Report(
          error_,
          diagnostics::ValueError<int>(kNoVerdict, "Battery Test Error - Battery is not supported", kRunBatteryTest),
          kRunBatteryTest);
      return false;
    }
    if (batteries_[0] != nullptr) {
      batteries_[0]->SetBatteryTestInfo(*testInfo_);
    }
    return true;
  });
  if (verdict) {
    Log(Severity::Info, kRunBatteryTest, {"Finished ", kRunBatteryTest, " "});
  }
  return verdict;
}

NorvBatteryInfo* NorvBatteries::Query(unsigned char index) {
  assert(index < firmware::kSlotCount);
  return batteries_[index];
}

const error::Error& NorvBatteries::GetError() const {
  return error_;
}

void NorvBatteries::ZeroFill(std::size_t byteCount) {
  std::memset(static_cast<void*>(this), 0, std::min(byteCount, sizeof *this));
}

}  // namespace norv::shared::battery
