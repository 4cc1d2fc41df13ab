#include "norv/simulator/FaultInjector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include "MachineText.h"

namespace norv::simulator {
namespace {

constexpr const char* kProgram = "C:\\Program Files\\Norv\\BatteryTest.exe";

Fault MakeFault(const std::string& operation, FaultEffect effect, std::uint32_t number = 0,
                std::optional<unsigned> call = std::nullopt, std::optional<std::string> argument = std::nullopt) {
  Fault fault;
  fault.operation = operation;
  fault.effect = effect;
  fault.number = number;
  fault.call = call;
  fault.argument = std::move(argument);
  return fault;
}

// A healthy machine behind an injector.
class FaultInjectorTest : public testing::Test {
 protected:
  FaultInjector With(std::vector<Fault> faults) { return {machine_->AsPlatform(), std::move(faults)}; }

  static std::unique_ptr<platform::WmiConnection> Connect(platform::Platform& platform) {
    std::unique_ptr<platform::WmiConnection> connection;
    EXPECT_EQ(platform.ConnectWmi(L"root\\cimv2", connection), 0);
    return connection;
  }

 private:
  std::unique_ptr<SimulatedMachine> machine_ = SimulatedMachine::FromSample("two-batteries");
};

TEST_F(FaultInjectorTest, WithoutFaultsEverythingIsHandedOn) {
  FaultInjector injector = With({});
  EXPECT_EQ(Ask(injector, 7, 0).returnCode, 0U);
  const auto connection = Connect(injector);
  std::string name;
  std::uint32_t number = 0;
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
  EXPECT_TRUE(connection->Next());
  EXPECT_EQ(connection->ReadText(L"Name", name), 0);
  EXPECT_EQ(name, "F.21");
  EXPECT_FALSE(connection->ReadNumber(L"Name", number));
  platform::ProductVersion version;
  EXPECT_TRUE(injector.ReadProductVersion(kProgram, version));
  EXPECT_EQ(version.major, 3);
  EXPECT_TRUE(injector.RunProgram(kProgram));
  char buffer[260];
  EXPECT_GT(injector.LibraryPath(buffer, sizeof buffer), 0U);
  EXPECT_EQ(injector.ModuleName(), L"norv-battery-info.dll");
  EXPECT_TRUE(injector.ProgramDataFolder().has_value());
  EXPECT_GT(injector.FormatSystemMessage(5, buffer, sizeof buffer), 0U);
  EXPECT_EQ(injector.FormatSystemMessage(4711, buffer, sizeof buffer), 0U);
  EXPECT_EQ(injector.LastSystemCode(), 317U);
  errno = 0;
  injector.ReportInvalidParameter();
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(injector.Now(), 1717243200);
  std::tm time{};
  time.tm_year = 70;
  time.tm_mday = 2;
  EXPECT_EQ(injector.LocalTimeValue(time), 86400 - 3600);
}

TEST_F(FaultInjectorTest, ABiosCommandFailsWithAStatusOrAReturnCode) {
  FaultInjector injector = With({MakeFault("SendBiosCommand", FaultEffect::Status, 0x80070005, 1),
                                 MakeFault("SendBiosCommand", FaultEffect::ReturnCode, 52, 2)});
  const BiosAnswer status = Ask(injector, 7, 0);
  EXPECT_EQ(status.status, Hresult(0x80070005));
  EXPECT_EQ(status.returnCode, 12345U);
  EXPECT_TRUE(IsUntouched(status));
  const BiosAnswer returnCode = Ask(injector, 7, 0);
  EXPECT_EQ(returnCode.status, 0);
  EXPECT_EQ(returnCode.returnCode, 52U);
  EXPECT_TRUE(IsUntouched(returnCode));
  EXPECT_EQ(Ask(injector, 7, 0).returnCode, 0U);
}

TEST_F(FaultInjectorTest, AnArgumentChoosesAndCountsItsCallsOnly) {
  FaultInjector injector = With({MakeFault("SendBiosCommand", FaultEffect::ReturnCode, 3, 2, "1,7,1 slot 1")});
  EXPECT_EQ(Ask(injector, 7, 1).returnCode, 0U);
  EXPECT_EQ(Ask(injector, 7, 0).returnCode, 0U);
  EXPECT_EQ(Ask(injector, 86, 1).returnCode, 0U);
  EXPECT_EQ(Ask(injector, 7, 1).returnCode, 3U);
  EXPECT_EQ(Ask(injector, 7, 1).returnCode, 0U);
}

TEST_F(FaultInjectorTest, TheFirstOfSeveralFaultsWins) {
  FaultInjector injector = With({MakeFault("SendBiosCommand", FaultEffect::ReturnCode, 3, 2),
                                 MakeFault("SendBiosCommand", FaultEffect::ReturnCode, 4)});
  EXPECT_EQ(Ask(injector, 7, 0).returnCode, 4U);
  EXPECT_EQ(Ask(injector, 7, 0).returnCode, 3U);
  EXPECT_EQ(Ask(injector, 7, 0).returnCode, 4U);
}

TEST_F(FaultInjectorTest, WmiFailsAtEveryStep) {
  FaultInjector injector = With({
      MakeFault("ConnectWmi", FaultEffect::Code, 0x8004100E, 2),
      MakeFault("Query", FaultEffect::Code, 0x80041001, std::nullopt, "SELECT * FROM Win32_BaseBoard"),
      MakeFault("Next", FaultEffect::Fails, 0, 2),
      MakeFault("ReadText", FaultEffect::Code, 0x80041002, 2, "Name"),
      MakeFault("ReadNumber", FaultEffect::Fails),
  });
  const auto connection = Connect(injector);
  std::unique_ptr<platform::WmiConnection> none;
  EXPECT_EQ(injector.ConnectWmi(L"root\\cimv2", none), Hresult(0x8004100E));
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
  EXPECT_TRUE(connection->Next());
  std::string text = "untouched";
  std::uint32_t number = 4711;
  EXPECT_EQ(connection->ReadText(L"Name", text), 0);
  EXPECT_EQ(connection->ReadText(L"Other", text), Hresult(0x80041002));
  text = "untouched";
  EXPECT_EQ(connection->ReadText(L"Name", text), Hresult(0x80041002));
  EXPECT_EQ(text, "untouched");
  EXPECT_FALSE(connection->ReadNumber(L"Name", number));
  EXPECT_EQ(number, 4711U);
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
  EXPECT_FALSE(connection->Next());
  EXPECT_TRUE(connection->Next());
}

TEST_F(FaultInjectorTest, AFailedQueryLeavesNoObjects) {
  FaultInjector injector = With({MakeFault("Query", FaultEffect::Code, 5, 2)});
  const auto connection = Connect(injector);
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 5);
  EXPECT_FALSE(connection->Next());
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
  EXPECT_TRUE(connection->Next());
}

TEST_F(FaultInjectorTest, SystemCodesAreLeftBehind) {
  FaultInjector injector =
      With({MakeFault("RunProgram", FaultEffect::Code, 5), MakeFault("ReadProductVersion", FaultEffect::Code, 193),
            MakeFault("FormatSystemMessage", FaultEffect::Code, 8, std::nullopt, "5")});
  platform::ProductVersion version{9, 9, 9, 9};
  char buffer[100];
  EXPECT_FALSE(injector.RunProgram(kProgram));
  EXPECT_EQ(injector.LastSystemCode(), 5U);
  EXPECT_EQ(injector.LastSystemCode(), 5U);
  EXPECT_FALSE(injector.ReadProductVersion(kProgram, version));
  EXPECT_EQ(version.major, 9);
  EXPECT_EQ(injector.LastSystemCode(), 193U);
  EXPECT_EQ(injector.FormatSystemMessage(5, buffer, sizeof buffer), 0U);
  EXPECT_EQ(injector.LastSystemCode(), 8U);
  EXPECT_EQ(injector.FormatSystemMessage(4711, buffer, sizeof buffer), 0U);
  EXPECT_EQ(injector.LastSystemCode(), 317U);
}

TEST_F(FaultInjectorTest, ASystemCodeIsTheThreadsOwn) {
  FaultInjector injector = With({MakeFault("RunProgram", FaultEffect::Code, 5)});
  EXPECT_FALSE(injector.RunProgram(kProgram));
  std::uint32_t elsewhere = 0;
  std::thread([&] { elsewhere = injector.LastSystemCode(); }).join();
  EXPECT_EQ(elsewhere, 2U);
  EXPECT_EQ(injector.LastSystemCode(), 5U);
}

TEST_F(FaultInjectorTest, TheSystemCodeItselfCanBeChosen) {
  FaultInjector injector = With({MakeFault("LastSystemCode", FaultEffect::Code, 8, 1)});
  EXPECT_EQ(injector.LastSystemCode(), 8U);
  EXPECT_EQ(injector.LastSystemCode(), 2U);
}

TEST_F(FaultInjectorTest, NamesFoldersAndTimesCanBeUnknown) {
  FaultInjector injector =
      With({MakeFault("LibraryPath", FaultEffect::Fails), MakeFault("ModuleName", FaultEffect::Fails),
            MakeFault("ProgramDataFolder", FaultEffect::Fails),
            MakeFault("LocalTimeValue", FaultEffect::Fails, 0, std::nullopt, "2021-05-06 00:00:00")});
  char buffer[10] = "x";
  EXPECT_EQ(injector.LibraryPath(buffer, sizeof buffer), 0U);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(injector.LibraryPath(nullptr, 0), 0U);
  EXPECT_EQ(injector.ModuleName(), L"");
  EXPECT_EQ(injector.ProgramDataFolder(), std::nullopt);
  std::tm time{};
  time.tm_year = 121;
  time.tm_mon = 4;
  time.tm_mday = 6;
  EXPECT_EQ(injector.LocalTimeValue(time), -1);
  time.tm_mday = 7;
  EXPECT_GT(injector.LocalTimeValue(time), 0);
}

TEST(FaultyBatteries, TellNothingOfTheirSource) {
  const auto machine =
      MachineWith(R"("source": "here", "slots": [{"driverStateOfCharge": 1}, {"driverStateOfCharge": 2}])");
  FaultInjector none(machine->AsPlatform(), {});
  EXPECT_EQ(none.BatterySource(), "here");
  EXPECT_EQ(none.DriverStateOfCharge(0), 1U);
  FaultInjector injector(machine->AsPlatform(), {MakeFault("DescribeSlot", FaultEffect::Fails, 0, std::nullopt, "1")});
  EXPECT_EQ(injector.DescribeSlot(0).stateOfCharge, 1U);
  EXPECT_EQ(injector.DescribeSlot(0).source, "here");
  EXPECT_EQ(injector.DescribeSlot(1), platform::SlotDescription());
}

TEST_F(FaultInjectorTest, EveryKindOfExceptionIsThrown) {
  using enum FaultEffect;
  unsigned call = 0;
  std::vector<Fault> faults;
  for (const FaultEffect effect : {ThrowsRuntimeError, ThrowsSystemError, ThrowsBadAlloc, ThrowsInt, ThrowsUnsignedLong,
                                   ThrowsString, ThrowsText, ThrowsOther}) {
    faults.push_back(MakeFault("Now", effect, 0, ++call));
  }
  FaultInjector injector = With(faults);
  EXPECT_THROW(injector.Now(), std::runtime_error);
  try {
    injector.Now();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::make_error_code(std::errc::permission_denied));
  }
  EXPECT_THROW(injector.Now(), std::bad_alloc);
  EXPECT_THROW(injector.Now(), int);
  EXPECT_THROW(injector.Now(), unsigned long);
  EXPECT_THROW(injector.Now(), std::string);
  EXPECT_THROW(injector.Now(), const char*);
  EXPECT_THROW(injector.Now(), InjectedException);
  EXPECT_EQ(injector.Now(), 1717243200);
}

