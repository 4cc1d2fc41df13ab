// The record: how the block is decoded, what is attached to it, what copies share.
#include "battery/NorvBatteryInfo.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "battery/NorvBatteryTestInfo.h"
#include "norv/simulator/SimulatedMachine.h"
#include "record/Percentage.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryTestInfo;

struct Number {
  const char* name;
  std::size_t offset;
  int (NorvBatteryInfo::*read)() const;
};

const Number kNumbers[]{
    {"design capacity", 0x00, &NorvBatteryInfo::GetDesignEnergyCapacity},
    {"full charge capacity", 0x02, &NorvBatteryInfo::GetFullEnergyCapacity},
    {"remaining capacity", 0x04, &NorvBatteryInfo::GetRemainingCapacity},
    {"max error", 0x06, &NorvBatteryInfo::GetMaxErrorPercentage},
    {"cycle count", 0x08, &NorvBatteryInfo::GetCycleCount},
    {"temperature", 0x0A, &NorvBatteryInfo::GetTemperature},
    {"voltage", 0x0C, &NorvBatteryInfo::GetVoltage},
    {"current", 0x0E, &NorvBatteryInfo::GetElectricCurrent},
    {"design voltage", 0x10, &NorvBatteryInfo::GetDesignVoltage},
    {"status word", 0x12, &NorvBatteryInfo::GetStatusWord},
};

TEST(BatteryInfo, EachNumberIsItsOwnLittleEndianWord) {
  for (const Number& number : kNumbers) {
    const NorvBatteryInfo info(TestBlock().Byte(number.offset, 0x34).Byte(number.offset + 1, 0x12).Data());
    for (const Number& other : kNumbers) {
      EXPECT_EQ((info.*other.read)(), other.offset == number.offset ? 0x1234 : 0) << number.name << '/' << other.name;
    }
  }
}

TEST(BatteryInfo, NoNumberIsEverNegative) {
  for (const Number& number : kNumbers) {
    const NorvBatteryInfo info(TestBlock().Word(number.offset, 0xFFFF).Data());
    EXPECT_EQ((info.*number.read)(), 65535) << number.name;
  }
}

TEST(BatteryInfo, CellVoltagesAreFourAndNeverMore) {
  NorvBatteryInfo info(TestBlock().Word(0x14, 1).Word(0x16, 2).Word(0x18, 0xFFFF).Word(0x1A, 4).Data());
  std::array<int, 6> voltages{};
  voltages.fill(-7);
  info.GetCellVoltages(voltages.data() + 1);
  EXPECT_EQ(voltages, (std::array<int, 6>{-7, 1, 2, 65535, 4, -7}));
}

TEST(BatteryInfo, TextsFillTheirFieldsToTheLastByte) {
  const NorvBatteryInfo info(TestBlock()
                                 .SerialNumber("0123456789ABCDEF")
                                 .Byte(0x2C + 18, 0x7F)
                                 .Manufacturer("0123456789ABCDEFGH")
                                 .CtNumber("FEDCBA9876543210")
                                 .Byte(0x3E + 16, 'x')
                                 .DeviceName("ABCDEFG")
                                 .Byte(0x4F + 7, 'x')
                                 .Data());
  EXPECT_STREQ(info.GetSerialNumber(), "0123456789ABCDEF");
  EXPECT_STREQ(info.GetManufacturer(), "0123456789ABCDEFGH");
  EXPECT_STREQ(info.GetCtNumber(), "FEDCBA9876543210");
  EXPECT_STREQ(info.GetDeviceName(), "ABCDEFG");
}

TEST(BatteryInfo, TextsEndAtTheirFirstNul) {
  using namespace std::string_view_literals;
  const NorvBatteryInfo info(
      TestBlock().SerialNumber("AB\0CD"sv).Manufacturer("\0X"sv).CtNumber("6\0"sv).DeviceName("AB12\0\0\0"sv).Data());
  EXPECT_STREQ(info.GetSerialNumber(), "AB");
  EXPECT_STREQ(info.GetManufacturer(), "");
  EXPECT_STREQ(info.GetCtNumber(), "6");
  EXPECT_STREQ(info.GetDeviceName(), "AB12");
}

TEST(BatteryInfo, TextsKeepBlanksAndOddBytes) {
  const NorvBatteryInfo info(
      TestBlock().SerialNumber(" A B \t\xFF  ").Manufacturer("  \x01\x80 ").CtNumber("\n\r ").Data());
  EXPECT_STREQ(info.GetSerialNumber(), " A B \t\xFF  ");
  EXPECT_STREQ(info.GetManufacturer(), "  \x01\x80 ");
  EXPECT_STREQ(info.GetCtNumber(), "\n\r ");
}

