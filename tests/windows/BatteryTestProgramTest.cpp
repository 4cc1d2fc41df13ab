// A host, the library and a battery test program in one folder, as they are installed: the whole run for real.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/windows/Handle.h"
#include "norv/platform/Platform.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;

class BatteryTestProgram : public testing::Test {
 protected:
  BatteryTestProgram()
      : folder_(fs::temp_directory_path() / ("norv-battery-run-" + std::to_string(GetCurrentProcessId()))) {
    fs::create_directories(folder_ / "data");
    fs::copy_file(NORV_BATTERY_TEST_HOST, folder_ / "host.exe");
    fs::copy_file(NORV_BATTERY_LIBRARY, folder_ / "norv-battery-info.dll");
    SetEnvironmentVariableA("ProgramData", (folder_ / "data").string().c_str());
    SetEnvironmentVariableA("NORV_BATTERY_TEST_STATUS", "64");
  }
  ~BatteryTestProgram() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  fs::path Program() const { return folder_ / "BatteryTest.exe"; }
  bool ProgramHasRun() const { return fs::exists(folder_ / "data" / "Quellbrook"); }

  using Lines = std::vector<std::string>;

  // What the host says: result, label, version, error, name of the library.
  Lines Run() const {
    const fs::path output = folder_ / "output.txt";
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    base::Handle file(CreateFileW(output.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = file.Get();
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW((folder_ / "host.exe").c_str(), nullptr, nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &startup, &process));
    const base::Handle running(process.hProcess);
    const base::Handle firstThread(process.hThread);
    WaitForSingleObject(running.Get(), INFINITE);
    file.Close();
    Lines lines;
    std::ifstream read(output);
    for (std::string line; std::getline(read, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  fs::path folder_;
};

TEST_F(BatteryTestProgram, GivesVerdictAndProductVersion) {
  fs::copy_file(NORV_BATTERY_TEST_PROGRAM, Program());
  EXPECT_EQ(Run(), (Lines{"64", "FAIL_BAD_CELL", "1.2.3.4", "", "norv-battery-info.dll"}));
}

TEST_F(BatteryTestProgram, WithoutAStatusThereIsNoVerdictAndNoError) {
  fs::copy_file(NORV_BATTERY_TEST_PROGRAM, Program());
  SetEnvironmentVariableA("NORV_BATTERY_TEST_STATUS", nullptr);
  EXPECT_EQ(Run(), (Lines{"-1", "NOT_DEFINED", "1.2.3.4", "", "norv-battery-info.dll"}));
}

TEST_F(BatteryTestProgram, IsNotStartedWithoutAVersionResource) {
  fs::copy_file(NORV_BATTERY_TEST_PROGRAM_WITHOUT_VERSION, Program());
  EXPECT_EQ(Run(), (Lines{"-1", "NOT_DEFINED", "0.0.0.0", "Error getting version of BatteryTest.exe",
                          "norv-battery-info.dll"}));
  EXPECT_FALSE(ProgramHasRun());
}

// An 8-bit encoding of the system takes an "a" for the library's folder, and the path is refused. A Windows that is set
// to UTF-8 takes no character for another, and finds no program in the library's own folder. The host sees the same.
TEST_F(BatteryTestProgram, OfAFolderOfASimilarNameIsNotStarted) {
  fs::create_directories(folder_ / "a");
  fs::copy_file(NORV_BATTERY_TEST_PROGRAM, folder_ / "a" / "BatteryTest.exe");
  const fs::path whole = folder_;
  folder_ /= L"\x0103";
  fs::create_directories(folder_);
  fs::copy_file(NORV_BATTERY_TEST_HOST, folder_ / "host.exe");
  fs::copy_file(NORV_BATTERY_LIBRARY, folder_ / "norv-battery-info.dll");
  const Lines lines = Run();
  folder_ = whole;
  EXPECT_EQ(lines, (Lines{"-1", "NOT_DEFINED", "0.0.0.0", "Error getting version of BatteryTest.exe",
                          "norv-battery-info.dll"}));
  EXPECT_FALSE(ProgramHasRun());
}

TEST_F(BatteryTestProgram, MayBeMissing) {
  EXPECT_EQ(Run(), (Lines{"-1", "NOT_DEFINED", "0.0.0.0", "Error getting version of BatteryTest.exe",
                          "norv-battery-info.dll"}));
}

// With its version resource in place, but for a processor that no machine with this library has.
TEST_F(BatteryTestProgram, MayBeOneThatCannotBeStarted) {
  fs::copy_file(NORV_BATTERY_TEST_PROGRAM, Program());
  {
    std::fstream file(Program(), std::ios::binary | std::ios::in | std::ios::out);
    std::uint32_t header = 0;
    file.seekg(0x3C);
    file.read(reinterpret_cast<char*>(&header), sizeof header);
    const std::uint16_t machine = IMAGE_FILE_MACHINE_ALPHA;
    file.seekp(header + sizeof(DWORD));
    file.write(reinterpret_cast<const char*>(&machine), sizeof machine);
    ASSERT_TRUE(file);
  }
  EXPECT_FALSE(platform::Platform::Current().RunProgram(Program().string().c_str()));
  EXPECT_EQ(Run(), (Lines{"-1", "NOT_DEFINED", "1.2.3.4", "Error parsing the BatteryTest XML report",
                          "norv-battery-info.dll"}));
}

}  // namespace
}  // namespace norv::test
