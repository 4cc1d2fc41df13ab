// The states of fields: what a block holds that is no value.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "Reader.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/TestBlock.h"

namespace norv::test::c {
namespace {

Value Read(const TestBlock& block, std::int32_t field) {
  const Decoded record(block.Data());
  return ReadField(record.Get(), field);
}

int State(const TestBlock& block, std::int32_t field) {
  return Read(block, field).value.state;
}

TEST(CInterfaceStates, AHealthyBlockHasValuesOnly) {
  TestBlock cellSwell;
  cellSwell.Word(12, 0xABCD);
  const Decoded record(HealthyBlock().StatusWord(0x00C0).Data(), cellSwell.Data());
  for (std::int32_t field = 1; field <= norv_battery_field_count(); ++field) {
    const norv_battery_description description = Describe(field);
    const bool isOfBlock = description.source == NORV_BATTERY_FROM_INFORMATION_BLOCK ||
                           description.source == NORV_BATTERY_FROM_CELL_SWELL_BLOCK;
    // Nothing of this machine gets into a decoded record.
    EXPECT_EQ(ReadField(record.Get(), field).value.state, isOfBlock ? NORV_BATTERY_VALUE : NORV_BATTERY_ABSENT)
        << description.name;
  }
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_LEVEL_A_TIME).value.number, 0xABCD);
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_VALID).value.number, 1);
}

TEST(CInterfaceStates, EmptyTextsAreAbsent) {
  const TestBlock empty;
  EXPECT_EQ(State(empty, NORV_BATTERY_MANUFACTURER), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_SERIAL_NUMBER), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_DEVICE_NAME), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_CT_NUMBER), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_CALIBRATION_TYPE), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_AGE), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_TIME_CHARGE), NORV_BATTERY_ABSENT);
  EXPECT_EQ(State(empty, NORV_BATTERY_TEST_RESULT), NORV_BATTERY_ABSENT);
  EXPECT_EQ(Read(empty, NORV_BATTERY_TEST_RESULT).value.number, -1);
}

TEST(CInterfaceStates, PartsOfAShortCtNumberAreAbsent) {
  const TestBlock block = HealthyBlock().CtNumber("6ABCD");
  EXPECT_EQ(State(block, NORV_BATTERY_CT_ASSEMBLY), NORV_BATTERY_VALUE);
  EXPECT_EQ(Read(block, NORV_BATTERY_CT_ASSEMBLY).text, "6ABC");
  EXPECT_EQ(State(block, NORV_BATTERY_CT_REVISION), NORV_BATTERY_ABSENT);
  EXPECT_EQ(Read(block, NORV_BATTERY_CT_REVISION).text, "NA");
  // Six characters are enough for the supplier to exist, and leave nothing for it.
  EXPECT_EQ(State(HealthyBlock().CtNumber("6ABCDE"), NORV_BATTERY_CT_SUPPLIER), NORV_BATTERY_ABSENT);
}

TEST(CInterfaceStates, CodesWithoutAMeaningAreUnknown) {
  const TestBlock block = HealthyBlock().Manufacturer("9z9-zz-zz-A");
  for (const std::int32_t field : {NORV_BATTERY_WARRANTY_TYPE, NORV_BATTERY_PACK_SUPPLIER, NORV_BATTERY_CELL_SUPPLIER,
                                   NORV_BATTERY_DESIGN_CYCLE_COUNT}) {
    EXPECT_EQ(State(block, field), NORV_BATTERY_UNKNOWN) << Describe(field).name;
    EXPECT_EQ(Read(block, field).text, "UNKNOWN");
  }
  EXPECT_EQ(State(block, NORV_BATTERY_WARRANTY_DATE), NORV_BATTERY_UNKNOWN);
  EXPECT_EQ(State(block, NORV_BATTERY_OVER_CURRENT_PROTECTION), NORV_BATTERY_UNKNOWN);
  EXPECT_EQ(State(block, NORV_BATTERY_CALIBRATION_TYPE), NORV_BATTERY_VALUE);
  EXPECT_EQ(State(HealthyBlock().DesignCapacity(0), NORV_BATTERY_OVER_CURRENT_PROTECTION), NORV_BATTERY_VALUE);
}

TEST(CInterfaceStates, ReservedStatusErrorCodesAreUnknown) {
  EXPECT_EQ(State(HealthyBlock().StatusWord(7), NORV_BATTERY_STATUS_ERROR_CODE), NORV_BATTERY_VALUE);
  EXPECT_EQ(State(HealthyBlock().StatusWord(8), NORV_BATTERY_STATUS_ERROR_CODE), NORV_BATTERY_UNKNOWN);
}