TEST(BatteryInfo, ADeviceNameOfOtherThanLettersAndDigitsIsEmpty) {
  using namespace std::string_view_literals;
  for (const std::string_view name : {"AB 12\0\0"sv, "AB-12"sv, "AB1 "sv, " AB1"sv, "AB\xE9"sv, "_"sv, ""sv, "A.B"sv,
                                      "\0AB"sv, "ABCDEF/"sv, "@"sv, "["sv, "`"sv, "{"sv, ":"sv}) {
    EXPECT_STREQ(NorvBatteryInfo(TestBlock().DeviceName(name).Data()).GetDeviceName(), "") << name;
  }
  for (const std::string_view name : {"A"sv, "z"sv, "Z"sv, "a"sv, "0"sv, "9"sv, "aZ09aZ0"sv}) {
    EXPECT_STREQ(NorvBatteryInfo(TestBlock().DeviceName(name).Data()).GetDeviceName(), std::string(name).c_str());
  }
}

TEST(BatteryInfo, PercentagesAreCutAfterThreeDecimals) {
  const NorvBatteryInfo info(TestBlock().DesignCapacity(3000).FullChargeCapacity(2999).RemainingCapacity(1500).Data());
  EXPECT_EQ(info.GetFullEnergyCapacityPercentage(), 99.966F);
  EXPECT_EQ(info.GetRemainingEnergyCapacityPercentage(), 50.016F) << "of the full charge, not the design capacity";
}

TEST(BatteryInfo, AZeroDivisorHasADefinedPercentage) {
  const NorvBatteryInfo none(TestBlock().Data());
  EXPECT_EQ(none.GetFullEnergyCapacityPercentage(), -2147483.75F);
  EXPECT_EQ(none.GetRemainingEnergyCapacityPercentage(), -2147483.75F);
  const NorvBatteryInfo some(TestBlock().FullChargeCapacity(1).Data());
  EXPECT_EQ(some.GetFullEnergyCapacityPercentage(), -2147483.75F);
  EXPECT_EQ(some.GetRemainingEnergyCapacityPercentage(), 0.0F);
}

TEST(Percentage, FollowsTheProcessorsConversion) {
  using shared::battery::record::TruncatedPercentage;
  EXPECT_EQ(TruncatedPercentage(1, 1), 100.0F);
  EXPECT_EQ(TruncatedPercentage(0, 5), 0.0F);
  EXPECT_EQ(TruncatedPercentage(-2999, 3000), -99.966F) << "toward zero";
  EXPECT_EQ(TruncatedPercentage(20000, 1), 2000000.0F);
  EXPECT_EQ(TruncatedPercentage(21475, 1), -2147483.75F) << "2147500000 does not fit an int";
  EXPECT_EQ(TruncatedPercentage(std::numeric_limits<int>::min(), 1), -2147483.75F);
  EXPECT_EQ(TruncatedPercentage(-1, 0), -2147483.75F);
}

TEST(BatteryInfo, PercentagesAskThroughTheVirtualTable) {
  class Doubled : public NorvBatteryInfo {
   public:
    using NorvBatteryInfo::NorvBatteryInfo;
    int GetFullEnergyCapacity() const override { return 2 * NorvBatteryInfo::GetFullEnergyCapacity(); }
  };
  const Doubled info(TestBlock().DesignCapacity(1000).FullChargeCapacity(500).RemainingCapacity(250).Data());
  EXPECT_EQ(info.GetFullEnergyCapacityPercentage(), 100.0F);
  EXPECT_EQ(info.GetRemainingEnergyCapacityPercentage(), 25.0F);
}

TEST(BatteryInfo, WithoutTestInformationThereIsNoVerdict) {
  const NorvBatteryInfo info(TestBlock().Data());
  EXPECT_EQ(info.GetBatteryTestResult(), -1);
  EXPECT_STREQ(info.GetBatteryTestResultLabel(), "");
  EXPECT_STREQ(info.GetBatteryTestVersion(), "");
}

TEST(BatteryInfo, AsksTheVeryTestObjectItWasGiven) {
  class Verdict : public NorvBatteryTestInfo {
   public:
    int GetBatteryTestResult() const override { return code; }
    const char* GetBatteryTestVersion() const override { return "9.8.7.6"; }
    int code = 5;
  };
  NorvBatteryInfo info(TestBlock().Data());
  Verdict verdict;
  info.SetBatteryTestInfo(verdict);
  EXPECT_EQ(info.GetBatteryTestResult(), 5);
  EXPECT_STREQ(info.GetBatteryTestResultLabel(), "OK_LOW_AMBIENT_TEMP");
  EXPECT_STREQ(info.GetBatteryTestVersion(), "9.8.7.6");
  verdict.code = 96;
  EXPECT_STREQ(info.GetBatteryTestResultLabel(), "NO_BATTERY") << "a reference, not a copy";
  const NorvBatteryInfo copy(info);
  EXPECT_EQ(copy.GetBatteryTestResult(), 96);
}

