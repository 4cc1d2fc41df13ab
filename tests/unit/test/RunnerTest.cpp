// Running the battery test, and what the collection makes of its verdict.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/ScriptedChannel.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryTestInfo;
using shared::error::ErrorCategory;
using simulator::Operation;
using simulator::SimulatedMachine;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::Not;

constexpr const char* kRun = "norv::shared::battery::NorvBatteryTestInfo::RunBatteryTest";
constexpr const char* kVersion = "norv::shared::battery::NorvBatteryTestInfo::RetrieveTestResultVersion";
constexpr const char* kTake = "norv::shared::battery::NorvBatteries::RunBatteryTest";
constexpr const char* kConstructor = "norv::shared::battery::NorvBatteries::NorvBatteries";
constexpr const char* kProgram = "C:\\Program Files\\Norv\\BatteryTest.exe";
constexpr const char* kNotSupported = "Battery Test Error - Battery is not supported";

std::unique_ptr<SimulatedMachine> Machine(const std::string& more) {
  return SimulatedMachine::FromText(
      R"({"description": "test", "modulePath": "C:\\Program Files\\Norv\\norv-battery-info.dll", "systemMessages": {"2": "No file.\r\n", "1812": "No version.\r\n"}, )" +
          more + "}",
      "here");
}

std::unique_ptr<SimulatedMachine> MachineWithReport(const std::string& report) {
  return Machine(R"("testProgram": {"version": "1.2.3.4", "report": )" + report + "}");
}

TEST(Runner, KeepsVersionAndStatus) {
  LogCapture log;  // before the machine: the first one of a process asks the current platform for the module's name
  const auto machine = MachineWithReport(R"("<r i=\"6\">5</r>")");
  NorvBatteryTestInfo info;
  info.RunBatteryTest();
  EXPECT_EQ(info.GetBatteryTestResult(), 5);
  EXPECT_STREQ(info.GetBatteryTestResultLabel(), "OK_LOW_AMBIENT_TEMP");
  EXPECT_STREQ(info.GetBatteryTestVersion(), "1.2.3.4");
  EXPECT_FALSE(info.GetError());
  EXPECT_THAT(log.Lines(), ElementsAre(LogLine{plog::info, kRun, std::string("Started ") + kRun + " "},
                                       LogLine{plog::info, kRun, std::string("BatteryTest exe path = ") + kProgram},
                                       LogLine{plog::info, kRun, "battery_status = 5"},
                                       LogLine{plog::info, kRun, std::string("Finished ") + kRun + " "}));
  EXPECT_THAT(machine->Operations(),
              ElementsAre(Operation{"LibraryPath", ""}, Operation{"ReadProductVersion", kProgram},
                          Operation{"RunProgram", kProgram}, Operation{"ProgramDataFolder", ""}));
}

TEST(Runner, WithoutAProgramNothingIsStarted) {
  const auto machine = Machine(R"("testProgram": null)");
  NorvBatteryTestInfo info;
  LogCapture log;
  info.RunBatteryTest();
  EXPECT_EQ(info.GetBatteryTestResult(), -1);
  EXPECT_STREQ(info.GetBatteryTestVersion(), "0.0.0.0");
  EXPECT_TRUE(
      IsError(info.GetError(), ErrorCategory::Value, 0, "Error getting version of BatteryTest.exe", "int", kRun));
  EXPECT_THAT(machine->Operations(), Not(Contains(Field(&Operation::name, "RunProgram"))));
  const shared::error::Error versionError(ErrorCategory::SystemMessage, 2, "No file.\r\n", "long", kVersion);
  EXPECT_THAT(log.Lines(), ElementsAre(LogLine{plog::info, kRun, std::string("Started ") + kRun + " "},
                                       LogLine{plog::info, kRun, std::string("BatteryTest exe path = ") + kProgram},
                                       LogLine{plog::error, kVersion, TextForm(versionError)},
                                       LogLine{plog::error, kRun, TextForm(info.GetError())},
                                       LogLine{plog::info, kRun, "battery_status = -1"},
                                       LogLine{plog::info, kRun, std::string("Finished ") + kRun + " "}));
}