TEST_F(FaultInjectorTest, EveryOperationCanThrow) {
  const char* const operations[] = {"SendBiosCommand",
                                    "ConnectWmi",
                                    "Query",
                                    "Next",
                                    "ReadText",
                                    "ReadNumber",
                                    "RunProgram",
                                    "ReadProductVersion",
                                    "LibraryPath",
                                    "ModuleName",
                                    "ProgramDataFolder",
                                    "FormatSystemMessage",
                                    "LastSystemCode",
                                    "ReportInvalidParameter",
                                    "Now",
                                    "LocalTimeValue",
                                    "DescribeSlot"};
  for (const char* operation : operations) {
    FaultInjector injector = With({MakeFault(operation, FaultEffect::ThrowsOther)});
    const auto askEverything = [&] {
      char buffer[10];
      platform::ProductVersion version;
      std::string text;
      std::uint32_t number = 0;
      Ask(injector, 7, 0);
      const auto connection = Connect(injector);
      connection->Query(L"SELECT * FROM Win32_BIOS");
      connection->Next();
      connection->ReadText(L"Name", text);
      connection->ReadNumber(L"Name", number);
      injector.RunProgram("x");
      injector.ReadProductVersion("x", version);
      injector.LibraryPath(buffer, sizeof buffer);
      injector.ModuleName();
      injector.ProgramDataFolder();
      injector.FormatSystemMessage(5, buffer, sizeof buffer);
      injector.LastSystemCode();
      injector.ReportInvalidParameter();
      injector.Now();
      injector.LocalTimeValue({});
      injector.DescribeSlot(0);
    };
    EXPECT_THROW(askEverything(), InjectedException) << operation;
  }
}

