#include "norv/simulator/OperationRecorder.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "MachineText.h"
#include "norv/simulator/FaultInjector.h"

namespace norv::simulator {

static void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name << " (" << operation.argument << ")";
}

namespace {

// Asks for everything that a platform has, once.
void AskEverything(platform::Platform& platform) {
  char buffer[100];
  platform::ProductVersion version;
  std::unique_ptr<platform::WmiConnection> connection;
  std::string text;
  std::uint32_t number = 0;
  std::tm time{};
  time.tm_year = 121;
  time.tm_mon = 4;
  time.tm_mday = 6;
  Ask(platform, 86, 1);
  platform.ConnectWmi(L"\\\\.\\root\\cimv2", connection);
  connection->Query(L"SELECT * FROM Win32_BIOS");
  connection->Next();
  connection->ReadText(L"Name", text);
  connection->ReadNumber(L"N\u00e4me", number);
  platform.RunProgram("C:\\x.exe");
  platform.ReadProductVersion("C:\\y.exe", version);
  platform.LibraryPath(buffer, sizeof buffer);
  platform.ModuleName();
  platform.ProgramDataFolder();
  platform.FormatSystemMessage(0x80070005, buffer, sizeof buffer);
  platform.LastSystemCode();
  platform.ReportInvalidParameter();
  platform.Now();
  platform.LocalTimeValue(time);
  platform.DescribeSlot(1);
  platform.BatterySource();
}

const std::vector<Operation> kEverything{
    {"SendBiosCommand", "1,86,1 slot 1"},
    {"ConnectWmi", "\\\\.\\root\\cimv2"},
    {"Query", "SELECT * FROM Win32_BIOS"},
    {"Next", ""},
    {"ReadText", "Name"},
    {"ReadNumber", "N\xC3\xA4me"},
    {"RunProgram", "C:\\x.exe"},
    {"ReadProductVersion", "C:\\y.exe"},
    {"LibraryPath", ""},
    {"ModuleName", ""},
    {"ProgramDataFolder", ""},
    {"FormatSystemMessage", "2147942405"},
    {"LastSystemCode", ""},
    {"ReportInvalidParameter", ""},
    {"Now", ""},
    {"LocalTimeValue", "2021-05-06 00:00:00"},
    {"DescribeSlot", "1"},
    {"DescribeSlot", "0"},  // which is where the source is
};

TEST(OperationRecorder, NotesEverythingInOrder) {
  const auto machine = SimulatedMachine::FromSample("two-batteries");
  OperationRecorder recorder(machine->AsPlatform());
  AskEverything(recorder);
  EXPECT_EQ(recorder.Operations(), kEverything);
  EXPECT_EQ(machine->Operations(), kEverything);
}

TEST(OperationRecorder, HandsAnswersBack) {
  const auto machine = SimulatedMachine::FromSample("two-batteries");
  OperationRecorder recorder(machine->AsPlatform());
  EXPECT_EQ(Ask(recorder, 7, 0).output, Ask(machine->AsPlatform(), 7, 0).output);
  EXPECT_EQ(recorder.ModuleName(), L"norv-battery-info.dll");
  EXPECT_EQ(recorder.Now(), 1717243200);
  char buffer[100];
  EXPECT_EQ(recorder.FormatSystemMessage(5, buffer, sizeof buffer), 19U);
  std::unique_ptr<platform::WmiConnection> connection;
  EXPECT_EQ(recorder.ConnectWmi(L"root\\nowhere", connection), Hresult(0x8004100E));
  EXPECT_EQ(connection, nullptr);
  EXPECT_EQ(recorder.ConnectWmi(L"root\\wmi", connection), 0);
  EXPECT_EQ(connection->Query(L"SELECT * FROM BatteryStatus"), 0);
  EXPECT_TRUE(connection->Next());
  std::uint32_t rate = 0;
  std::string text;
  EXPECT_TRUE(connection->ReadNumber(L"ChargeRate", rate));
  EXPECT_EQ(rate, 11370U);
  EXPECT_EQ(connection->ReadText(L"ChargeRate", text), 0);
  EXPECT_EQ(text, "11370");
}

TEST(OperationRecorder, NotesWhatThrows) {
  const auto machine = MachineWith(R"("faults": [{"operation": "Now", "throws": "int"}])");
  EXPECT_THROW(machine->AsPlatform().Now(), int);
  EXPECT_EQ(machine->Operations(), (std::vector<Operation>{{"Now", ""}}));
}

TEST(OperationRecorder, ForgetsWhenCleared) {
  const auto machine = SimulatedMachine::FromSample("no-battery");
  OperationRecorder recorder(machine->AsPlatform());
  recorder.Now();
  recorder.Clear();
  recorder.ModuleName();
  EXPECT_EQ(recorder.Operations(), (std::vector<Operation>{{"ModuleName", ""}}));
}

TEST(OperationRecorder, AMachineForgetsToo) {
  const auto machine = SimulatedMachine::FromSample("no-battery");
  machine->AsPlatform().Now();
  machine->ForgetOperations();
  machine->AsPlatform().ModuleName();
  EXPECT_EQ(machine->Operations(), (std::vector<Operation>{{"ModuleName", ""}}));
}

TEST(OperationRecorder, NotesOfSeveralThreadsAreComplete) {
  const auto machine = SimulatedMachine::FromSample("no-battery");
  const auto ask = [&] {
    for (int i = 0; i < 500; ++i) {
      machine->AsPlatform().ModuleName();
    }
  };
  std::thread first(ask);
  std::thread second(ask);
  first.join();
  second.join();
  EXPECT_EQ(machine->Operations().size(), 1000U);
}

TEST(OperationRecorder, TakesNullPointers) {
  const auto machine = SimulatedMachine::FromSample("no-battery");
  platform::Platform& platform = machine->AsPlatform();
  platform::ProductVersion version;
  EXPECT_NE(platform.SendBiosCommand(1, 7, 1, nullptr, 0, nullptr, nullptr), 0);
  EXPECT_FALSE(platform.ReadProductVersion(nullptr, version));
  EXPECT_EQ(machine->Operations(), (std::vector<Operation>{{"SendBiosCommand", "1,7,1"}, {"ReadProductVersion", ""}}));
}

}  // namespace
}  // namespace norv::simulator
