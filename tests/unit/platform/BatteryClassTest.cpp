// What the battery class driver of Windows told of some notebooks, translated and laid into the block.
#include "system-battery/BatteryClass.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using platform::BatteryClassAnswers;
using platform::CapacityUnit;
using platform::ChargeState;
using platform::FillBatteryBlock;
using platform::TranslateBatteryClass;

constexpr std::uint32_t kUnknown = 0xFFFFFFFFU;

// A three-cell pack that is being used up: 80000002 are a system battery and one whose discharge can be started.
BatteryClassAnswers Discharging() {
  BatteryClassAnswers answers;
  answers.information = {0x80000002U, 50050, 44110, 312};
  answers.status = {0x2, 30180, 11234, -9874};
  answers.temperature = 3021;
  answers.manufactureDate = {17, 3, 2021};
  answers.serialNumber = "01497 2021/03/17";
  answers.manufactureName = "333-AC-59-A";
  answers.deviceName = "NV3C50X";
  return answers;
}

std::optional<ChargeState> StateOf(std::uint32_t powerState, std::uint32_t capacity = 30180) {
  BatteryClassAnswers answers = Discharging();
  answers.status.powerState = powerState;
  answers.status.capacity = capacity;
  return TranslateBatteryClass(answers)->state;
}

TEST(BatteryClass, FillsTheBlock) {
  const auto battery = TranslateBatteryClass(Discharging());
  ASSERT_TRUE(battery);
  const auto expected = TestBlock()
                            .Word(0x00, 4455)  // 50050 mWh at 11.234 V
                            .Word(0x02, 3926)
                            .Word(0x04, 2686)
                            .Word(0x08, 312)
                            .Word(0x0A, 3021)
                            .Word(0x0C, 11234)
                            .Word(0x0E, 0x10000 - 879)
                            .Word(0x12, 0x00C0)
                            .Text(0x1C, 16, "01497 2021/03/17")
                            .Text(0x2C, 18, "333-AC-59-A")
                            .Text(0x4F, 7, "NV3C50X")
                            .Word(0x5C, 41 << 9 | 3 << 5 | 17);
  const auto filled = FillBatteryBlock(*battery);
  EXPECT_EQ(filled.block, expected.Bytes());
  ASSERT_EQ(filled.deviations.size(), 1U);
  EXPECT_EQ(std::get<platform::CapacitiesOfTheMoment>(filled.deviations[0]).voltage, 11234);
}

TEST(BatteryClass, DescribesWhatItTold) {
  BatteryClassAnswers answers = Discharging();
  answers.chemistry = std::string("LiP\0", 4);
  const auto description = platform::DescribeBattery(TranslateBatteryClass(answers));
  EXPECT_EQ(description.source, "the system's battery driver");
  EXPECT_EQ(description.technology, "LiP");
  EXPECT_EQ(description.modelName, "NV3C50X");
  EXPECT_EQ(description.serialNumber, "01497 2021/03/17");
  EXPECT_EQ(description.manufacturer, "333-AC-59-A");
  EXPECT_EQ(description.designEnergy, 50050);
  EXPECT_EQ(description.fullChargeEnergy, 44110);
  EXPECT_EQ(description.remainingEnergy, 30180);
  EXPECT_EQ(description.power, -9874);
  for (const unsigned told : {0x00U, 0x02U, 0x04U, 0x08U, 0x0AU, 0x0CU, 0x0EU, 0x12U, 0x1CU, 0x2CU, 0x4FU, 0x5CU}) {
    EXPECT_TRUE(description.told[told]) << told;
  }
  for (const unsigned place : {0x06U, 0x10U, 0x14U, 0x1AU, 0x3EU, 0x56U, 0x5EU, 0x7FU}) {
    EXPECT_FALSE(description.told[place]) << place << ", that Windows tells nobody";
  }
}

TEST(BatteryClass, CountsInEnergy) {
  const auto battery = TranslateBatteryClass(Discharging());
  ASSERT_TRUE(battery && battery->designCapacity && battery->fullChargeCapacity && battery->remainingCapacity);
  EXPECT_EQ(battery->designCapacity->unit, CapacityUnit::MilliwattHours);
  EXPECT_EQ(battery->designCapacity->amount, 50050);
  EXPECT_EQ(battery->fullChargeCapacity->amount, 44110);
  EXPECT_EQ(battery->remainingCapacity->amount, 30180);
  EXPECT_EQ(battery->power, -9874);
  EXPECT_EQ(battery->stateOfCharge, std::nullopt) << "it is computed, not told";
  EXPECT_EQ(battery->designVoltage, std::nullopt);
  EXPECT_EQ(battery->current, std::nullopt);
}

TEST(BatteryClass, OfABatteryThatCountsInItsOwnUnitTheStateOfChargeIsKnown) {
  BatteryClassAnswers answers = Discharging();
  answers.information = {0xC0000000U, 100, 90, 7};
  answers.status = {0x1, 60, 12000, 5};
  const auto battery = TranslateBatteryClass(answers);
  ASSERT_TRUE(battery);
  EXPECT_FALSE(battery->designCapacity || battery->fullChargeCapacity || battery->remainingCapacity || battery->power);
  EXPECT_EQ(battery->stateOfCharge, 67U) << "to the nearest, of 66.7";
  EXPECT_EQ(battery->voltage, 12000);
  EXPECT_EQ(battery->cycleCount, 7);
  answers.information.fullChargedCapacity = 0;
  EXPECT_EQ(TranslateBatteryClass(answers)->stateOfCharge, std::nullopt);
  answers.information.fullChargedCapacity = kUnknown;
  EXPECT_EQ(TranslateBatteryClass(answers)->stateOfCharge, std::nullopt);
  answers.information.fullChargedCapacity = 90;
  answers.status.capacity = kUnknown;
  EXPECT_EQ(TranslateBatteryClass(answers)->stateOfCharge, std::nullopt);
}

