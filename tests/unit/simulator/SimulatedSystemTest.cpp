// The rest of a simulated machine's operating system: programs, files, messages, names and the clock.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "MachineText.h"

namespace norv::simulator {
namespace {

constexpr const char* kProgram = "C:\\Program Files\\Norv\\BatteryTest.exe";
constexpr const char* kReport = "/Quellbrook/Tavenhall/Resources/Temp/Battery.xml";

std::string ReadReport(platform::Platform& platform) {
  std::ifstream file(platform.ProgramDataFolder().value_or("") + kReport, std::ios::binary);
  return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no report";
}

TEST(SimulatedProgram, IsMissingWhenItIsNotDescribed) {
  const auto machine = MachineWith("\"testProgram\": null");
  platform::ProductVersion version{9, 9, 9, 9};
  EXPECT_FALSE(machine->AsPlatform().ReadProductVersion(kProgram, version));
  EXPECT_EQ(machine->AsPlatform().LastSystemCode(), 2U);
  EXPECT_EQ(version.major, 9);
  EXPECT_FALSE(machine->AsPlatform().RunProgram(kProgram));
  EXPECT_EQ(machine->AsPlatform().LastSystemCode(), 2U);
}

TEST(SimulatedProgram, LiesBesideTheLibraryAndNowhereElse) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4"})");
  platform::Platform& platform = machine->AsPlatform();
  EXPECT_TRUE(platform.RunProgram(kProgram));
  EXPECT_TRUE(platform.RunProgram("c:/program files/norv\\batterytest.EXE"));
  EXPECT_FALSE(platform.RunProgram("C:\\BatteryTest.exe"));
  EXPECT_FALSE(platform.RunProgram("BatteryTest.exe"));
  EXPECT_FALSE(platform.RunProgram(nullptr));
  const auto elsewhere = MachineWith(R"("modulePath": "/opt/lib.so", "testProgram": {"version": "1.2.3.4"})");
  EXPECT_TRUE(elsewhere->AsPlatform().RunProgram("/opt\\BatteryTest.exe"));
  EXPECT_FALSE(elsewhere->AsPlatform().RunProgram(kProgram));
}

TEST(SimulatedProgram, HasItsProductVersion) {
  const auto machine = MachineWith(R"("testProgram": {"version": "0.65535.3.40"})");
  platform::ProductVersion version;
  EXPECT_TRUE(machine->AsPlatform().ReadProductVersion(kProgram, version));
  EXPECT_EQ(version.major, 0);
  EXPECT_EQ(version.minor, 65535);
  EXPECT_EQ(version.build, 3);
  EXPECT_EQ(version.revision, 40);
}

TEST(SimulatedProgram, MayHaveNoVersionResource) {
  const auto machine = MachineWith(R"("testProgram": {"version": null})");
  platform::ProductVersion version;
  EXPECT_FALSE(machine->AsPlatform().ReadProductVersion(kProgram, version));
  EXPECT_EQ(machine->AsPlatform().LastSystemCode(), 1812U);
  EXPECT_TRUE(machine->AsPlatform().RunProgram(kProgram));
}

TEST(SimulatedProgram, MayNotStart) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "startFails": 193, "status": 1})");
  EXPECT_FALSE(machine->AsPlatform().RunProgram(kProgram));
  EXPECT_EQ(machine->AsPlatform().LastSystemCode(), 193U);
  EXPECT_EQ(ReadReport(machine->AsPlatform()), "no report");
}

TEST(SimulatedProgram, WritesItsReportWhenItRuns) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "report": "<x>\u00e9\r\n</x>"})");
  EXPECT_EQ(ReadReport(machine->AsPlatform()), "no report");
  EXPECT_TRUE(machine->AsPlatform().RunProgram(kProgram));
  EXPECT_EQ(ReadReport(machine->AsPlatform()), "<x>\xC3\xA9\r\n</x>");
}

TEST(SimulatedProgram, WritesAReportWithItsStatus) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "status": -32})");
  EXPECT_TRUE(machine->AsPlatform().RunProgram(kProgram));
  EXPECT_NE(ReadReport(machine->AsPlatform()).find("<r i=\"6\">-32</r>"), std::string::npos);
}

TEST(SimulatedProgram, MayWriteNoReport) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "report": null})");
  EXPECT_TRUE(machine->AsPlatform().RunProgram(kProgram));
  EXPECT_EQ(ReadReport(machine->AsPlatform()), "no report");
  EXPECT_EQ(machine->AsPlatform().LastSystemCode(), 2U);
}

TEST(SimulatedProgram, TakesItsTime) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "runsMilliseconds": 60})");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(machine->AsPlatform().RunProgram(kProgram));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
}

