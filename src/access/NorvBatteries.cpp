#include "battery/NorvBatteries.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "access/BiosRead.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "diagnostics/LoggedRemarks.h"
#include "diagnostics/Operation.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

using diagnostics::Operation;
using diagnostics::Severity;
using test::kNoVerdict;

namespace {

constexpr const char* kRunBatteryTest = "norv::shared::battery::NorvBatteries::RunBatteryTest";

// Runs the test and takes its verdict over. A test object of the host's may throw; that counts as no verdict.
bool RunTest(NorvBatteries& batteries, NorvBatteryTestInfo* testInfo, error::Error& stored) {
  return Operation(kRunBatteryTest, stored).Run([&batteries, testInfo] {
    if (testInfo != nullptr) {
      testInfo->RunBatteryTest();
    }
    return batteries.RunBatteryTest();
  });
}

}  // namespace

NorvBatteries::NorvBatteries() : NorvBatteries(false, false, nullptr, nullptr) {
}

// Nothing leaves the constructor as an exception: the host's objects would have no owner then.
NorvBatteries::NorvBatteries(bool readCellSwellProtection, bool runBatteryTest, void* bios,
                             NorvBatteryTestInfo* testInfo)
    : batteries_{nullptr, nullptr}, bios_(static_cast<norvbios::PrivateBiosWmi*>(bios)), testInfo_(testInfo) {
  const Operation operation("norv::shared::battery::NorvBatteries::NorvBatteries", error_);
  operation.LogStarted(" ");
  operation.Run([this] { access::EnsureChannel(bios_); });
  if (testInfo_ == nullptr && runBatteryTest) {
    operation.Run([this] { testInfo_ = new NorvBatteryTestInfo; });
  }
  for (unsigned char index = 0; index < firmware::kSlotCount; ++index) {
    if (!ReadNorvBatteryInfo(index)) {
      if (index == 0) {  // a second battery that is missing is normal
        operation.Log(Severity::Error, {"Error getting battery information"});
      }
    } else if (readCellSwellProtection && !ReadNorvBatteryCSP(index)) {
      operation.Log(Severity::Error, {"Error reading Cell Swell Protection data"});
    }
  }
  if (runBatteryTest && !RunTest(*this, testInfo_, error_)) {
    operation.Log(Severity::Error, {"Error running the battery test"});
  }
  if (batteries_[0] != nullptr) {
    operation.Run([this, &operation] {
      const diagnostics::LoggedRemarks remarks(operation);
      batteries_[0]->GetBiosBatterySettings();
    });
  }
  operation.LogFinished();
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
  const Operation operation(kRunBatteryTest, error_);
  operation.LogStarted();
  const bool verdict = operation.Run([this, &operation] {
    if (testInfo_ == nullptr || testInfo_->GetBatteryTestResult() == kNoVerdict) {
      return operation.Fail(diagnostics::WrongValue<int>(kNoVerdict, "Battery Test Error - Battery is not supported"));
    }
    if (batteries_[0] != nullptr) {
      batteries_[0]->SetBatteryTestInfo(*testInfo_);
    }
    return true;
  });
  if (verdict) {
    operation.LogFinished(" ");
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
