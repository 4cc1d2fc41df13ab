// Which battery test program a host gets that loads the shared library under difficult circumstances: the one beside
// the library, or none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "LoadedLibrary.h"
#include "battery/norv_battery.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;

constexpr const char* kNone = "0.0.0.0";

std::int32_t NoBattery(void* /*context*/, std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                       const std::uint8_t* /*input*/, std::uint32_t /*inputSize*/, std::uint8_t* /*output*/,
                       std::uint32_t* returnCode) {
  *returnCode = 6;
  return 0;
}

void Keep(void* context, std::int32_t /*level*/, const char* /*operation*/, const char* text) {
  static_cast<std::vector<std::string>*>(context)->emplace_back(text);
}

// The shared library, loaded by the name that a host gives.
class Library {
 public:
  explicit Library(const std::string& name) : loaded_(name) {}

  // Runs the battery test. The version of the program that was found.
  std::string RunTest() {
    norv_battery_options options{};
    options.size = sizeof options;
    options.flags = NORV_BATTERY_RUN_TEST;
    options.channel = NoBattery;
    options.log = Keep;
    options.logLevel = NORV_BATTERY_LOG_ERROR;
    options.logContext = &errors_;
    norv_battery_collection* collection = nullptr;
    EXPECT_EQ(loaded_.Find<decltype(norv_battery_open)>("norv_battery_open")(&options, &collection), NORV_BATTERY_OK);
    norv_battery_value value{};
    value.size = sizeof value;
    std::array<char, 64> version{};
    EXPECT_EQ(loaded_.Find<decltype(norv_battery_read_test)>("norv_battery_read_test")(
                  collection, NORV_BATTERY_TEST_VERSION, &value, version.data(), version.size()),
              NORV_BATTERY_OK);
    loaded_.Find<decltype(norv_battery_close)>("norv_battery_close")(collection);
    return version.data();
  }

  const std::vector<std::string>& Errors() const { return errors_; }

 private:
  LoadedLibrary loaded_;
  std::vector<std::string> errors_;
};

class LibraryFolder : public testing::Test {
 protected:
  LibraryFolder() : workingFolder_(fs::current_path()) {
    std::string pattern = (fs::temp_directory_path() / "norv-library-XXXXXX").string();
    root_ = mkdtemp(pattern.data());
    setenv("ProgramData", root_.c_str(), 1);
    setenv("NORV_BATTERY_TEST_STATUS", "34", 1);
  }
  ~LibraryFolder() override {
    fs::current_path(workingFolder_);
    unsetenv("ProgramData");
    unsetenv("NORV_BATTERY_TEST_STATUS");
    fs::remove_all(root_);
  }

  fs::path LayLibrary(const fs::path& folder, const std::string& name = "library.so") const {
    fs::create_directories(root_ / folder);
    fs::copy_file(NORV_BATTERY_LIBRARY, root_ / folder / name);
    return root_ / folder / name;
  }

  void LayProgram(const fs::path& folder, const std::string& version) const {
    fs::create_directories(root_ / folder);
    fs::copy_file(NORV_BATTERY_TEST_PROGRAM, root_ / folder / "BatteryTest.exe");
    std::ofstream(root_ / folder / "BatteryTest.exe.version") << version << '\n';
  }

  // Since the last time that it was asked.
  bool HasRun() const { return fs::remove(root_ / "Quellbrook/Tavenhall/Resources/Temp/Battery.xml"); }

  fs::path root_;

 private:
  fs::path workingFolder_;
};

TEST_F(LibraryFolder, IsWhereItsProgramIsFound) {
  LayProgram("lib", "1.1.1.1");
  Library library(LayLibrary("lib"));
  EXPECT_EQ(library.RunTest(), "1.1.1.1");
  EXPECT_TRUE(HasRun());
}

TEST_F(LibraryFolder, IsNotLookedForInAnotherWorkingFolder) {
  LayLibrary("one/lib");
  LayProgram("one/lib", "1.1.1.1");
  LayProgram("other/lib", "2.2.2.2");
  fs::current_path(root_ / "one");
  Library library("./lib/library.so");
  fs::current_path(root_ / "other");
  EXPECT_EQ(library.RunTest(), "1.1.1.1");
}

TEST_F(LibraryFolder, IsNotAnotherOneThatHasItsNameByNow) {
  Library library(LayLibrary("lib"));
  fs::rename(root_ / "lib", root_ / "moved");
  LayProgram("lib", "2.2.2.2");
  EXPECT_EQ(library.RunTest(), kNone) << "no file of the library's name in it";
  LayLibrary("lib");
  EXPECT_EQ(library.RunTest(), kNone) << "another file";
  EXPECT_FALSE(HasRun());
  EXPECT_THAT(library.Errors(),
              Contains(HasSubstr("the path of the library is not known, or names another file by now")));
  EXPECT_THAT(library.Errors(), Contains(HasSubstr("The specified path is invalid.")));
}

TEST_F(LibraryFolder, MayBeALinkThatLeadsElsewhereByNow) {
  LayLibrary("first");
  LayProgram("first", "1.1.1.1");
  LayProgram("second", "2.2.2.2");
  fs::create_directory_symlink("first", root_ / "current");
  Library library((root_ / "current/library.so").string());
  fs::remove(root_ / "current");
  fs::create_directory_symlink("second", root_ / "current");
  EXPECT_EQ(library.RunTest(), "1.1.1.1");
}

TEST_F(LibraryFolder, MayHaveABackslashInItsName) {
  LayProgram("a/b", "2.2.2.2");
  Library library(LayLibrary("a\\b"));
  EXPECT_EQ(library.RunTest(), kNone);
  LayProgram("a\\b", "1.1.1.1");
  EXPECT_EQ(library.RunTest(), "1.1.1.1");
}

TEST_F(LibraryFolder, IsNotCutAtABackslashInTheLibrarysName) {
  LayProgram("a", "2.2.2.2");
  Library library(LayLibrary("", "a\\b.so"));
  EXPECT_EQ(library.RunTest(), kNone);
  EXPECT_FALSE(HasRun());
}

TEST_F(LibraryFolder, IsNotTheOneThatIsLeftOfAPathThatWasCut) {
  const std::string upper(100, 'x');
  const fs::path lower = fs::path(upper) / std::string(200, 'y');
  LayProgram(upper, "2.2.2.2");
  LayProgram(lower, "1.1.1.1");
  Library library(LayLibrary(lower));
  library.RunTest();
  EXPECT_FALSE(HasRun());
  EXPECT_THAT(library.Errors(), Contains(HasSubstr("the path of the library is longer than 259 characters")));
}

TEST_F(LibraryFolder, MayHaveTheLongestPathThatIsNotCut) {
  const std::string name = "library.so";
  const std::size_t length = 259 - root_.string().size() - name.size() - 2;
  const fs::path folder = fs::path(std::string(100, 'x')) / std::string(length - 101, 'y');
  LayProgram(folder, "1.1.1.1");
  const fs::path path = LayLibrary(folder, name);
  ASSERT_EQ(path.string().size(), 259U);
  Library library(path);
  EXPECT_EQ(library.RunTest(), "1.1.1.1");
  EXPECT_TRUE(HasRun());
}

}  // namespace
}  // namespace norv::test
