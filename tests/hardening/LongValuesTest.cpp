// Values that come from the surroundings, far longer than anybody would have them, and programs that must not be found.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>

#include "battery/NorvBatteryTestInfo.h"
#include "battery/NorvBatteryTestXmlParser.h"
#include "norv/platform/Platform.h"

namespace norv::test {
namespace {

using platform::Platform;
using platform::PlatformWrapper;
using platform::ScopedPlatform;
using shared::battery::NorvBatteryTestInfo;
using shared::battery::NorvBatteryTestXmlParser;

constexpr std::size_t kLong = std::size_t{32} * 1024;

// The running system, with a library that lies where the test says, and with a folder for program data.
class Surroundings : public PlatformWrapper {
 public:
  Surroundings(std::string libraryPath, std::string programData)
      : PlatformWrapper(Current()), libraryPath_(std::move(libraryPath)), programData_(std::move(programData)) {}

  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override {
    const std::size_t length = libraryPath_.copy(buffer, size - 1);
    buffer[length] = '\0';
    return static_cast<std::uint32_t>(length);
  }
  std::optional<std::string> ProgramDataFolder() override { return programData_; }
  bool RunProgram(const char* path) override {
    started_.emplace(path);
    return PlatformWrapper::RunProgram(path);
  }

  const std::optional<std::string>& Started() const { return started_; }

 private:
  std::string libraryPath_;
  std::string programData_;
  std::optional<std::string> started_;
};

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "norv-hardening-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) {
      path_ = pattern;
    }
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

TEST(LongValues, OfTheProgramDataFolderAreAReportThatIsNotThere) {
  Surroundings surroundings("/nowhere/library", "/" + std::string(kLong, 'd'));
  const ScopedPlatform scope(surroundings);
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1);
  EXPECT_STREQ(parser.GetError().GetMessageText(), "Battery XML report not found");
}

TEST(LongValues, OfTheLibraryPathStartNothing) {
  for (const std::string& path : {std::string(kLong, 'x'), "/" + std::string(kLong, 'x') + "/library",
                                  "/" + std::string(255, 'x') + "/" + std::string(kLong, 'y') + "/library"}) {
    Surroundings surroundings(path, "/nowhere");
    const ScopedPlatform scope(surroundings);
    NorvBatteryTestInfo info;
    info.RunBatteryTest();
    EXPECT_EQ(info.GetBatteryTestResult(), -1);
    EXPECT_STREQ(info.GetError().GetMessageText(), "Error getting version of BatteryTest.exe");
    EXPECT_EQ(surroundings.Started(), std::nullopt);
  }
}

TEST(LongValues, OfAProgramPathAreAFailureWithTheSystemsCode) {
  const std::string path = "/" + std::string(kLong, 'p');
  NorvBatteryTestXmlParser parser;
  EXPECT_FALSE(parser.GenerateBatteryTestXMLReport(path.c_str()));
  EXPECT_STREQ(parser.GetError().GetMessageText(), "CreateProcess failed");
  EXPECT_NE(parser.GetError().GetCode(), 0);
  platform::ProductVersion version;
  EXPECT_FALSE(Platform::Current().ReadProductVersion(path.c_str(), version));
}

TEST(LongValues, OfAReportAreReadToTheirEnd) {
  NorvBatteryTestXmlParser parser;
  const std::string report = std::string(kLong, ' ') + "<r i=\"6\" x=\"" + std::string(kLong, 'a') + "\">" +
                             std::string(kLong, ' ') + "7" + std::string(kLong, ' ') + "</r>";
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(report.c_str()), 7);
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(("<r i=\"6\">" + std::string(kLong, '9') + "</r>").c_str()), -1);
}

// A program of the right name, with a version, in a folder that the system would search.
class TestProgram : public testing::Test {
 protected:
  TestProgram() {
    const std::filesystem::path program = folder_.Path() / "BatteryTest.exe";
    std::filesystem::copy_file(NORV_BATTERY_TEST_PROGRAM, program);
    std::ofstream(program.string() + ".version") << "1.2.3.4\n";
  }

  TemporaryFolder folder_;
};

TEST_F(TestProgram, OfASearchPathIsNotStarted) {
  const char* const before = std::getenv("PATH");
  const std::string path = before != nullptr ? before : "";
  const auto workingFolder = std::filesystem::current_path();
  ASSERT_EQ(setenv("PATH", folder_.Path().c_str(), 1), 0);
  std::filesystem::current_path(folder_.Path());
  for (const char* library : {"/nowhere/at/all/library.so", "library.so", ""}) {
    Surroundings surroundings(library, folder_.Path().string());
    const ScopedPlatform scope(surroundings);
    NorvBatteryTestInfo info;
    info.RunBatteryTest();
    EXPECT_EQ(info.GetBatteryTestResult(), -1) << library;
    EXPECT_EQ(surroundings.Started(), std::nullopt) << library;
  }
  EXPECT_FALSE(Platform::Current().RunProgram("cat")) << "a name without a folder is no full path";
  std::filesystem::current_path(workingFolder);
  setenv("PATH", path.c_str(), 1);
}

TEST_F(TestProgram, BesideTheLibraryIsStartedByItsFullPath) {
  Surroundings surroundings((folder_.Path() / "library.so").string(), folder_.Path().string());
  const ScopedPlatform scope(surroundings);
  NorvBatteryTestInfo info;
  info.RunBatteryTest();
  EXPECT_EQ(surroundings.Started(), folder_.Path().string() + "\\BatteryTest.exe");
  EXPECT_STREQ(info.GetBatteryTestVersion(), "1.2.3.4");
  EXPECT_FALSE(info.GetError());
}

TEST(LongValues, OfTheEnvironmentComeThroughWhole) {
  const char* const before = std::getenv("ProgramData");
  const std::string value(kLong, 'e');
  ASSERT_EQ(setenv("ProgramData", value.c_str(), 1), 0);
  EXPECT_EQ(Platform::Current().ProgramDataFolder(), value);
  NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1);
  before != nullptr ? setenv("ProgramData", before, 1) : unsetenv("ProgramData");
}

}  // namespace
}  // namespace norv::test