TEST_F(FaultInjectorTest, ImpossibleFaultsAreRefused) {
  EXPECT_EQ(FaultProblem(MakeFault("Query", FaultEffect::Code, 5)), "");
  EXPECT_THAT(FaultProblem(MakeFault("Reboot", FaultEffect::Code, 5)),
              testing::StartsWith("\"Reboot\" is no operation, expected one of: SendBiosCommand, "));
  EXPECT_EQ(FaultProblem(MakeFault("Query", FaultEffect::Fails)),
            "Query does not fail in this way, expected \"code\" or \"throws\"");
  EXPECT_EQ(FaultProblem(MakeFault("Query", FaultEffect::Code, 0)),
            "Query cannot fail with 0, which stands for success");
  EXPECT_EQ(FaultProblem(MakeFault("Query", FaultEffect::Code, 5, 0)), "calls of Query are counted from 1, got 0");
  EXPECT_THROW(With({MakeFault("Query", FaultEffect::Code, 5), MakeFault("Now", FaultEffect::Fails)}),
               std::invalid_argument);
}

TEST_F(FaultInjectorTest, AConnectionOutlivesItsInjector) {
  std::unique_ptr<platform::WmiConnection> connection;
  {
    FaultInjector injector = With({MakeFault("Query", FaultEffect::Code, 5)});
    connection = Connect(injector);
  }
  EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 5);
}