TEST(BatteryInfo, ANullCellSwellBlockAttachesZeros) {
  NorvBatteryInfo info(TestBlock().Data());
  EXPECT_EQ(info.GetCellSwellProtectionInfo(), nullptr);
  errno = 0;
  info.SetCellSwellProtectionInfo(nullptr);
  EXPECT_EQ(errno, EINVAL);
  ASSERT_NE(info.GetCellSwellProtectionInfo(), nullptr);
  EXPECT_EQ(info.GetCellSwellProtectionInfo()->GetTimeCharge(), 0);
}

TEST(BatteryInfo, CopiesHaveTheSameValues) {
  NorvBatteryInfo source(HealthyBlock().Data());
  source.SetCellSwellProtectionInfo(TestBlock().Word(0, 9).Data());
  source.IsValid();
  NorvBatteryInfo copied(source);
  NorvBatteryInfo assigned(TestBlock().Data());
  EXPECT_EQ(&(assigned = source), &assigned);
  for (NorvBatteryInfo* copy : {&copied, &assigned}) {
    for (const Number& number : kNumbers) {
      EXPECT_EQ((copy->*number.read)(), (source.*number.read)()) << number.name;
    }
    std::array<int, 4> expected{};
    std::array<int, 4> actual{};
    source.GetCellVoltages(expected.data());
    copy->GetCellVoltages(actual.data());
    EXPECT_EQ(actual, expected);
    // The texts and what is attached are shared, not duplicated.
    EXPECT_EQ(copy->GetSerialNumber(), source.GetSerialNumber());
    EXPECT_EQ(copy->GetManufacturer(), source.GetManufacturer());
    EXPECT_EQ(copy->GetCtNumber(), source.GetCtNumber());
    EXPECT_EQ(copy->GetDeviceName(), source.GetDeviceName());
    EXPECT_EQ(copy->GetManufacturingDate(), source.GetManufacturingDate());
    EXPECT_EQ(copy->GetWarrantyDate(), source.GetWarrantyDate());
    EXPECT_EQ(copy->GetCellSwellProtectionInfo(), source.GetCellSwellProtectionInfo());
  }
}

TEST(BatteryInfo, ACopyCarriesTheErrorAndTheRates) {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "wmi": {"\\\\.\\root\\wmi": {"BatteryStatus": [{"ChargeRate": 7, "DischargeRate": 8}]}}})",
      "here");
  NorvBatteryInfo source(TestBlock().Data());
  EXPECT_FALSE(source.IsValid());
  NorvBatteryInfo copy(source);
  EXPECT_STREQ(copy.GetError().GetMessageText(), "Invalid battery manufacturer");
  EXPECT_EQ(copy.GetBatteryChargeRate(), 7U);
  EXPECT_EQ(copy.GetBatteryDischargeRate(), 8U);
}

TEST(BatteryInfo, ACopyKeepsSharedThingsAliveWithoutItsSource) {
  auto source = std::make_unique<NorvBatteryInfo>(HealthyBlock().Data());
  source->SetCellSwellProtectionInfo(TestBlock().Word(0, 9).Data());
  source->GetBiosBatterySettings();
  NorvBatteryInfo copy(*source);
  const char* const serialNumber = source->GetSerialNumber();
  source.reset();
  EXPECT_STREQ(serialNumber, "SN00012019-05-06");
  EXPECT_EQ(copy.GetCellSwellProtectionInfo()->GetTimeCharge(), 9);
  EXPECT_STREQ(copy.GetBatteryCareInfo(), "Not supported");
}

TEST(BatteryInfo, WhatWasReplacedLivesAsLongAsAnyCopy) {
  auto first = std::make_unique<NorvBatteryInfo>(HealthyBlock().Data());
  NorvBatteryInfo copy(*first);
  first->SetCellSwellProtectionInfo(TestBlock().Word(0, 1).Data());
  first->GetBiosBatterySettings();
  const auto* oldRecord = first->GetCellSwellProtectionInfo();
  const char* const oldText = first->GetBatteryCareInfo();
  first->SetCellSwellProtectionInfo(TestBlock().Word(0, 2).Data());
  first->GetBiosBatterySettings();
  EXPECT_EQ(copy.GetCellSwellProtectionInfo(), nullptr) << "attached to the other record only";
  first.reset();
  EXPECT_EQ(oldRecord->GetTimeCharge(), 1);
  EXPECT_STREQ(oldText, "Not supported");
}

