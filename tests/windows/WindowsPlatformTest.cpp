// The running system as Windows provides it.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "battery/NorvBatteryCellSwellProtectionInfo.h"
#include "norv/platform/Platform.h"
#include "windows/BatteryDevices.h"
#include "windows/LastErrorKeeper.h"
#include "windows/NarrowPath.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;
using platform::Platform;
using platform::ProductVersion;

class WindowsPlatform : public testing::Test {
 protected:
  // What the build tells begins at the root of the current drive.
  static std::string TestProgram() { return fs::absolute(NORV_BATTERY_TEST_PROGRAM).string(); }

  WindowsPlatform() : folder_(fs::temp_directory_path() / ("norv-battery-" + std::to_string(GetCurrentProcessId()))) {
    fs::create_directories(folder_);
  }
  ~WindowsPlatform() override { fs::remove_all(folder_); }

  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(folder_ / name, std::ios::binary) << content;
    return (folder_ / name).string();
  }

  Platform& platform_ = Platform::Current();
  fs::path folder_;
};

// Wine hands no battery of the machine on.
TEST_F(WindowsPlatform, ListsItsBatteryDevicesAndFindsNone) {
  for (const std::uint32_t slot : {0U, 1U, 7U}) {
    EXPECT_FALSE(platform::windows::ReadBatteryDevice(slot));
    EXPECT_EQ(platform_.DriverStateOfCharge(slot), std::nullopt);
    std::array<unsigned char, 128> block{static_cast<unsigned char>(slot)};
    std::uint32_t returnCode = 0;
    EXPECT_EQ(platform_.SendBiosCommand(1, 7, 1, block.data(), 128, block.data(), &returnCode), 0);
    EXPECT_EQ(returnCode, 6U);
  }
  EXPECT_EQ(platform_.BatterySource(), "the system's battery driver");
}

TEST_F(WindowsPlatform, HasNoCellSwellProtectionData) {
  std::array<unsigned char, 128> block{};
  std::uint32_t returnCode = 0;
  EXPECT_EQ(platform_.SendBiosCommand(1, 86, 1, block.data(), 128, block.data(), &returnCode), 0);
  EXPECT_EQ(returnCode, 4U);
}

TEST_F(WindowsPlatform, RunsAProgramToItsEnd) {
  SetEnvironmentVariableA("ProgramData", folder_.string().c_str());
  SetEnvironmentVariableA("NORV_BATTERY_TEST_STATUS", "33");
  EXPECT_TRUE(platform_.RunProgram(TestProgram().c_str()));
  std::ifstream report(folder_ / "Quellbrook/Tavenhall/Resources/Temp/Battery.xml");
  std::string content;
  EXPECT_TRUE(std::getline(report, content) && std::getline(report, content));
  EXPECT_NE(content.find("<r i=\"6\">33</r>"), std::string::npos) << content;
}

TEST_F(WindowsPlatform, AProgramThatFailsHasRunAllTheSame) {
  SetEnvironmentVariableA("NORV_BATTERY_TEST_STATUS", nullptr);
  EXPECT_TRUE(platform_.RunProgram(TestProgram().c_str()));
}

