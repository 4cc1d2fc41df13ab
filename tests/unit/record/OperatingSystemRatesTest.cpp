// The charge and discharge rates of the operating system.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "battery/NorvBatteryInfo.h"
#include "norv/simulator/FaultInjector.h"
#include "norv/simulator/SimulatedMachine.h"
#include "record/RecordMaker.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;
using simulator::Operation;
using testing::ElementsAre;
using testing::IsEmpty;

struct Reading {
  unsigned int charge;
  unsigned int discharge;
  std::vector<Operation> operations;
};

// The rates that a record finds on a machine with these rows, or with anything else in the class's place.
Reading Read(const std::string& batteryStatus, const std::string& faults = "[]") {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "wmi": {"\\\\.\\root\\wmi": {"BatteryStatus": )" + batteryStatus +
          R"(}}, "faults": )" + faults + "}",
      "here");
  NorvBatteryInfo info(TestBlock().Data());
  EXPECT_FALSE(info.GetError()) << "no failure of the rates is reported";
  return {info.GetBatteryChargeRate(), info.GetBatteryDischargeRate(), machine->Operations()};
}

TEST(OperatingSystemRates, AreReadFromTheClassBatteryStatus) {
  const Reading reading = Read(R"([{"ChargeRate": 1200, "DischargeRate": 3}])");
  EXPECT_EQ(reading.charge, 1200U);
  EXPECT_EQ(reading.discharge, 3U);
  EXPECT_THAT(reading.operations,
              ElementsAre(Operation{"ConnectWmi", "\\\\.\\root\\wmi"},
                          Operation{"Query", "SELECT * FROM BatteryStatus"}, Operation{"Next", ""},
                          Operation{"ReadNumber", "ChargeRate"}, Operation{"ReadNumber", "DischargeRate"}));
}

TEST(OperatingSystemRates, StopAfterTwoReadsOfOneObject) {
  const Reading reading = Read(R"([{"ChargeRate": 1, "DischargeRate": 2}, {"ChargeRate": 3, "DischargeRate": 4}])");
  EXPECT_EQ(reading.charge, 1U);
  EXPECT_EQ(reading.discharge, 2U);
}

TEST(OperatingSystemRates, StopAfterTwoReadsOfTwoObjects) {
  const Reading reading = Read(R"([{"ChargeRate": 1}, {"ChargeRate": 2}, {"ChargeRate": 3, "DischargeRate": 4}])");
  EXPECT_EQ(reading.charge, 2U);
  EXPECT_EQ(reading.discharge, 0U);
}

TEST(OperatingSystemRates, StopAfterTwoReadsOfDifferentProperties) {
  const Reading reading = Read(R"([{"DischargeRate": 5}, {}, {"ChargeRate": 6}, {"ChargeRate": 7}])");
  EXPECT_EQ(reading.charge, 6U);
  EXPECT_EQ(reading.discharge, 5U);
}

TEST(OperatingSystemRates, OneReadThenTwoNeverMakeTwo) {
  const Reading reading =
      Read(R"([{"ChargeRate": 1}, {"ChargeRate": 2, "DischargeRate": 3}, {"DischargeRate": 4}, {"ChargeRate": 5}])");
  EXPECT_EQ(reading.charge, 5U);
  EXPECT_EQ(reading.discharge, 4U);
}

TEST(OperatingSystemRates, AreZeroWithoutObjects) {
  const Reading reading = Read("[]");
  EXPECT_EQ(reading.charge, 0U);
  EXPECT_EQ(reading.discharge, 0U);
}

TEST(OperatingSystemRates, AreZeroWhenTheQueryFails) {
  const Reading reading = Read(R"({"queryFails": 5})");
  EXPECT_EQ(reading.charge, 0U);
  EXPECT_THAT(reading.operations, ElementsAre(Operation{"ConnectWmi", "\\\\.\\root\\wmi"},
                                              Operation{"Query", "SELECT * FROM BatteryStatus"}));
}

TEST(OperatingSystemRates, AreZeroWithoutTheNamespace) {
  const auto machine = simulator::SimulatedMachine::FromText(R"({"description": "test"})", "here");
  NorvBatteryInfo info(TestBlock().Data());
  EXPECT_EQ(info.GetBatteryChargeRate(), 0U);
  EXPECT_EQ(info.GetBatteryDischargeRate(), 0U);
}

TEST(OperatingSystemRates, AreConverted) {
  const Reading reading = Read(R"([{"ChargeRate": "17", "DischargeRate": 4294967295}])");
  EXPECT_EQ(reading.charge, 17U);
  EXPECT_EQ(reading.discharge, 4294967295U);
}

TEST(OperatingSystemRates, AFailedConversionIsAFailedRead) {
  const Reading reading = Read(
      R"([{"ChargeRate": "many", "DischargeRate": -1}, {"ChargeRate": null, "DischargeRate": {"fail": 5}},
          {"ChargeRate": 8, "DischargeRate": 9}])");
  EXPECT_EQ(reading.charge, 8U);
  EXPECT_EQ(reading.discharge, 9U);
}

TEST(OperatingSystemRates, AFailedReadLeavesTheRateOfAnEarlierObject) {
  const Reading reading = Read(R"([{"ChargeRate": 1}, {"ChargeRate": "?"}])");
  EXPECT_EQ(reading.charge, 1U);
}

TEST(OperatingSystemRates, AreZeroWhenWmiThrows) {
  for (const char* operation : {"ConnectWmi", "Query", "Next", "ReadNumber"}) {
    const Reading reading = Read(R"([{"ChargeRate": 1}, {"ChargeRate": 2}])",
                                 std::string(R"([{"operation": ")") + operation + R"(", "throws": "runtime_error"}])");
    EXPECT_EQ(reading.charge, 0U) << operation;
  }
}

TEST(OperatingSystemRates, AreNotAskedForWhereTheyAreGiven) {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "wmi": {"\\\\.\\root\\wmi": {"BatteryStatus": [{"ChargeRate": 7}]}}})", "here");
  const auto record = shared::battery::record::RecordMaker::Make(TestBlock().Word(0x08, 12).Data(), {3, 4});
  EXPECT_EQ(record->GetBatteryChargeRate(), 3U);
  EXPECT_EQ(record->GetBatteryDischargeRate(), 4U);
  EXPECT_EQ(record->GetCycleCount(), 12);
  EXPECT_THAT(machine->Operations(), IsEmpty());
}

TEST(OperatingSystemRates, LackOfMemoryIsNotHidden) {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "faults": [{"operation": "ConnectWmi", "throws": "bad_alloc"}]})", "here");
  EXPECT_THROW(NorvBatteryInfo(TestBlock().Data()), std::bad_alloc);
}

}  // namespace
}  // namespace norv::test
