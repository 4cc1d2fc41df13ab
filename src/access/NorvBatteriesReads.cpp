// The two BIOS reads of the collection.
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "Remarks.h"
#include "access/BiosRead.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "diagnostics/Failures.h"
#include "diagnostics/Log.h"
#include "diagnostics/RemarksToLog.h"

namespace norv::shared::battery {

using diagnostics::Log;
using diagnostics::Report;
using diagnostics::Severity;
using diagnostics::SystemMessageError;
using diagnostics::ValueError;

namespace {

constexpr unsigned char kLastIndex = 1;
constexpr const char* kReadInfo = "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo";
constexpr const char* kReadCsp = "norv::shared::battery::NorvBatteries::ReadNorvBatteryCSP";

error::Error InvalidIndexError(const char* operation) {
  return ValueError<int>(0, "Invalid battery index", operation);
}

error::Error ReturnCodeError(std::uint32_t returnCode, const char* message, const char* operation) {
  return ValueError<unsigned long>(returnCode, message, operation);
}

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

// Nothing leaves a read as an exception.
template <typename Read>
bool GuardedRead(error::Error& stored, const char* operation, Read read) noexcept {
  try {
    return read();
  } catch (...) {
    Report(stored, diagnostics::ReadExceptionError(std::current_exception()), operation);
    return false;
  }
}

}  // namespace

bool NorvBatteries::ReadNorvBatteryInfo(unsigned char index) {
  Log(Severity::Info, kReadInfo, {"Started ", kReadInfo, " "});
  return GuardedRead(error_, kReadInfo, [this, index] {
    if (index > kLastIndex) {
      Report(error_, InvalidIndexError(kReadInfo), kReadInfo);
      return false;
    }
    diagnostics::RemarksToLog remarks(kReadInfo);
    const platform::ScopedRemarkListener listening(remarks);
    const access::Answer answer = access::Ask(access::Channel(bios_), firmware::Command::BatteryInformation, index);
    if (answer.channelStatus != 0) {
      Report(error_, SystemMessageError(answer.channelStatus, kReadInfo), kReadInfo);
      return false;
    }
    if (IsAbsentSecondBattery(index, answer.returnCode)) {
      // The index goes into the line as the byte it is, not as its digit.
      const char rawIndex = static_cast<char>(index);
      Log(Severity::Verbose, kReadInfo, {"Battery index ", {&rawIndex, 1}, " not detected"});
      return false;
    }
    if (answer.returnCode != firmware::kSuccess) {
      Report(error_, ReturnCodeError(answer.returnCode, "PrivateBiosWMI error", kReadInfo), kReadInfo);
      return false;
    }
    // The new record stands before the old one goes: a construction that fails leaves the slot as it was.
    NorvBatteryInfo* const fresh = NewRecord(answer.block.data());
    delete batteries_[index];
    batteries_[index] = fresh;
    Log(Severity::Info, kReadInfo, {"Finished ", kReadInfo, " "});
    return true;
  });
}

bool NorvBatteries::ReadNorvBatteryCSP(unsigned char index) {
  Log(Severity::Info, kReadCsp, {"Started ", kReadCsp, " "});
  return GuardedRead(error_, kReadCsp, [this, index] {
    if (index > kLastIndex) {
      Report(error_, InvalidIndexError(kReadCsp), kReadCsp);
      return false;
    }
    const access::Answer answer = access::Ask(access::Channel(bios_), firmware::Command::CellSwellProtection, index);
    if (answer.channelStatus != 0) {
      Log(Severity::Error, kReadCsp,
          {"PrivateBiosWMI error occurred - HRESULT = ", std::to_string(answer.channelStatus)});
      error_ = SystemMessageError(answer.channelStatus, kReadCsp);
      return false;
    }
    if (answer.returnCode == firmware::kNotSupported) {
      Report(error_, ReturnCodeError(answer.returnCode, "Battery swell protection data not supported", kReadCsp),
             kReadCsp);
      return false;
    }
    // Unlike above, the code for an empty slot bay means nothing special here.
    if (answer.returnCode == firmware::kNoBattery && index != 0) {
      Log(Severity::Verbose, kReadCsp, {"Battery not detected"});
      return false;
    }
    if (answer.returnCode != firmware::kSuccess) {
      Report(error_, ReturnCodeError(answer.returnCode, "PrivateBiosWMI error", kReadCsp), kReadCsp);
      return false;
    }
    if (batteries_[index] != nullptr) {
      batteries_[index]->SetCellSwellProtectionInfo(answer.block.data());
    }
    Log(Severity::Info, kReadCsp, {"Finished ", kReadCsp});
    return true;
  });
}

}  // namespace norv::shared::battery
