// Calls a virtual operation of every exported class, so that a compiler lays its table out.
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryCellSwellProtectionInfo.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryStatus.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

using namespace norv::shared;

bool Batteries(battery::NorvBatteries& batteries) {
  return batteries.RunBatteryTest();
}
bool Info(battery::NorvBatteryInfo& info) {
  return info.IsValid();
}
int Test(battery::NorvBatteryTestInfo& test) {
  return test.GetBatteryTestResult();
}
void CellSwell(battery::NorvBatteryCellSwellProtectionInfo* info) {
  delete info;
}
int Channel(norvbios::PrivateBiosWmi& channel) {
  return channel.ValidateInput(0, 0, 0, nullptr, 0, nullptr, nullptr);
}

using battery::NorvBatteryStatus;
static_assert(sizeof(NorvBatteryStatus) == sizeof(void*) + 16);
static_assert(__builtin_offsetof(NorvBatteryStatus, fullyDischarged) == sizeof(void*));
static_assert(__builtin_offsetof(NorvBatteryStatus, overChargedAlarm) == sizeof(void*) + 11);