TEST(Runner, WithoutAVersionNothingIsStarted) {
  const auto machine = Machine(R"("testProgram": {"version": null, "status": 0})");
  NorvBatteryTestInfo info;
  info.RunBatteryTest();
  EXPECT_EQ(info.GetBatteryTestResult(), -1);
  EXPECT_STREQ(info.GetBatteryTestVersion(), "0.0.0.0");
  EXPECT_STREQ(info.GetError().GetMessageText(), "Error getting version of BatteryTest.exe");
  EXPECT_THAT(machine->Operations(), Not(Contains(Field(&Operation::name, "RunProgram"))));
}

TEST(Runner, AProgramThatCannotBeStartedHasAVersionAllTheSame) {
  const auto machine = Machine(R"("testProgram": {"version": "7.8.9.65535", "startFails": 193})");
  NorvBatteryTestInfo info;
  LogCapture log;
  info.RunBatteryTest();
  EXPECT_EQ(info.GetBatteryTestResult(), -1);
  EXPECT_STREQ(info.GetBatteryTestVersion(), "7.8.9.65535");
  EXPECT_TRUE(
      IsError(info.GetError(), ErrorCategory::Value, 0, "Error parsing the BatteryTest XML report", "int", kRun));
  EXPECT_THAT(log.Lines(), Contains(LogLine{plog::error, kRun, TextForm(info.GetError())}));
  EXPECT_THAT(log.Lines(), Contains(LogLine{plog::info, kRun, "battery_status = -1"}));
}

TEST(Runner, AReportThatSaysNothingIsNoFailureOfTheRunner) {
  for (const char* report : {"null", R"("<r i=\"5\">1</r>")", R"("<r i=\"6\"></r>")", R"("<r i=\"6\">x</r>")"}) {
    const auto machine = MachineWithReport(report);
    NorvBatteryTestInfo info;
    LogCapture log;
    info.RunBatteryTest();
    EXPECT_EQ(info.GetBatteryTestResult(), -1) << report;
    EXPECT_STREQ(info.GetBatteryTestVersion(), "1.2.3.4");
    EXPECT_FALSE(info.GetError()) << report;
    EXPECT_THAT(log.Lines(), Contains(LogLine{plog::info, kRun, "battery_status = -1"}));
  }
}

TEST(Runner, StoresTheStatusAsItIs) {
  for (const int status : {0, 73, 150, -7, -1}) {
    const auto machine = Machine(R"("testProgram": {"version": "1.2.3.4", "status": )" + std::to_string(status) + "}");
    NorvBatteryTestInfo info;
    info.RunBatteryTest();
    EXPECT_EQ(info.GetBatteryTestResult(), status);
    EXPECT_FALSE(info.GetError());
  }
}

TEST(Runner, RunsAgain) {
  NorvBatteryTestInfo info;
  {
    const auto machine = Machine(R"("testProgram": {"version": "1.2.3.4", "status": 0})");
    info.RunBatteryTest();
  }
  {
    const auto machine = Machine(R"("testProgram": null)");
    info.RunBatteryTest();
    EXPECT_EQ(info.GetBatteryTestResult(), -1);
    EXPECT_STREQ(info.GetBatteryTestVersion(), "1.2.3.4") << "only a successful read changes it";
  }
  const auto machine = Machine(R"("testProgram": {"version": "5.6.7.8", "status": 32})");
  info.RunBatteryTest();
  EXPECT_EQ(info.GetBatteryTestResult(), 32);
  EXPECT_STREQ(info.GetBatteryTestVersion(), "5.6.7.8");
  EXPECT_TRUE(info.GetError()) << "a success clears no error";
}

std::string ProgramPathFor(const std::string& modulePath) {
  std::string json = modulePath;
  for (std::size_t position = 0; (position = json.find('\\', position)) != std::string::npos; position += 2) {
    json.insert(position, 1, '\\');
  }
  const auto machine = SimulatedMachine::FromText(R"({"description": "test", "modulePath": ")" + json + "\"}", "here");
  NorvBatteryTestInfo info;
  info.RunBatteryTest();
  for (const Operation& operation : machine->Operations()) {
    if (operation.name == "ReadProductVersion") {
      return operation.argument;
    }
  }
  return "not asked";
}

TEST(Runner, LooksBesideTheLibrary) {
  EXPECT_EQ(ProgramPathFor("C:\\a\\b.dll"), "C:\\a\\BatteryTest.exe");
  EXPECT_EQ(ProgramPathFor("/usr/lib/b.so"), "/usr/lib\\BatteryTest.exe");
  EXPECT_EQ(ProgramPathFor("C:\\a/b.dll"), "C:\\a\\BatteryTest.exe");
  EXPECT_EQ(ProgramPathFor("C:/a\\b.dll"), "C:/a\\BatteryTest.exe");
  EXPECT_EQ(ProgramPathFor("b.dll"), "b.dll\\BatteryTest.exe");
}