TEST(BatteryInfo, AssignmentLeavesNoTextDangling) {
  NorvBatteryInfo target(HealthyBlock().SerialNumber("OLD").Data());
  target.SetCellSwellProtectionInfo(TestBlock().Word(0, 1).Data());
  const char* const oldText = target.GetSerialNumber();
  const auto* oldRecord = target.GetCellSwellProtectionInfo();
  {
    NorvBatteryInfo source(HealthyBlock().SerialNumber("NEW").Data());
    for (int round = 0; round < 3; ++round) {
      target = source;
      target = NorvBatteryInfo(HealthyBlock().SerialNumber("BETWEEN").Data());
    }
    target = source;
  }
  const NorvBatteryInfo& same = target;
  target = same;
  EXPECT_STREQ(target.GetSerialNumber(), "NEW");
  EXPECT_STREQ(oldText, "OLD");
  EXPECT_EQ(oldRecord->GetTimeCharge(), 1);
}

TEST(BatteryInfo, CanBeMadeInAnyWayThatAHostMakesObjects) {
  const TestBlock block = HealthyBlock();
  alignas(NorvBatteryInfo) std::array<unsigned char, sizeof(NorvBatteryInfo)> storage{};
  auto* inStorageOfTheHosts = new (storage.data()) NorvBatteryInfo(block.Data());
  EXPECT_STREQ(inStorageOfTheHosts->GetDeviceName(), "BAT0001");
  inStorageOfTheHosts->~NorvBatteryInfo();

  const std::unique_ptr<NorvBatteryInfo> withoutThrowing(new (std::nothrow) NorvBatteryInfo(block.Data()));
  ASSERT_NE(withoutThrowing, nullptr);
  EXPECT_STREQ(withoutThrowing->GetDeviceName(), "BAT0001");
}

// A derived record that answers another manufacturer and CT number, and notes the order of what it is asked for.
class OwnTexts : public NorvBatteryInfo {
 public:
  using NorvBatteryInfo::NorvBatteryInfo;
  using NorvBatteryInfo::SetWarrantyDate;

  const char* GetManufacturer() const override { return "311-9A-BN-A"; }
  const char* GetCtNumber() const override { return "OWNCTNUMBER"; }
  int GetDesignEnergyCapacity() const override { return 4000; }
  const char* GetWarrantyType() const override {
    asked_ += "type ";
    return NorvBatteryInfo::GetWarrantyType();
  }
  const char* GetManufacturingDate() override {
    asked_ += "date ";
    return "2020-01-02T00:00:00+00:00";
  }

  const std::string& Asked() const { return asked_; }

 private:
  mutable std::string asked_;
};

TEST(BatteryInfo, DecodesWhatADerivedClassAnswers) {
  const OwnTexts info(HealthyBlock().Manufacturer("123-45-67-A").CtNumber("6BLOCKCT").Data());
  EXPECT_STREQ(info.GetPackSupplier(), "SONY");
  EXPECT_STREQ(info.GetCellSupplier(), "BAK");
  EXPECT_STREQ(info.GetWarrantyType(), "3_YEARS");
  EXPECT_STREQ(info.GetDesignCycleCount(), "300");
  EXPECT_EQ(info.GetCalibrationType(), "1");
  EXPECT_EQ(info.GetOverCurrentProtection(), 2000);
  EXPECT_STREQ(info.GetCtAssembly(), "OWNC");
  EXPECT_STREQ(info.GetCtRevision(), "TN");
  EXPECT_STREQ(info.GetCtSupplier(), "UM");
  EXPECT_STREQ(info.GetCtMfgWeek(), "BE");
}

TEST(BatteryInfo, AsksADerivedClassForTheWarrantyTypeBeforeTheDate) {
  OwnTexts info(HealthyBlock().Data());
  EXPECT_EQ(info.Asked(), "") << "a record under construction asks itself";
  info.SetWarrantyDate();
  EXPECT_EQ(info.Asked(), "type date ");
  EXPECT_STREQ(info.GetWarrantyDate(), "2023-01-02T00:00:00+00:00");
}

TEST(BatteryInfo, IsMadeFromABlockOnly) {
  EXPECT_FALSE(std::is_default_constructible_v<NorvBatteryInfo>);
  EXPECT_TRUE(std::is_copy_constructible_v<NorvBatteryInfo>);
  EXPECT_TRUE(std::has_virtual_destructor_v<NorvBatteryInfo>);
}

}  // namespace
}  // namespace norv::test
