#include "battery/NorvBatteryCellSwellProtectionInfo.h"

#include <cstring>

#include "firmware/CellSwellProtectionBlock.h"
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
  return firmware::Word(block_, firmware::kTimeCharge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeDischarge() const {
  return firmware::Word(block_, firmware::kTimeDischarge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeRelax() const {
  return firmware::Word(block_, firmware::kTimeRelax);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeSleep() const {
  return firmware::Word(block_, firmware::kTimeSleep);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeFullCharge() const {
  return firmware::Word(block_, firmware::kTimeFullCharge);
}
int NorvBatteryCellSwellProtectionInfo::GetTimeRSOC() const {
  return firmware::Word(block_, firmware::kTimeRsoc);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATime() const {
  return firmware::Word(block_, firmware::kLevelATime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTime() const {
  return firmware::Word(block_, firmware::kLevelBTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPARunningTime() const {
  return firmware::Word(block_, firmware::kLevelARunningTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBRunningTime() const {
  return firmware::Word(block_, firmware::kLevelBRunningTime);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATemp1Time() const {
  return firmware::Word(block_, firmware::kLevelATemperature1Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTemp1Time() const {
  return firmware::Word(block_, firmware::kLevelBTemperature1Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPATemp2Time() const {
  return firmware::Word(block_, firmware::kLevelATemperature2Time);
}
int NorvBatteryCellSwellProtectionInfo::GetCSPBTemp2Time() const {
  return firmware::Word(block_, firmware::kLevelBTemperature2Time);
}

}  // namespace norv::shared::battery