TEST(CInterfaceStates, ADateThatDoesNotExistIsInvalidAndItsBytesStay) {
  const Decoded record(HealthyBlock().PackedDate(0x1FE0).Data());  // month 15, day 0
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_MANUFACTURING_DATE).value.state, NORV_BATTERY_INVALID);
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_MANUFACTURING_DATE).text, "");
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_WARRANTY_DATE).value.state, NORV_BATTERY_INVALID);
  EXPECT_EQ(ReadBytes(record.Get(), NORV_BATTERY_MANUFACTURING_DATE), (std::vector<std::uint8_t>{0xE0, 0x1F}));
  // The other fields are as good as ever.
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_CT_NUMBER).text, "6ABCDEFGH12345");
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_WARRANTY_TYPE).value.state, NORV_BATTERY_VALUE);
}

TEST(CInterfaceStates, ADivisorOfZeroIsInvalid) {
  const TestBlock block = HealthyBlock().DesignCapacity(0).FullChargeCapacity(0);
  EXPECT_EQ(State(block, NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE), NORV_BATTERY_INVALID);
  EXPECT_EQ(State(block, NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE), NORV_BATTERY_INVALID);
  EXPECT_EQ(Read(block, NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE).value.real, -2147483.75);
  EXPECT_EQ(State(block, NORV_BATTERY_DESIGN_CAPACITY), NORV_BATTERY_VALUE);
}

TEST(CInterfaceStates, AFigureTooLargeIsInvalid) {
  const TestBlock block = HealthyBlock().DesignCapacity(1).FullChargeCapacity(65535);
  EXPECT_EQ(State(block, NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE), NORV_BATTERY_INVALID);
}

TEST(CInterfaceStates, ADeviceNameOfOtherCharactersIsInvalid) {
  const Decoded record(HealthyBlock().DeviceName("BAT-1").Data());
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_DEVICE_NAME).value.state, NORV_BATTERY_INVALID);
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_DEVICE_NAME).text, "");
  EXPECT_EQ(ReadBytes(record.Get(), NORV_BATTERY_DEVICE_NAME),
            (std::vector<std::uint8_t>{'B', 'A', 'T', '-', '1', 0, 0}));
}

TEST(CInterfaceStates, ASerialNumberWithoutADateHasNoAge) {
  const TestBlock tooShort = HealthyBlock().SerialNumber("SN 2019-05-06");
  EXPECT_EQ(State(tooShort, NORV_BATTERY_AGE), NORV_BATTERY_INVALID);
  EXPECT_EQ(Read(tooShort, NORV_BATTERY_AGE).value.number, -1);
  EXPECT_EQ(State(HealthyBlock().SerialNumber("0123456789ABCDEF"), NORV_BATTERY_AGE), NORV_BATTERY_INVALID);
}

TEST(CInterfaceStates, ReadingAFieldDoesNotChangeAnother) {
  const Decoded record(HealthyBlock().SerialNumber("0123456789ABCDEF").Data());
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_VALID).value.number, 1);
    EXPECT_EQ(FieldFailure(record.Get(), NORV_BATTERY_VALID), Failure());
    EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_AGE).value.state, NORV_BATTERY_INVALID);
    EXPECT_EQ(FieldFailure(record.Get(), NORV_BATTERY_AGE),
              (Failure{NORV_BATTERY_WRONG_VALUE, -1, "Invalid battery serial number", "int",
                       "norv::shared::battery::NorvBatteryInfo::GetAge"}));
  }
}

TEST(CInterfaceStates, AnAgeDoesNotCarryTheDefectThatValidityFinds) {
  const Decoded record(HealthyBlock().CtNumber("short").Data());
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_VALID).value.number, 0);
  EXPECT_EQ(FieldFailure(record.Get(), NORV_BATTERY_VALID),
            (Failure{NORV_BATTERY_WRONG_VALUE, -1, "Invalid battery CT number", "int", ""}));
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_AGE).value.state, NORV_BATTERY_VALUE);
  EXPECT_EQ(FieldFailure(record.Get(), NORV_BATTERY_AGE), Failure());
}

TEST(CInterfaceStates, BytesAboveAsciiAreTheCharactersOfTheirNumbers) {
  EXPECT_EQ(Read(HealthyBlock().Manufacturer("A\xE4\x80"), NORV_BATTERY_MANUFACTURER).text, "A\xC3\xA4\xC2\x80");
}

