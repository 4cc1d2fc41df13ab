// The order of the virtual operations, which hosts built earlier rely on: read at run time from pointers to members.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryCellSwellProtectionInfo.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryTestInfo;
using shared::norvbios::PrivateBiosWmi;

// In the C++ ABI of g++ and clang a pointer to a virtual member holds 1 plus the operation's place in the table in
// bytes.
template <typename Member>
std::size_t Slot(Member member) {
  static_assert(sizeof member == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t place = 0;
  std::memcpy(&place, &member, sizeof place);
  EXPECT_EQ(place % 2, 1) << "not virtual";
  return static_cast<std::size_t>(place) / sizeof(void*);
}

template <typename... Members>
std::vector<std::size_t> Slots(Members... members) {
  return {Slot(members)...};
}

// `count` slots one after another. A virtual destructor takes two in this ABI, so what follows it begins at 2.
std::vector<std::size_t> From(std::size_t first, std::size_t count) {
  std::vector<std::size_t> slots;
  for (std::size_t slot = first; slot < first + count; ++slot) {
    slots.push_back(slot);
  }
  return slots;
}

TEST(SlotOrder, Batteries) {
  EXPECT_EQ(Slots(&NorvBatteries::RunBatteryTest, &NorvBatteries::Query), From(0, 2));
}

TEST(SlotOrder, BatteryInfo) {
  EXPECT_EQ(
      Slots(&NorvBatteryInfo::IsValid, &NorvBatteryInfo::GetManufacturer, &NorvBatteryInfo::GetCtNumber,
            &NorvBatteryInfo::GetDeviceName, &NorvBatteryInfo::GetSerialNumber, &NorvBatteryInfo::GetDesignVoltage,
            &NorvBatteryInfo::GetDesignEnergyCapacity, &NorvBatteryInfo::GetFullEnergyCapacity,
            &NorvBatteryInfo::GetFullEnergyCapacityPercentage, &NorvBatteryInfo::GetRemainingCapacity,
            &NorvBatteryInfo::GetRemainingEnergyCapacityPercentage, &NorvBatteryInfo::GetMaxErrorPercentage,
            &NorvBatteryInfo::GetCycleCount, &NorvBatteryInfo::GetTemperature, &NorvBatteryInfo::GetVoltage,
            &NorvBatteryInfo::GetElectricCurrent, &NorvBatteryInfo::GetStatusWord, &NorvBatteryInfo::GetCellVoltages,
            &NorvBatteryInfo::GetManufacturingDate, &NorvBatteryInfo::GetPackSupplier,
            &NorvBatteryInfo::GetCellSupplier, &NorvBatteryInfo::GetCalibrationType,
            &NorvBatteryInfo::GetOverCurrentProtection, &NorvBatteryInfo::GetWarrantyType,
            &NorvBatteryInfo::GetDesignCycleCount, &NorvBatteryInfo::GetCtAssembly, &NorvBatteryInfo::GetCtRevision,
            &NorvBatteryInfo::GetCtSupplier, &NorvBatteryInfo::GetCtMfgWeek, &NorvBatteryInfo::GetAge,
            &NorvBatteryInfo::GetStatus, &NorvBatteryInfo::GetAdaptiveBatteryOptimizerInfo,
            &NorvBatteryInfo::GetBatteryCareInfo, &NorvBatteryInfo::SetCellSwellProtectionInfo,
            &NorvBatteryInfo::GetCellSwellProtectionInfo, &NorvBatteryInfo::SetBatteryTestInfo,
            &NorvBatteryInfo::GetBatteryTestResult, &NorvBatteryInfo::GetBatteryTestResultLabel,
            &NorvBatteryInfo::GetBatteryTestVersion, &NorvBatteryInfo::GetBiosBatterySettings,
            &NorvBatteryInfo::GetWarrantyDate, &NorvBatteryInfo::GetBatteryChargeRate,
            &NorvBatteryInfo::GetBatteryDischargeRate),
      From(2, 43));
}

TEST(SlotOrder, BatteryTestInfo) {
  // A derived class may name the protected operation.
  struct Open : NorvBatteryTestInfo {
    static std::size_t Protected() { return Slot(&Open::RetrieveTestResultVersion); }
  };
  EXPECT_EQ(Slots(&NorvBatteryTestInfo::GetBatteryTestResult, &NorvBatteryTestInfo::GetBatteryTestResultLabel,
                  &NorvBatteryTestInfo::GetBatteryTestVersion, &NorvBatteryTestInfo::GetError,
                  &NorvBatteryTestInfo::RunBatteryTest),
            From(2, 5));
  EXPECT_EQ(Open::Protected(), 7U);
}

TEST(SlotOrder, BiosChannel) {
  EXPECT_EQ(Slots(&PrivateBiosWmi::ExecuteCommand, &PrivateBiosWmi::ValidateInput), From(2, 2));
}

}  // namespace
}  // namespace norv::test
