// The two BIOS reads of the collection.
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "access/BiosRead.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "diagnostics/LoggedRemarks.h"
#include "diagnostics/Operation.h"

namespace norv::shared::battery {

using diagnostics::Operation;
using diagnostics::Severity;
using diagnostics::SystemFailure;
using diagnostics::WrongValue;

namespace {

constexpr unsigned char kLastIndex = firmware::kSlotCount - 1;

constexpr const char* kInvalidIndex = "Invalid battery index";
constexpr const char* kRefused = "PrivateBiosWMI error";

// Only the second slot may be empty without that being a failure.
bool IsAbsentSecondBattery(unsigned char index, std::uint32_t returnCode) {
  return index != 0 && (returnCode == firmware::kNoBattery || returnCode == firmware::kEmptySlot);
}

// A record in storage that comes zero-filled, so that nothing of what the memory held before shows in it. Plain delete
// releases it.
NorvBatteryInfo* NewRecord(const unsigned char* block) {
  void* const storage = std::memset(::operator new(sizeof(NorvBatteryInfo)), 0, sizeof(NorvBatteryInfo));
  try {
    return ::new (storage) NorvBatteryInfo(block);
  } catch (...) {
    ::operator delete(storage);
    throw;
  }
}

// What a read throws is reported in the reads' own way.
template <typename Read>
bool RunRead(const Operation& operation, Read read) noexcept {
  return diagnostics::Guarded(read, [&operation](const std::exception_ptr& thrown) {
    return operation.Fail(diagnostics::ReadExceptionError(thrown));
  });
}

}  // namespace

bool NorvBatteries::ReadNorvBatteryInfo(unsigned char index) {
  const Operation operation("norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo", error_);
  operation.LogStarted(" ");
  return RunRead(operation, [this, &operation, index] {
    if (index > kLastIndex) {
      return operation.Fail(WrongValue<int>(0, kInvalidIndex));
    }
    const diagnostics::LoggedRemarks remarks(operation);
    const access::Answer answer =
        access::Ask(access::EnsureChannel(bios_), firmware::Command::BatteryInformation, index);
    if (answer.channelStatus != 0) {
      return operation.Fail(SystemFailure(answer.channelStatus));
    }
    if (IsAbsentSecondBattery(index, answer.returnCode)) {
      // The index goes into the line as the byte it is, not as its digit.
      const char rawIndex = static_cast<char>(index);
      operation.Log(Severity::Verbose, {"Battery index ", {&rawIndex, 1}, " not detected"});
      return false;
    }
    if (answer.returnCode != firmware::kSuccess) {
      return operation.Fail(WrongValue<unsigned long>(answer.returnCode, kRefused));
    }
    // The new record stands before the old one goes: a construction that fails leaves the slot as it was.
    NorvBatteryInfo* const fresh = NewRecord(answer.block.data());
    delete batteries_[index];
    batteries_[index] = fresh;
    operation.LogFinished(" ");
    return true;
  });
}

bool NorvBatteries::ReadNorvBatteryCSP(unsigned char index) {
  const Operation operation("norv::shared::battery::NorvBatteries::ReadNorvBatteryCSP", error_);
  operation.LogStarted(" ");
  return RunRead(operation, [this, &operation, index] {
    if (index > kLastIndex) {
      return operation.Fail(WrongValue<int>(0, kInvalidIndex));
    }
    const access::Answer answer =
        access::Ask(access::EnsureChannel(bios_), firmware::Command::CellSwellProtection, index);
    if (answer.channelStatus != 0) {
      operation.Log(Severity::Error,
                    {"PrivateBiosWMI error occurred - HRESULT = ", std::to_string(answer.channelStatus)});
      return operation.Store(SystemFailure(answer.channelStatus));
    }
    if (answer.returnCode == firmware::kNotSupported) {
      return operation.Fail(
          WrongValue<unsigned long>(answer.returnCode, "Battery swell protection data not supported"));
    }
    // Unlike above, the code for an empty slot bay means nothing special here.
    if (answer.returnCode == firmware::kNoBattery && index != 0) {
      operation.Log(Severity::Verbose, {"Battery not detected"});
      return false;
    }
    if (answer.returnCode != firmware::kSuccess) {
      return operation.Fail(WrongValue<unsigned long>(answer.returnCode, kRefused));
    }
    if (batteries_[index] != nullptr) {
      batteries_[index]->SetCellSwellProtectionInfo(answer.block.data());
    }
    operation.LogFinished();
    return true;
  });
}

}  // namespace norv::shared::battery