TEST(Runner, CutsAPathThatIsTooLong) {
  const std::string folder = "C:\\" + std::string(250, 'x');
  EXPECT_EQ(ProgramPathFor(folder + "\\" + std::string(100, 'y') + "\\b.dll"), folder + "\\BatteryTest.exe");
  const std::string longFolder = "C:\\" + std::string(300, 'x');
  EXPECT_EQ(ProgramPathFor(longFolder + "\\b.dll"), "C:\\BatteryTest.exe");
  const std::string justShortEnough = "C:\\" + std::string(255, 'x');
  EXPECT_EQ(ProgramPathFor(justShortEnough + "\\b.dll"), justShortEnough + "\\BatteryTest.exe");
  EXPECT_EQ(ProgramPathFor(justShortEnough + "x\\b.dll"), "C:\\BatteryTest.exe");
}

// What lies in the folder that is left of the path is not the library's.
TEST(Runner, RunsNothingByAPathThatWasCut) {
  class Trusting : public NorvBatteryTestInfo {
   protected:
    bool RetrieveTestResultVersion(const char* /*programPath*/) override { return true; }
  };
  for (const std::string& modulePath : {"C:/" + std::string(300, 'x') + "/b.dll", std::string()}) {
    const auto machine = SimulatedMachine::FromText(
        R"({"description": "test", "testProgram": {"version": "1.2.3.4", "status": 0}, "modulePath": ")" + modulePath +
            "\"}",
        "here");
    Trusting info;
    LogCapture log;
    info.RunBatteryTest();
    EXPECT_TRUE(
        IsError(info.GetError(), ErrorCategory::Value, 0, "Error parsing the BatteryTest XML report", "int", kRun));
    EXPECT_THAT(machine->Operations(), Not(Contains(Field(&Operation::name, "RunProgram"))));
    EXPECT_THAT(
        log.Lines(),
        Contains(LogLine{plog::error, kRun,
                         std::string("BatteryTest.exe is not started: ") +
                             (modulePath.empty() ? "the path of the library is not known, or names another file by now"
                                                 : "the path of the library is longer than 259 characters")}));
  }
}

TEST(Runner, ReadsTheVersionThroughTheVirtualTable) {
  class Own : public NorvBatteryTestInfo {
   public:
    std::string asked;

   protected:
    bool RetrieveTestResultVersion(const char* programPath) override {
      asked = programPath;
      return true;
    }
  };
  const auto machine = Machine(R"("testProgram": {"version": null, "status": 48})");
  Own info;
  info.RunBatteryTest();
  EXPECT_EQ(info.asked, kProgram);
  EXPECT_EQ(info.GetBatteryTestResult(), 48);
  EXPECT_STREQ(info.GetBatteryTestVersion(), "0.0.0.0");
}

void RunWithThrowing(const char* operation, const char* thrown, NorvBatteryTestInfo& info) {
  const auto machine =
      Machine(std::string(R"("testProgram": {"version": "1.2.3.4", "status": 0}, "faults": [{"operation": ")") +
              operation + R"(", "throws": ")" + thrown + R"("}])");
  EXPECT_NO_THROW(info.RunBatteryTest());
  EXPECT_EQ(info.GetBatteryTestResult(), -1);
}

TEST(Runner, NoExceptionLeavesARun) {
  for (const char* operation : {"LibraryPath", "ReadProductVersion"}) {
    NorvBatteryTestInfo info;
    RunWithThrowing(operation, "runtime_error", info);
    EXPECT_TRUE(
        IsError(info.GetError(), ErrorCategory::StandardException, 1, "injected fault", "std::runtime_error", kRun))
        << operation;
  }
}

TEST(Runner, AProgramWhoseStartThrowsCouldNotBeStarted) {
  NorvBatteryTestInfo info;
  RunWithThrowing("RunProgram", "runtime_error", info);
  EXPECT_TRUE(
      IsError(info.GetError(), ErrorCategory::Value, 0, "Error parsing the BatteryTest XML report", "int", kRun));
}

