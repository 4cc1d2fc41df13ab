#include "battery/NorvBatteryCellSwellProtectionInfo.h"

#include <cstring>

#include "access/CellSwellProtectionBlock.h"
#include "norv/platform/Platform.h"

namespace norv::shared::battery {

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
  return record::Word(block_, access::kTimeCharge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeDischarge() const {
  return record::Word(block_, access::kTimeDischarge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeRelax() const {
  return record::Word(block_, access::kTimeRelax);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeSleep() const {
  return record::Word(block_, access::kTimeSleep);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeFullCharge() const {
  return record::Word(block_, access::kTimeFullCharge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeRSOC() const {
  return record::Word(block_, access::kTimeRSOC);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATime() const {
  return record::Word(block_, access::kCSPATime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTime() const {
  return record::Word(block_, access::kCSPBTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPARunningTime() const {
  return record::Word(block_, access::kCSPARunningTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBRunningTime() const {
  return record::Word(block_, access::kCSPBRunningTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATemp1Time() const {
  return record::Word(block_, access::kCSPATemp1Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTemp1Time() const {
  return record::Word(block_, access::kCSPBTemp1Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATemp2Time() const {
  return record::Word(block_, access::kCSPATemp2Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTemp2Time() const {
  return record::Word(block_, access::kCSPBTemp2Time);
}

}  // namespace norv::shared::battery