TEST(FaultsInMachineFiles, AreInjected) {
  const auto machine = MachineWith(R"("slots": [{"battery": {}}], "wmi": {"r": {"A": [{}]}}, "faults": [
      {"operation": "SendBiosCommand", "call": 1, "status": "0x80070005"},
      {"operation": "SendBiosCommand", "call": 2, "returnCode": 3},
      {"operation": "Query", "argument": "SELECT * FROM A", "code": "0x80041001"},
      {"operation": "ModuleName", "fails": true},
      {"operation": "Now", "throws": "unsigned long"}])");
  platform::Platform& platform = machine->AsPlatform();
  EXPECT_EQ(Ask(platform, 7, 0).status, Hresult(0x80070005));
  EXPECT_EQ(Ask(platform, 7, 0).returnCode, 3U);
  EXPECT_EQ(Ask(platform, 7, 0).returnCode, 0U);
  std::unique_ptr<platform::WmiConnection> connection;
  ASSERT_EQ(platform.ConnectWmi(L"r", connection), 0);
  EXPECT_EQ(connection->Query(L"SELECT * FROM A"), Hresult(0x80041001));
  EXPECT_EQ(connection->Query(L"select * from A"), 0);
  EXPECT_EQ(platform.ModuleName(), L"");
  EXPECT_THROW(platform.Now(), unsigned long);
}

}  // namespace
}  // namespace norv::simulator