TEST(Runner, WhatTheReportsReadingThrowsIsNoFailureOfTheRunners) {
  for (const char* thrown : {"runtime_error", "bad_alloc", "int"}) {
    NorvBatteryTestInfo info;
    RunWithThrowing("ProgramDataFolder", thrown, info);
    EXPECT_FALSE(info.GetError()) << thrown;
  }
}

TEST(RunnerCopies, ShareTheVersionText) {
  NorvBatteryTestInfo source;
  const NorvBatteryTestInfo copied(source);
  NorvBatteryTestInfo assigned;
  assigned = source;
  const auto machine = Machine(R"("testProgram": {"version": "1.2.3.4", "status": 0})");
  source.RunBatteryTest();
  EXPECT_STREQ(copied.GetBatteryTestVersion(), "1.2.3.4");
  EXPECT_STREQ(assigned.GetBatteryTestVersion(), "1.2.3.4");
  EXPECT_EQ(copied.GetBatteryTestResult(), -1) << "the result is each one's own";
}

TEST(RunnerCopies, OutliveTheirSource) {
  auto source = std::make_unique<NorvBatteryTestInfo>();
  const auto machine = Machine(R"("testProgram": {"version": "1.2.3.4", "status": 0})");
  source->RunBatteryTest();
  const NorvBatteryTestInfo copy(*source);
  source.reset();
  EXPECT_STREQ(copy.GetBatteryTestVersion(), "1.2.3.4");
  EXPECT_EQ(copy.GetBatteryTestResult(), 0);
}

// --- the collection's part -------------------------------------------------------------------------------------------

class Verdict : public NorvBatteryTestInfo {
 public:
  explicit Verdict(int result) : code(result) {}
  int GetBatteryTestResult() const override { return code; }
  void RunBatteryTest() override { ++runs; }

  int code;
  int runs = 0;
};

ScriptedChannel* ChannelWithBatteries(bool first = true) {
  auto* channel = new ScriptedChannel;
  if (first) {
    channel->Battery(0, HealthyBlock());
  }
  channel->Battery(1, HealthyBlock());
  return channel;
}

TEST(CollectionTestStep, HandsTheVerdictToTheFirstBattery) {
  for (const int code : {0, 73, 255, -2}) {
    auto* verdict = new Verdict(code);
    LogCapture log;
    NorvBatteries batteries(false, true, ChannelWithBatteries(), verdict);
    EXPECT_EQ(verdict->runs, 1);
    EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), code);
    EXPECT_EQ(batteries.Query(1)->GetBatteryTestResult(), -1) << "never the second";
    EXPECT_STREQ(batteries.Query(1)->GetBatteryTestResultLabel(), "");
    EXPECT_FALSE(batteries.GetError());
    EXPECT_THAT(log.Lines(), Contains(LogLine{plog::info, kTake, std::string("Started ") + kTake}));
    EXPECT_THAT(log.Lines(), Contains(LogLine{plog::info, kTake, std::string("Finished ") + kTake + " "}));
    verdict->code = 96;
    EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), 96) << "the record refers to the object";
  }
}

TEST(CollectionTestStep, WithoutAVerdictNothingIsHandedOver) {
  LogCapture log;
  NorvBatteries batteries(false, true, ChannelWithBatteries(), new Verdict(-1));
  EXPECT_STREQ(batteries.Query(0)->GetBatteryTestResultLabel(), "") << "no test object, rather than NOT_DEFINED";
  EXPECT_TRUE(IsError(batteries.GetError(), ErrorCategory::Value, -1, kNotSupported, "int", kTake));
  EXPECT_THAT(log.Lines(), Contains(LogLine{plog::error, kTake, TextForm(batteries.GetError())}));
  EXPECT_THAT(log.Lines(), Contains(LogLine{plog::error, kConstructor, "Error running the battery test"}));
  EXPECT_EQ(log.Count(std::string("Finished ") + kTake + " "), 0U);
}

TEST(CollectionTestStep, SucceedsWithoutAFirstBattery) {
  LogCapture log;
  NorvBatteries batteries(false, true, ChannelWithBatteries(false), new Verdict(0));
  EXPECT_TRUE(batteries.RunBatteryTest());
  EXPECT_EQ(log.Count("Error running the battery test"), 0U);
  EXPECT_EQ(batteries.Query(1)->GetBatteryTestResult(), -1);
}