TEST(SimulatedBatteries, TellWhereTheyWereRead) {
  const auto machine = MachineWith(R"("source": "the system's battery driver", "slots": [
      {"battery": {}, "driverStateOfCharge": 57}, {"driverStateOfCharge": 4294967295}])");
  EXPECT_EQ(machine->AsPlatform().BatterySource(), "the system's battery driver");
  EXPECT_EQ(machine->AsPlatform().DriverStateOfCharge(0), 57U);
  EXPECT_EQ(machine->AsPlatform().DriverStateOfCharge(1), 4294967295U);
  EXPECT_EQ(machine->AsPlatform().DriverStateOfCharge(2), std::nullopt);
  const auto other = MachineWith(R"("slots": [{"battery": {}}])");
  EXPECT_EQ(other->AsPlatform().DescribeSlot(0), platform::SlotDescription()) << "a BIOS tells all";
  EXPECT_EQ(other->AsPlatform().BatterySource(), "");
  EXPECT_EQ(other->AsPlatform().DriverStateOfCharge(0), std::nullopt);
}

TEST(SimulatedProgramData, IsAFolderOfTheMachinesOwn) {
  std::string folder;
  std::string other;
  {
    const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "status": 1})");
    const auto second = MachineWith("\"slots\": []");
    folder = machine->AsPlatform().ProgramDataFolder().value_or("");
    other = second->AsPlatform().ProgramDataFolder().value_or("");
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(machine->AsPlatform().ProgramDataFolder(), folder);
    EXPECT_TRUE(machine->AsPlatform().RunProgram(kProgram));
    EXPECT_TRUE(std::filesystem::exists(folder + kReport));
  }
  EXPECT_NE(folder, other);
  EXPECT_FALSE(std::filesystem::exists(folder));
  EXPECT_FALSE(std::filesystem::exists(other));
}

TEST(SimulatedProgramData, IsTheFolderThatTheFileNames) {
  const auto named =
      MachineWith("\"programData\": \"D:\\\\Data\", \"testProgram\": {\"version\": null, \"status\": 1}");
  EXPECT_EQ(named->AsPlatform().ProgramDataFolder(), "D:\\Data");
  EXPECT_TRUE(named->AsPlatform().RunProgram(kProgram));
  EXPECT_FALSE(std::filesystem::exists("D:\\Data"));
  const auto none = MachineWith("\"programData\": null");
  EXPECT_EQ(none->AsPlatform().ProgramDataFolder(), std::nullopt);
}

TEST(SimulatedMessages, AreTheDescribedOnes) {
  const auto machine = MachineWith(R"("systemMessages": {"5": "Access is denied.\r\n", "0x80070005": "\u00fc"})");
  platform::Platform& platform = machine->AsPlatform();
  char buffer[100];
  EXPECT_EQ(platform.FormatSystemMessage(5, buffer, sizeof buffer), 19U);
  EXPECT_STREQ(buffer, "Access is denied.\r\n");
  EXPECT_EQ(platform.FormatSystemMessage(0x80070005, buffer, sizeof buffer), 1U);
  EXPECT_STREQ(buffer, "\xFC");
  EXPECT_EQ(platform.FormatSystemMessage(6, buffer, sizeof buffer), 0U);
  EXPECT_EQ(platform.LastSystemCode(), 317U);
}

TEST(SimulatedMessages, MustFitWithTheirTerminator) {
  const auto machine = MachineWith(R"("systemMessages": {"5": "1234"})");
  char buffer[5];
  EXPECT_EQ(machine->AsPlatform().FormatSystemMessage(5, buffer, 5), 4U);
  for (const std::uint32_t size : {0U, 1U, 4U}) {
    EXPECT_EQ(machine->AsPlatform().FormatSystemMessage(5, buffer, size), 0U);
    EXPECT_EQ(machine->AsPlatform().LastSystemCode(), 122U);
  }
}

TEST(SimulatedNames, ThePathIsCutToTheBuffer) {
  const auto machine = MachineWith(R"("modulePath": "C:\\lib.dll")");
  platform::Platform& platform = machine->AsPlatform();
  char buffer[11] = "xxxxxxxxxx";
  EXPECT_EQ(platform.LibraryPath(buffer, 11), 10U);
  EXPECT_STREQ(buffer, "C:\\lib.dll");
  EXPECT_EQ(platform.LibraryPath(buffer, 4), 3U);
  EXPECT_STREQ(buffer, "C:\\");
  EXPECT_EQ(platform.LibraryPath(buffer, 1), 0U);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(platform.LibraryPath(nullptr, 0), 0U);
}

