#include "battery/NorvBatteryCellSwellProtectionInfo.h"

#include <cstring>

#include "norv/platform/Platform.h"
#include "record/Block.h"

namespace norv::shared::battery {

namespace {

// The cell swell protection block: counters one after another, the rest reserved.
constexpr record::Field kTimeCharge{0, 2};
constexpr record::Field kTimeDischarge{2, 2};
constexpr record::Field kTimeRelax{4, 2};
constexpr record::Field kTimeSleep{6, 2};
constexpr record::Field kTimeFullCharge{8, 2};
constexpr record::Field kTimeRSOC{10, 2};
constexpr record::Field kCSPATime{12, 2};
constexpr record::Field kCSPBTime{14, 2};
constexpr record::Field kCSPARunningTime{16, 2};
constexpr record::Field kCSPBRunningTime{18, 2};
constexpr record::Field kCSPATemp1Time{20, 2};
constexpr record::Field kCSPBTemp1Time{22, 2};
constexpr record::Field kCSPATemp2Time{24, 2};
constexpr record::Field kCSPBTemp2Time{26, 2};

}  // namespace

NorvBatteryCellSwellProtectionInfo::NorvBatteryCellSwellProtectionInfo(const unsigned char* block) : block_{} {
  if (block == nullptr) {
    platform::Platform::Current().ReportInvalidParameter();
    return;
  }
  std::memcpy(block_, block, sizeof block_);
}

// Copying the bytes is what assignment is for.
NorvBatteryCellSwellProtectionInfo::NorvBatteryCellSwellProtectionInfo(
    const NorvBatteryCellSwellProtectionInfo& /*other*/)
    : block_{} {
}

NorvBatteryCellSwellProtectionInfo::~NorvBatteryCellSwellProtectionInfo() = default;

NorvBatteryCellSwellProtectionInfo& NorvBatteryCellSwellProtectionInfo::operator=(
    const NorvBatteryCellSwellProtectionInfo& other) = default;

int NorvBatteryCellSwellProtectionInfo::GetTimeCharge() const {
  return record::Word(block_, kTimeCharge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeDischarge() const {
  return record::Word(block_, kTimeDischarge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeRelax() const {
  return record::Word(block_, kTimeRelax);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeSleep() const {
  return record::Word(block_, kTimeSleep);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeFullCharge() const {
  return record::Word(block_, kTimeFullCharge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeRSOC() const {
  return record::Word(block_, kTimeRSOC);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATime() const {
  return record::Word(block_, kCSPATime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTime() const {
  return record::Word(block_, kCSPBTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPARunningTime() const {
  return record::Word(block_, kCSPARunningTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBRunningTime() const {
  return record::Word(block_, kCSPBRunningTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATemp1Time() const {
  return record::Word(block_, kCSPATemp1Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTemp1Time() const {
  return record::Word(block_, kCSPBTemp1Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATemp2Time() const {
  return record::Word(block_, kCSPATemp2Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTemp2Time() const {
  return record::Word(block_, kCSPBTemp2Time);
}

}  // namespace norv::shared::battery