TEST_F(WindowsPlatform, TellsWhyAProgramCannotBeStarted) {
  EXPECT_FALSE(platform_.RunProgram(Write("text.exe", "no program").c_str()));
  EXPECT_EQ(platform_.LastSystemCode(), DWORD{ERROR_BAD_EXE_FORMAT});
  EXPECT_FALSE(platform_.RunProgram((folder_ / "no" / "folder.exe").string().c_str()));
  EXPECT_EQ(platform_.LastSystemCode(), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(WindowsPlatform, RefusesAProgramWithoutAFullPath) {
  const std::string drive = TestProgram().substr(0, 2);
  const std::string onTheDrive = TestProgram().substr(2);
  const fs::path before = fs::current_path();
  fs::current_path(fs::path(TestProgram()).parent_path());
  for (const std::string& path : {fs::path(TestProgram()).filename().string(), onTheDrive,
                                  drive + fs::path(TestProgram()).filename().string(), std::string()}) {
    EXPECT_FALSE(platform_.RunProgram(path.c_str())) << path;
    EXPECT_EQ(platform_.LastSystemCode(), DWORD{ERROR_BAD_PATHNAME}) << path;
    ProductVersion version;
    EXPECT_FALSE(platform_.ReadProductVersion(path.c_str(), version)) << path;
    EXPECT_EQ(platform_.LastSystemCode(), DWORD{ERROR_BAD_PATHNAME}) << path;
  }
  fs::current_path(before);
  EXPECT_FALSE(platform_.RunProgram(nullptr));
}

TEST_F(WindowsPlatform, ReadsTheProductVersionAndNotTheFileVersion) {
  ProductVersion version;
  EXPECT_TRUE(platform_.ReadProductVersion(TestProgram().c_str(), version));
  EXPECT_EQ((std::array<int, 4>{version.major, version.minor, version.build, version.revision}),
            (std::array<int, 4>{1, 2, 3, 4}));
}

TEST_F(WindowsPlatform, LibraryAndToolCarryTheProjectsVersion) {
  for (const char* file : {NORV_BATTERY_LIBRARY, NORV_BATTERY_TOOL}) {
    ProductVersion version{9, 9, 9, 9};
    EXPECT_TRUE(platform_.ReadProductVersion(fs::absolute(file).string().c_str(), version)) << file;
    EXPECT_EQ(std::to_string(version.major) + '.' + std::to_string(version.minor) + '.' + std::to_string(version.build),
              NORV_BATTERY_VERSION)
        << file;
    EXPECT_EQ(version.revision, 0);
  }
}

TEST_F(WindowsPlatform, AFileWithoutAResourceHasNoVersion) {
  ProductVersion version{9, 9, 9, 9};
  EXPECT_FALSE(
      platform_.ReadProductVersion(fs::absolute(NORV_BATTERY_TEST_PROGRAM_WITHOUT_VERSION).string().c_str(), version));
  EXPECT_TRUE(platform_.LastSystemCode() == ERROR_RESOURCE_DATA_NOT_FOUND ||
              platform_.LastSystemCode() == ERROR_RESOURCE_TYPE_NOT_FOUND)
      << platform_.LastSystemCode();
  EXPECT_FALSE(platform_.ReadProductVersion(Write("text.exe", "no program").c_str(), version));
  EXPECT_NE(platform_.LastSystemCode(), 0U);
  EXPECT_EQ(version.major, 9);
}

TEST_F(WindowsPlatform, ReadsProgramDataFromTheEnvironment) {
  SetEnvironmentVariableA("ProgramData", nullptr);
  EXPECT_EQ(platform_.ProgramDataFolder(), std::nullopt);
  SetEnvironmentVariableA("ProgramData", "C:\\some where");
  EXPECT_EQ(platform_.ProgramDataFolder(), "C:\\some where");
  const std::string longer(3000, 'x');
  SetEnvironmentVariableA("ProgramData", longer.c_str());
  EXPECT_EQ(platform_.ProgramDataFolder(), longer);
}

TEST_F(WindowsPlatform, TakesNoSimilarCharacters) {
  EXPECT_EQ(platform::windows::NarrowPath(L"C:\\some where"), "C:\\some where");
  EXPECT_EQ(platform::windows::NarrowPath(L""), "");
  const std::wstring half = L"C:\\\xD800";
  EXPECT_EQ(platform::windows::NarrowPath(half), std::nullopt) << "half a character, in no encoding";
  SetEnvironmentVariableW(L"ProgramData", half.c_str());
  EXPECT_EQ(platform_.ProgramDataFolder(), std::nullopt);
  if (GetACP() != CP_UTF8) {
    EXPECT_EQ(platform::windows::NarrowPath(L"C:\\\x0103"), std::nullopt) << "an \"a\" in many encodings";
  }
}

TEST_F(WindowsPlatform, AFileThatCannotBeOpenedHasItsCode) {
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(std::ifstream((folder_ / "missing").string()).is_open());
  EXPECT_EQ(platform_.LastSystemCode(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(WindowsPlatform, KnowsTheTextsOfItsCodes) {
  std::array<char, 2018> text{};
  EXPECT_GT(platform_.FormatSystemMessage(ERROR_FILE_NOT_FOUND, text.data(), text.size()), 0U);
  EXPECT_GT(platform_.FormatSystemMessage(0x80070005U, text.data(), text.size()), 0U) << "also in HRESULT form";
}

TEST(LastErrorKeeper, PutsTheCodeBackBehindACleanUp) {
  SetLastError(5);
  {
    platform::windows::LastErrorKeeper keeper;
    keeper.Keep();
    SetLastError(0);
  }
  EXPECT_EQ(GetLastError(), 5U);
  {
    const platform::windows::LastErrorKeeper keeper;
    SetLastError(7);
  }
  EXPECT_EQ(GetLastError(), 7U) << "nothing was kept";
}

int handlerCalls = 0;

void CountCall(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t) {
  ++handlerCalls;
}

TEST(InvalidParameter, CallsTheHandlerOfTheLibrarysOwnRuntime) {
  const auto before = _set_invalid_parameter_handler(CountCall);
  handlerCalls = 0;
  errno = 0;
  const shared::battery::NorvBatteryCellSwellProtectionInfo info(nullptr);
  _set_invalid_parameter_handler(before);
  EXPECT_EQ(handlerCalls, 1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(info.GetTimeCharge(), 0);
}

// A host of another compiler brings its own runtime along.
TEST(InvalidParameter, CallsTheHandlerOfAHostsRuntime) {
  using Set = _invalid_parameter_handler(_invalid_parameter_handler);
  const HMODULE runtime = LoadLibraryW(L"ucrtbase.dll");
  ASSERT_NE(runtime, nullptr);
  auto* const hostsErrno = reinterpret_cast<int* (*)()>(reinterpret_cast<void*>(GetProcAddress(runtime, "_errno")));
  ASSERT_NE(hostsErrno, nullptr);
  for (const char* name : {"_set_invalid_parameter_handler", "_set_thread_local_invalid_parameter_handler"}) {
    auto* const set = reinterpret_cast<Set*>(reinterpret_cast<void*>(GetProcAddress(runtime, name)));
    ASSERT_NE(set, nullptr);
    const auto before = set(CountCall);
    handlerCalls = 0;
    *hostsErrno() = 0;
    const shared::battery::NorvBatteryCellSwellProtectionInfo info(nullptr);
    set(before);
    EXPECT_EQ(handlerCalls, 1) << name;
    EXPECT_EQ(*hostsErrno(), EINVAL);
  }
  FreeLibrary(runtime);
}

}  // namespace
}  // namespace norv::test