TEST(SimulatedNames, TheModuleNameIsTheEndOfThePath) {
  EXPECT_EQ(MachineWith("\"slots\": []")->AsPlatform().ModuleName(), L"norv-battery-info.dll");
  EXPECT_EQ(MachineWith(R"("modulePath": "C:\\a/b.dll")")->AsPlatform().ModuleName(), L"b.dll");
  EXPECT_EQ(MachineWith(R"("modulePath": "\u00fc.dll")")->AsPlatform().ModuleName(), L"\u00fc.dll");
  EXPECT_EQ(MachineWith(R"("modulePath": "C:\\")")->AsPlatform().ModuleName(), L"");
}

TEST(SimulatedNames, MayBeUnknown) {
  const auto machine = MachineWith("\"modulePath\": null");
  char buffer[10] = "x";
  EXPECT_EQ(machine->AsPlatform().LibraryPath(buffer, sizeof buffer), 0U);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(machine->AsPlatform().ModuleName(), L"");
}

TEST(SimulatedClock, StandsWhereTheFileSetsIt) {
  EXPECT_EQ(MachineWith(R"("clock": {"now": "1970-01-01T00:00:00Z"})")->AsPlatform().Now(), 0);
  EXPECT_EQ(MachineWith(R"("clock": {"now": "2024-02-29T12:34:56Z"})")->AsPlatform().Now(), 1709210096);
}

TEST(SimulatedClock, IsTheRealOneOtherwise) {
  const std::time_t before = std::time(nullptr);
  const std::time_t now = MachineWith("\"clock\": {}")->AsPlatform().Now();
  EXPECT_GE(now, before);
  EXPECT_LE(now, std::time(nullptr));
}

std::tm CalendarTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
  std::tm time{};
  time.tm_year = year - 1900;
  time.tm_mon = month - 1;
  time.tm_mday = day;
  time.tm_hour = hour;
  time.tm_min = minute;
  time.tm_sec = second;
  return time;
}

std::time_t LocalTimeValue(int offset, const std::tm& time) {
  const auto machine = MachineWith("\"clock\": {\"utcOffsetMinutes\": " + std::to_string(offset) + "}");
  return machine->AsPlatform().LocalTimeValue(time);
}

TEST(SimulatedClock, LocalTimeIsThatMuchAheadOfUtc) {
  const std::time_t noon = 1709208000;  // 29 February 2024, 12:00 UTC
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(2024, 2, 29, 12)), noon);
  EXPECT_EQ(LocalTimeValue(60, CalendarTime(2024, 2, 29, 13)), noon);
  EXPECT_EQ(LocalTimeValue(-330, CalendarTime(2024, 2, 29, 6, 30)), noon);
}

TEST(SimulatedClock, FieldsOutOfRangeRunOver) {
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(2021, 2, 31)), LocalTimeValue(0, CalendarTime(2021, 3, 3)));
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(2021, 3, 0)), LocalTimeValue(0, CalendarTime(2021, 2, 28)));
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(2021, 0, 5)), LocalTimeValue(0, CalendarTime(2020, 12, 5)));
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(2021, 25, 5)), LocalTimeValue(0, CalendarTime(2023, 1, 5)));
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(2021, 1, 1, 25, -1, 61)),
            LocalTimeValue(0, CalendarTime(2021, 1, 2, 1, 0, 1)) - 60 + 60);
}

TEST(SimulatedClock, TimesThatCannotBeRepresented) {
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(1970, 1, 1)), 0);
  EXPECT_EQ(LocalTimeValue(1, CalendarTime(1970, 1, 1)), -1);
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(1969, 12, 31)), -1);
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(19, 5, 6)), -1);
  EXPECT_EQ(LocalTimeValue(0, std::tm{}), -1);
  EXPECT_EQ(LocalTimeValue(0, CalendarTime(3001, 1, 1)), -1);
  std::tm far{};
  far.tm_year = 2147483647;
  far.tm_mon = 2147483647;
  far.tm_mday = 2147483647;
  EXPECT_EQ(LocalTimeValue(0, far), -1);
}

TEST(SimulatedSystemCode, AFileThatDoesNotOpenIsMissing) {
  const auto machine = MachineWith(R"("testProgram": {"version": null})");
  platform::Platform& platform = machine->AsPlatform();
  EXPECT_EQ(platform.LastSystemCode(), 2U);
  platform::ProductVersion version;
  EXPECT_FALSE(platform.ReadProductVersion(kProgram, version));
  EXPECT_EQ(platform.LastSystemCode(), 1812U);
  EXPECT_TRUE(platform.ProgramDataFolder().has_value());
  EXPECT_EQ(platform.LastSystemCode(), 2U);
}

}  // namespace
}  // namespace norv::simulator