TEST(BatteryClass, OnlyTheComputersOwnBatteriesCount) {
  BatteryClassAnswers answers = Discharging();
  for (const std::uint32_t capabilities : {0x0U, 0x2U, 0x40000000U, 0xA0000000U, 0x20000000U}) {
    answers.information.capabilities = capabilities;
    EXPECT_FALSE(TranslateBatteryClass(answers)) << capabilities;
  }
}

TEST(BatteryClass, WhatIsMarkedAsUnknownIsNotTold) {
  BatteryClassAnswers answers;
  answers.information = {0x80000000U, kUnknown, kUnknown, 0};
  answers.status = {0, kUnknown, kUnknown, INT32_MIN};
  answers.temperature = 0;
  const auto battery = TranslateBatteryClass(answers);
  ASSERT_TRUE(battery);
  EXPECT_FALSE(battery->designCapacity || battery->fullChargeCapacity || battery->remainingCapacity);
  EXPECT_FALSE(battery->cycleCount || battery->temperature || battery->voltage || battery->power || battery->state);
  EXPECT_FALSE(battery->manufactureDate);
  const auto filled = FillBatteryBlock(*battery);
  EXPECT_EQ(filled.block, firmware::Block{});
  EXPECT_TRUE(filled.deviations.empty());
}

TEST(BatteryClass, AnEmptyBatteryIsNoUnknownOne) {
  BatteryClassAnswers answers = Discharging();
  answers.status.capacity = 0;
  const auto battery = TranslateBatteryClass(answers);
  ASSERT_TRUE(battery && battery->remainingCapacity);
  EXPECT_EQ(battery->remainingCapacity->amount, 0);
  const auto block = FillBatteryBlock(*battery).block;
  EXPECT_EQ(block[0x12], 0xD0) << "initialized, discharging, fully discharged";
}

TEST(BatteryClass, TakesTheStateFromThePowerState) {
  EXPECT_EQ(StateOf(0x4), ChargeState::Charging);
  EXPECT_EQ(StateOf(0x5), ChargeState::Charging);
  EXPECT_EQ(StateOf(0x5, 44110), ChargeState::Charging);
  EXPECT_EQ(StateOf(0x2), ChargeState::Discharging);
  EXPECT_EQ(StateOf(0xA), ChargeState::Discharging) << "and critical";
  EXPECT_EQ(StateOf(0x3, 44110), ChargeState::Discharging) << "on mains power that is too weak";
  EXPECT_EQ(StateOf(0x1), ChargeState::NotCharging);
  EXPECT_EQ(StateOf(0x1, 44109), ChargeState::NotCharging);
  EXPECT_EQ(StateOf(0x1, 44110), ChargeState::Full);
  EXPECT_EQ(StateOf(0x1, 45000), ChargeState::Full);
  EXPECT_EQ(StateOf(0x1, kUnknown), ChargeState::NotCharging);
  EXPECT_EQ(StateOf(0x0), std::nullopt);
  EXPECT_EQ(StateOf(0x8, 44110), std::nullopt);
  BatteryClassAnswers answers = Discharging();
  answers.information.fullChargedCapacity = 0;
  answers.status.powerState = 0x1;
  EXPECT_EQ(TranslateBatteryClass(answers)->state, ChargeState::NotCharging);
}

TEST(BatteryClass, ChargingPowerIsPositive) {
  BatteryClassAnswers answers = Discharging();
  answers.status = {0x5, 30180, 12000, 24000};
  const auto block = FillBatteryBlock(*TranslateBatteryClass(answers)).block;
  EXPECT_EQ(block[0x0E] + 256 * block[0x0F], 2000);
  EXPECT_EQ(block[0x12], 0x80) << "initialized";
}

TEST(BatteryClass, ADateThatIsNoneIsNotTold) {
  for (const auto& date :
       {BatteryClassAnswers::ManufactureDate{0, 3, 2021}, {32, 3, 2021}, {17, 0, 2021}, {17, 13, 2021}}) {
    BatteryClassAnswers answers = Discharging();
    answers.manufactureDate = date;
    EXPECT_FALSE(TranslateBatteryClass(answers)->manufactureDate) << int{date.day} << "." << int{date.month};
  }
  BatteryClassAnswers answers = Discharging();
  for (const auto& date : {BatteryClassAnswers::ManufactureDate{1, 1, 2021}, {31, 12, 2021}}) {
    answers.manufactureDate = date;
    const auto found = TranslateBatteryClass(answers)->manufactureDate;
    ASSERT_TRUE(found);
    EXPECT_EQ(found->day, date.day);
    EXPECT_EQ(found->month, date.month);
    EXPECT_EQ(found->year, 2021);
  }
}

}  // namespace
}  // namespace norv::test