TEST(CInterfaceStates, CellSwellBytesAreReadFromTheirOwnBlock) {
  TestBlock cellSwell;
  cellSwell.Word(26, 0x1234);
  const Decoded record(HealthyBlock().Data(), cellSwell.Data());
  EXPECT_EQ(ReadBytes(record.Get(), NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME), (std::vector<std::uint8_t>{0x34, 0x12}));
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME).value.number, 0x1234);
}

// A battery that the system's driver told a few words of: bytes 0x02 to 0x05 and 0x12 to 0x13 of the block.
constexpr const char* kPartlyToldMachine = R"({
  "description": "A driver's battery", "source": "a driver",
  "slots": [{"battery": {"fullChargeCapacity": 4000, "remainingCapacity": 1000, "batteryStatus": 64},
             "driver": {"told": "3c003000000000000000000000000000"}}, null]})";

TEST(CInterfaceStates, WhatTheSourceDidNotTellIsNoValue) {
  const auto machine = simulator::SimulatedMachine::FromText(kPartlyToldMachine, "told");
  const Collection collection;
  const norv_battery_record* const record = collection.Record(0);
  const auto state = [record](std::int32_t field) { return ReadField(record, field).value.state; };
  for (const std::int32_t told :
       {NORV_BATTERY_FULL_CHARGE_CAPACITY, NORV_BATTERY_REMAINING_CAPACITY, NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE,
        NORV_BATTERY_DISCHARGING, NORV_BATTERY_FULLY_CHARGED}) {
    EXPECT_EQ(state(told), NORV_BATTERY_VALUE) << told;
  }
  for (const std::int32_t notTold :
       {NORV_BATTERY_MANUFACTURER, NORV_BATTERY_DESIGN_CAPACITY, NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE,
        NORV_BATTERY_CURRENT, NORV_BATTERY_CHARGE_RATE, NORV_BATTERY_CELL_VOLTAGE_1, NORV_BATTERY_STATUS_WORD,
        NORV_BATTERY_STATUS_ERROR_CODE, NORV_BATTERY_INITIALIZED, NORV_BATTERY_WARRANTY_TYPE, NORV_BATTERY_AGE,
        NORV_BATTERY_OVER_CURRENT_PROTECTION, NORV_BATTERY_CT_ASSEMBLY, NORV_BATTERY_BATTERY_CARE,
        NORV_BATTERY_TIME_CHARGE, NORV_BATTERY_VALID}) {
    EXPECT_EQ(state(notTold), NORV_BATTERY_NOT_TOLD) << notTold;
  }
  EXPECT_EQ(ReadField(record, NORV_BATTERY_DESIGN_CAPACITY).value.number, 0);
}

// A channel of the host's has a block of its own, of which the machine's driver knows nothing.
TEST(CInterfaceStates, AHostsChannelTellsAll) {
  const auto machine = simulator::SimulatedMachine::FromText(kPartlyToldMachine, "told");
  static const TestBlock block = HealthyBlock();
  auto options = Sized<norv_battery_options>();
  options.channel = [](void*, std::uint32_t, std::uint32_t, std::uint32_t, const std::uint8_t* input, std::uint32_t,
                       std::uint8_t* output, std::uint32_t* returnCode) {
    *returnCode = input[0] == 0 ? 0 : 6;
    std::copy_n(block.Data(), 128, output);
    return 0;
  };
  const Collection collection(&options);
  EXPECT_EQ(ReadField(collection.Record(0), NORV_BATTERY_VALID).value.state, NORV_BATTERY_VALUE);
  EXPECT_EQ(ReadField(collection.Record(0), NORV_BATTERY_DESIGN_CAPACITY).value.state, NORV_BATTERY_VALUE);
}

// The description that hosts of the first version know ended with the unit.
TEST(CInterfaceStates, ADescriptionOfTheFirstVersionIsStillServed) {
  auto description = Sized<norv_battery_description>();
  std::fill_n(description.key, sizeof description.key, 'x');
  description.size = offsetof(norv_battery_description, key);
  ASSERT_EQ(norv_battery_describe_field(NORV_BATTERY_VOLTAGE, &description), NORV_BATTERY_OK);
  EXPECT_STREQ(description.name, "voltage");
  EXPECT_EQ(description.size, offsetof(norv_battery_description, key));
  EXPECT_EQ(std::string(description.key, sizeof description.key), std::string(sizeof description.key, 'x'));
  const norv_battery_description whole = Describe(NORV_BATTERY_CELL_VOLTAGE_2);
  EXPECT_STREQ(whole.key, "voltages[1]");
  EXPECT_STREQ(whole.group, "cells");
  EXPECT_STREQ(whole.label, "Cell 2 voltage");
}

}  // namespace
}  // namespace norv::test::c