TEST(CollectionTestStep, CanBeRepeated) {
  auto* verdict = new Verdict(-1);
  NorvBatteries batteries(false, true, ChannelWithBatteries(), verdict);
  verdict->code = 3;
  EXPECT_TRUE(batteries.RunBatteryTest());
  EXPECT_EQ(verdict->runs, 1) << "taking the verdict over runs nothing";
  EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), 3);
  EXPECT_STREQ(batteries.GetError().GetMessageText(), kNotSupported) << "a success clears no error";
  verdict->code = -1;
  EXPECT_FALSE(batteries.RunBatteryTest());
}

TEST(CollectionTestStep, UsesItsOwnTestObjectWithoutTheHosts) {
  const auto machine = SimulatedMachine::FromText(
      R"({"description": "test", "slots": [{"battery": {}}], "testProgram": {"version": "1.2.3.4", "status": 64}})",
      "here");
  NorvBatteries batteries(false, true, nullptr, nullptr);
  EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), 64);
  EXPECT_STREQ(batteries.Query(0)->GetBatteryTestResultLabel(), "FAIL_BAD_CELL");
  EXPECT_STREQ(batteries.Query(0)->GetBatteryTestVersion(), "1.2.3.4");
}

TEST(CollectionTestStep, EveryFailedRunReachesTheCollectionAsTheSame) {
  for (const char* program : {"null", R"({"version": null})", R"({"version": "1.2.3.4", "startFails": 5})",
                              R"({"version": "1.2.3.4", "report": null})", R"({"version": "1.2.3.4", "report": ""})"}) {
    const auto machine = SimulatedMachine::FromText(
        std::string(R"({"description": "test", "slots": [{"battery": {}}], "testProgram": )") + program + "}", "here");
    NorvBatteries batteries(false, true, nullptr, nullptr);
    EXPECT_TRUE(IsError(batteries.GetError(), ErrorCategory::Value, -1, kNotSupported, "int", kTake)) << program;
    EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), -1);
  }
}

TEST(CollectionTestStep, ComesBetweenTheReadsAndTheSettings) {
  const auto machine = SimulatedMachine::FromText(
      R"({"description": "test", "slots": [{"battery": {}}], "testProgram": {"version": "1.2.3.4", "status": 0}})",
      "here");
  NorvBatteries batteries(false, true, nullptr, nullptr);
  std::vector<std::string> order;
  for (const Operation& operation : machine->Operations()) {
    if (operation.name == "SendBiosCommand" || operation.name == "RunProgram" ||
        operation.argument == "\\\\.\\root\\cimv2") {
      order.push_back(operation.name);
    }
  }
  EXPECT_THAT(order, ElementsAre("SendBiosCommand", "SendBiosCommand", "RunProgram", "ConnectWmi"));
}

TEST(CollectionTestStep, AHostsTestObjectThatThrowsCountsAsNoVerdict) {
  class ThrowsInRun : public NorvBatteryTestInfo {
   public:
    int GetBatteryTestResult() const override { return 0; }
    void RunBatteryTest() override { throw std::runtime_error("run"); }
  };
  class ThrowsInResult : public NorvBatteryTestInfo {
   public:
    int GetBatteryTestResult() const override { throw 7; }
    void RunBatteryTest() override {}
  };
  {
    LogCapture log;
    NorvBatteries batteries(false, true, ChannelWithBatteries(), new ThrowsInRun);
    EXPECT_TRUE(IsError(batteries.GetError(), ErrorCategory::StandardException, 1, "run", "std::runtime_error", kTake));
    EXPECT_THAT(log.Messages(plog::error),
                ElementsAre(TextForm(batteries.GetError()), "Error running the battery test"));
    EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), -1) << "no verdict is taken over";
    EXPECT_STREQ(batteries.Query(0)->GetBatteryCareInfo(), "Not supported") << "the steps behind it are done";
  }
  {
    LogCapture log;
    NorvBatteries batteries(false, true, ChannelWithBatteries(), new ThrowsInResult);
    EXPECT_TRUE(IsError(batteries.GetError(), ErrorCategory::Value, 7, "", "int", kTake));
    EXPECT_THAT(log.Messages(plog::error),
                ElementsAre(TextForm(batteries.GetError()), "Error running the battery test"));
    EXPECT_FALSE(batteries.RunBatteryTest());
  }
}

}  // namespace
}  // namespace norv::test
