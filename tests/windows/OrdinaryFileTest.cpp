// Files that others may have written, as Windows has them.
#include "OrdinaryFile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/windows/Handle.h"
#include "battery/NorvBatteryTestXmlParser.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;
using platform::ReadOrdinaryFile;

class OrdinaryFile : public testing::Test {
 protected:
  OrdinaryFile()
      : file_((fs::temp_directory_path() / ("norv-battery-file-" + std::to_string(GetCurrentProcessId()))).string()) {}
  ~OrdinaryFile() override { fs::remove(file_); }

  void Write(const std::string& content) const { std::ofstream(file_, std::ios::binary) << content; }

  static void ExpectFailure(const std::string& path, DWORD code) {
    EXPECT_FALSE(ReadOrdinaryFile(path.c_str(), 4).has_value()) << path;
    EXPECT_EQ(GetLastError(), code) << path;
  }

  std::string file_;
};

TEST_F(OrdinaryFile, IsReadAsText) {
  Write("a\r\nb");
  EXPECT_EQ(ReadOrdinaryFile(file_.c_str(), 4), "a\nb");
  Write(
      "a\x1A"
      "b");
  EXPECT_EQ(ReadOrdinaryFile(file_.c_str(), 4), "a");
}

TEST_F(OrdinaryFile, HasALimitedSize) {
  Write("abcd");
  EXPECT_EQ(ReadOrdinaryFile(file_.c_str(), 4), "abcd");
  Write("abcde");
  ExpectFailure(file_, ERROR_FILE_TOO_LARGE);
}

TEST_F(OrdinaryFile, HasAFullPath) {
  ExpectFailure("file", ERROR_BAD_PATHNAME);
  ExpectFailure("C:file", ERROR_BAD_PATHNAME);
  ExpectFailure("\\file", ERROR_BAD_PATHNAME);
  ExpectFailure("", ERROR_BAD_PATHNAME);
  ExpectFailure(file_, ERROR_FILE_NOT_FOUND);
}

TEST_F(OrdinaryFile, IsNoDevice) {
  ExpectFailure("\\\\.\\NUL", ERROR_ACCESS_DENIED);
}

// Read to its end, a pipe holds the reader up until its owner lets it go.
TEST_F(OrdinaryFile, IsNoPipe) {
  const std::string name = "\\\\.\\pipe\\norv-battery-" + std::to_string(GetCurrentProcessId());
  const base::Handle pipe(CreateNamedPipeA(name.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 16, 16, 0, nullptr));
  ASSERT_TRUE(pipe.IsOpen());
  ExpectFailure(name, ERROR_ACCESS_DENIED);
}

TEST_F(OrdinaryFile, IsWhatTheReportHasToBe) {
  SetEnvironmentVariableA("ProgramData", "no full path");
  shared::battery::NorvBatteryTestXmlParser parser;
  EXPECT_EQ(parser.GetBatteryStatusFromXMLReport(nullptr), -1);
  EXPECT_STREQ(parser.GetError().GetMessageText(), "Battery XML report not found");
}

}  // namespace
}  // namespace norv::test
