// What others may lay in the place of the files that the library reads: nothing there holds it up, fills its memory or
// leads it elsewhere.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "OrdinaryFile.h"
#include "battery/NorvBatteryTestXmlParser.h"
#include "norv/platform/Platform.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;
using platform::Platform;
using platform::ReadOrdinaryFile;
using shared::battery::NorvBatteryTestXmlParser;

class HostileFiles : public testing::Test {
 protected:
  HostileFiles() { fs::create_directories(report_.parent_path()); }
  ~HostileFiles() override {
    fs::current_path(workingFolder_);
    unsetenv("ProgramData");
    fs::remove_all(folder_);
  }

  // Demands that a report that the folder `programData` holds is none.
  void ExpectNoReport(const char* what, const std::string& programData) const {
    SCOPED_TRACE(what);
    setenv("ProgramData", programData.c_str(), 1);
    NorvBatteryTestXmlParser parser;
    EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1);
    EXPECT_STREQ(parser.GetError().GetMessageText(), "Battery XML report not found");
  }

  const fs::path folder_ = NewFolder();
  const fs::path report_ = folder_ / "Quellbrook/Tavenhall/Resources/Temp/Battery.xml";

 private:
  static fs::path NewFolder() {
    std::string pattern = (fs::temp_directory_path() / "norv-hostile-XXXXXX").string();
    return mkdtemp(pattern.data());
  }

  const fs::path workingFolder_ = fs::current_path();
};

constexpr const char* kReport = "<r i=\"6\">7</r>";

struct Trap {
  const char* what;
  std::function<void(const fs::path&)> lay;
};

TEST_F(HostileFiles, InThePlaceOfTheReportAreNoReport) {
  const std::array traps{
      Trap{"a pipe", [](const fs::path& path) { EXPECT_EQ(mkfifo(path.c_str(), 0600), 0); }},
      Trap{"an endless device", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }},
      Trap{"a report elsewhere",
           [](const fs::path& path) {
             std::ofstream(path.parent_path() / "elsewhere") << kReport;
             fs::create_symlink("elsewhere", path);
           }},
      Trap{"a folder", [](const fs::path& path) { fs::create_directory(path); }},
      Trap{"a file that is too large",
           [](const fs::path& path) {
             std::ofstream(path) << kReport;
             fs::resize_file(path, platform::kLargestReport + 1);
           }},
  };
  for (const Trap& trap : traps) {
    trap.lay(report_);
    ExpectNoReport(trap.what, folder_.string());
    fs::remove(report_);
  }
}

TEST_F(HostileFiles, AReportOfTheLargestSizeIsRead) {
  std::ofstream(report_) << kReport;
  fs::resize_file(report_, platform::kLargestReport);
  setenv("ProgramData", folder_.c_str(), 1);
  EXPECT_EQ(NorvBatteryTestXmlParser().GetBatteryStatusFromXMLReport(nullptr), 7);
}

TEST_F(HostileFiles, OfTheWorkingFolderAreNoReport) {
  std::ofstream(report_) << kReport;
  fs::current_path(folder_);
  ExpectNoReport("here", ".");
  fs::current_path(folder_.parent_path());
  ExpectNoReport("below", folder_.filename().string());
}

TEST_F(HostileFiles, TellWhyTheyAreNotRead) {
  const auto code = [](const fs::path& path) {
    EXPECT_FALSE(ReadOrdinaryFile(path.c_str(), 3).has_value());
    return Platform::Current().LastSystemCode();
  };
  const fs::path file = folder_ / "file";
  std::ofstream(file) << "abc";
  EXPECT_EQ(ReadOrdinaryFile(file.c_str(), 3), "abc");
  std::ofstream(file) << "abcd";
  EXPECT_EQ(code(file), 223U) << "too large";
  EXPECT_EQ(code(folder_ / "missing"), 2U);
  EXPECT_EQ(code(folder_), 5U);
  EXPECT_EQ(code(file / "inside"), 3U);
  EXPECT_EQ(code("file"), 87U) << "no full path";
  EXPECT_EQ(code(""), 87U);
  EXPECT_EQ(code("/dev/zero"), 5U);
  EXPECT_EQ(code("/proc/self/mem"), 1117U) << "its first page cannot be read";
  fs::create_symlink("file", folder_ / "link");
  EXPECT_EQ(code(folder_ / "link"), 1921U);
}

TEST_F(HostileFiles, InThePlaceOfAProgramsVersionAreNone) {
  const fs::path program = folder_ / "program";
  platform::ProductVersion version;
  ASSERT_EQ(mkfifo(program.c_str(), 0700), 0);
  EXPECT_FALSE(Platform::Current().ReadProductVersion(program.c_str(), version)) << "the program is a pipe";
  EXPECT_EQ(Platform::Current().LastSystemCode(), 5U);
  fs::remove(program);
  std::ofstream(program) << "no program";
  ASSERT_EQ(mkfifo((folder_ / "program.version").c_str(), 0600), 0);
  EXPECT_FALSE(Platform::Current().ReadProductVersion(program.c_str(), version)) << "the version is a pipe";
  EXPECT_EQ(Platform::Current().LastSystemCode(), 1812U);
  fs::remove(folder_ / "program.version");
  std::ofstream(folder_ / "program.version") << "1.2.3.4\n" << std::string(4096, ' ');
  EXPECT_FALSE(Platform::Current().ReadProductVersion(program.c_str(), version)) << "the version is too long";
}

}  // namespace
}  // namespace norv::test
