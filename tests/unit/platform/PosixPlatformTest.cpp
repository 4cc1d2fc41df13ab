// The running system as Linux provides it.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/platform/Platform.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"
#include "norv/shared/wmi/WMIClient.h"
#include "norv/simulator/MachineRecorder.h"
#include "play/CreatePrivateFolder.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;
using platform::Platform;
using platform::ProductVersion;

class PosixPlatform : public testing::Test {
 protected:
  PosixPlatform() {
    std::string pattern = (fs::temp_directory_path() / "norv-battery-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
  }
  ~PosixPlatform() override { fs::remove_all(folder_); }

  fs::path Write(const std::string& name, const std::string& content, mode_t mode = 0644) const {
    const fs::path path = folder_ / name;
    std::ofstream(path) << content;
    ::chmod(path.c_str(), mode);
    return path;
  }

  static std::string Content(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
  }

  // A program written for the shell.
  fs::path Program(const std::string& commands) const { return Write("program", "#!/bin/sh\n" + commands, 0755); }

  static bool Run(const fs::path& program) { return Platform::Current().RunProgram(program.c_str()); }

  fs::path folder_;
};

TEST_F(PosixPlatform, RunsAProgramToItsEnd) {
  const fs::path mark = folder_ / "mark";
  EXPECT_TRUE(Run(Program("sleep 0.2; echo \"$#\" > " + mark.string() + "; exit 3")));
  EXPECT_EQ(Content(mark), "0\n") << "no arguments, and the exit code does not matter";
}

TEST_F(PosixPlatform, TakesBackslashesInAPath) {
  const fs::path mark = folder_ / "mark";
  Program("echo x > " + mark.string());
  EXPECT_TRUE(Platform::Current().RunProgram((folder_.string() + "\\program").c_str()));
  EXPECT_TRUE(fs::exists(mark));
}

TEST_F(PosixPlatform, TakesNoOtherBackslashForASeparator) {
  fs::create_directories(folder_ / "a" / "b");
  fs::create_directories(folder_ / "a\\b");
  Write("a/b/program", "#!/bin/sh\n", 0755);
  const std::string program = folder_.string() + "/a\\b\\program";
  EXPECT_FALSE(Platform::Current().RunProgram(program.c_str()));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 2U);
  Write("a\\b/program", "#!/bin/sh\n", 0755);
  EXPECT_TRUE(Platform::Current().RunProgram(program.c_str()));
  EXPECT_TRUE(Run(folder_ / "a\\b" / "program"));
}

TEST_F(PosixPlatform, RefusesAProgramWithoutAFullPath) {
  Program("exit 0");
  Write("program.version", "1.2.3.4");
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  for (const char* path : {"program", "./program", "", "\\program", ".\\program", static_cast<const char*>(nullptr)}) {
    SCOPED_TRACE(path != nullptr ? path : "null");
    EXPECT_FALSE(Platform::Current().RunProgram(path));
    EXPECT_EQ(Platform::Current().LastSystemCode(), 161U);
    ProductVersion version;
    EXPECT_FALSE(Platform::Current().ReadProductVersion(path, version));
    EXPECT_EQ(Platform::Current().LastSystemCode(), 161U);
  }
  fs::current_path(before);
}

// These tests hold the library's objects themselves; the name by which they were started is not theirs to trust.
TEST_F(PosixPlatform, TheLibrarysPathIsTheProgramsWhateverItIsCalled) {
  std::array<char, 4096> path{};
  Platform::Current().LibraryPath(path.data(), path.size());
  EXPECT_EQ(path.data(), fs::canonical("/proc/self/exe"));
  EXPECT_EQ(Platform::Current().LibraryPath(nullptr, 0), 0U);
  if (std::getenv("NORV_BATTERY_RENAMED") == nullptr) {
    const std::string filter = "--gtest_filter=PosixPlatform.TheLibrarysPathIsTheProgramsWhateverItIsCalled";
    const std::string command =
        "NORV_BATTERY_RENAMED=1 exec -a /bin/sh /proc/" + std::to_string(::getpid()) + "/exe " + filter;
    const fs::path log = folder_ / "log";
    EXPECT_EQ(std::system(("bash -c '" + command + "' > " + log.string()).c_str()), 0) << Content(log);
  }
}

TEST_F(PosixPlatform, LeavesNoZombie) {
  EXPECT_TRUE(Run(Program("exit 0")));
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(PosixPlatform, HandsOnTheStandardFilesOnly) {
  const fs::path list = folder_ / "files";
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);  // inheritable
  EXPECT_TRUE(Run(Program("ls /proc/$$/fd > " + list.string())));
  ::close(pipe[0]);
  ::close(pipe[1]);
  const std::string files = Content(list);
  EXPECT_EQ(files.find('\n' + std::to_string(pipe[0]) + '\n'), std::string::npos) << files;
  EXPECT_EQ(files.find('\n' + std::to_string(pipe[1]) + '\n'), std::string::npos) << files;
}

TEST_F(PosixPlatform, StartsTheProgramWithSignalsAsTheyComeByNature) {
  const fs::path list = folder_ / "signals";
  const auto before = std::signal(SIGTERM, SIG_IGN);
  sigset_t blocked;
  sigset_t maskBefore;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
  EXPECT_TRUE(Run(Program("grep -E 'SigBlk|SigIgn' /proc/self/status > " + list.string())));
  ::pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
  static_cast<void>(std::signal(SIGTERM, before));
  std::uint64_t masks[2]{};  // blocked, ignored
  std::istringstream lines(Content(list));
  std::string name;
  for (std::uint64_t& mask : masks) {
    lines >> name >> std::hex >> mask;
  }
  EXPECT_TRUE(lines);
  EXPECT_EQ(masks[0], 0U);
  EXPECT_EQ(masks[1] & 1U << (SIGTERM - 1), 0U);
}

TEST_F(PosixPlatform, AWaitThatASignalInterruptsGoesOn) {
  struct sigaction quiet {};
  struct sigaction before {};
  quiet.sa_handler = [](int) {};  // without SA_RESTART
  ::sigaction(SIGUSR1, &quiet, &before);
  const fs::path mark = folder_ / "mark";
  EXPECT_TRUE(Run(Program("kill -USR1 $PPID; sleep 0.2; kill -USR1 $PPID; sleep 0.2; echo x > " + mark.string())));
  ::sigaction(SIGUSR1, &before, nullptr);
  EXPECT_TRUE(fs::exists(mark));
}

TEST_F(PosixPlatform, WaitsAlsoWhereTheHostIgnoresItsChildren) {
  const fs::path mark = folder_ / "mark";
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  EXPECT_TRUE(Run(Program("sleep 0.2; echo x > " + mark.string())));
  EXPECT_TRUE(fs::exists(mark));
  static_cast<void>(std::signal(SIGCHLD, before));
}

TEST_F(PosixPlatform, FailuresToStartHaveWindowsNumbers) {
  EXPECT_FALSE(Run(folder_ / "missing"));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 2U);
  EXPECT_FALSE(Run(folder_));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 5U) << "a folder";
  EXPECT_FALSE(Run(Write("locked", "#!/bin/sh\n", 0644)));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 5U);
  EXPECT_FALSE(Run(Write("text", "no program\n", 0755)));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 193U);
  EXPECT_FALSE(Run(Write("file", "") / "inside"));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 3U);
}

TEST_F(PosixPlatform, ReadsTheVersionFromTheFileBesideTheProgram) {
  const fs::path program = Program("");
  for (const auto& [content, expected] : std::map<std::string, std::array<int, 4>>{
           {"1.2.3.4", {1, 2, 3, 4}}, {"0.0.0.0\n", {0, 0, 0, 0}}, {"65535.1.65535.0 \r\n", {65535, 1, 65535, 0}}}) {
    Write("program.version", content);
    ProductVersion version;
    EXPECT_TRUE(Platform::Current().ReadProductVersion(program.c_str(), version)) << content;
    EXPECT_EQ((std::array<int, 4>{version.major, version.minor, version.build, version.revision}), expected);
  }
}

TEST_F(PosixPlatform, AVersionThatIsNoneIsAMissingResource) {
  const fs::path program = Program("");
  ProductVersion version;
  EXPECT_FALSE(Platform::Current().ReadProductVersion(program.c_str(), version));
  EXPECT_EQ(Platform::Current().LastSystemCode(), 1812U);
  for (const char* content :
       {"", "1.2.3", "1.2.3.4.5", "1.2.3.x", "1..2.3", "65536.0.0.0", "-1.0.0.0", " 1.2.3.4", "v1.2.3.4"}) {
    Write("program.version", content);
    EXPECT_FALSE(Platform::Current().ReadProductVersion(program.c_str(), version)) << content;
    EXPECT_EQ(Platform::Current().LastSystemCode(), 1812U);
  }
}

TEST_F(PosixPlatform, APrivateFolderIsPrivateFromTheStart) {
  const mode_t before = ::umask(0);
  EXPECT_TRUE(simulator::CreatePrivateFolder(folder_ / "private"));
  ::umask(before);
  EXPECT_EQ(fs::status(folder_ / "private").permissions(), fs::perms::owner_all);
  EXPECT_FALSE(simulator::CreatePrivateFolder(folder_ / "private")) << "somebody's already";
}

TEST_F(PosixPlatform, ReadsProgramDataFromTheEnvironment) {
  ::unsetenv("ProgramData");
  EXPECT_EQ(Platform::Current().ProgramDataFolder(), std::nullopt);
  ::setenv("ProgramData", "", 1);
  EXPECT_EQ(Platform::Current().ProgramDataFolder(), std::nullopt);
  ::setenv("ProgramData", "/data", 1);
  EXPECT_EQ(Platform::Current().ProgramDataFolder(), "/data");
  ::unsetenv("ProgramData");
}

TEST_F(PosixPlatform, ARecorderReadsNoPipeInTheReportsPlace) {
  const fs::path report = folder_ / "Quellbrook/Tavenhall/Resources/Temp/Battery.xml";
  fs::create_directories(report.parent_path());
  ASSERT_EQ(::mkfifo(report.c_str(), 0600), 0);
  ::setenv("ProgramData", folder_.c_str(), 1);
  simulator::MachineRecorder recorder(Platform::Current());
  EXPECT_EQ(recorder.ProgramDataFolder(), folder_);
  ::unsetenv("ProgramData");
}

TEST_F(PosixPlatform, AFileThatCannotBeOpenedHasAWindowsNumber) {
  // An operation that failed before does not hide it.
  std::array<char, 8> buffer{};
  Platform::Current().FormatSystemMessage(5, buffer.data(), 8);
  EXPECT_EQ(Platform::Current().LastSystemCode(), 122U);
  EXPECT_FALSE(std::ifstream(folder_ / "missing").is_open());
  EXPECT_EQ(Platform::Current().LastSystemCode(), 2U);
}

TEST_F(PosixPlatform, KnowsTheTextsOfCommonCodes) {
  int known = 0;
  std::array<char, 2018> buffer{};
  for (std::uint32_t code = 0; code < 16000; ++code) {
    const std::uint32_t length = Platform::Current().FormatSystemMessage(code, buffer.data(), 2018);
    if (length != 0) {
      ++known;
      const std::string text(buffer.data(), length);
      EXPECT_TRUE(text.ends_with("\r\n")) << code;
      EXPECT_EQ(text.find('\n'), length - 1) << code;
    }
  }
  EXPECT_GE(known, 50);
  EXPECT_EQ(Platform::Current().FormatSystemMessage(5, buffer.data(), 2018), 19U);
  EXPECT_STREQ(buffer.data(), "Access is denied.\r\n");
}

TEST_F(PosixPlatform, HasNoWmi) {
  shared::wmi::WMIClient client(L"\\\\.\\root\\cimv2");
  EXPECT_NE(client.Query(L"SELECT * FROM Win32_BIOS"), 0);
  EXPECT_FALSE(client.GetNext());
  std::string text = "kept";
  EXPECT_NE(client.GetValue(L"Name", text), 0);
  EXPECT_EQ(text, "kept");
  std::uint32_t number = 7;
  EXPECT_FALSE(client.GetUInt32(L"Name", number));
  EXPECT_EQ(number, 7U);
}

TEST_F(PosixPlatform, ItsMachineHasNoBattery) {
  shared::battery::NorvBatteries batteries;
  EXPECT_EQ(batteries.Query(0), nullptr);
  EXPECT_EQ(batteries.Query(1), nullptr);
  EXPECT_STREQ(batteries.GetError().GetMessageText(), "PrivateBiosWMI error");
  EXPECT_EQ(batteries.GetError().GetCode(), 6);
}

TEST_F(PosixPlatform, TheChannelTellsMissingBuffers) {
  shared::norvbios::PrivateBiosWmi channel;
  std::array<unsigned char, 128> block{};
  std::uint32_t code = 0;
  EXPECT_EQ(channel.ValidateInput(1, 7, 1, block.data(), 128, block.data(), &code), 0);
  const auto invalid = static_cast<std::int32_t>(0x80070057U);
  EXPECT_EQ(channel.ValidateInput(1, 7, 1, nullptr, 128, block.data(), &code), invalid);
  EXPECT_EQ(channel.ValidateInput(1, 7, 1, block.data(), 128, nullptr, &code), invalid);
  EXPECT_EQ(channel.ValidateInput(1, 7, 1, block.data(), 128, block.data(), nullptr), invalid);
}

// The running system, but for the folder that the library seems to lie in.
class LibraryIn : public platform::PlatformWrapper {
 public:
  explicit LibraryIn(const fs::path& folder)
      : PlatformWrapper(Platform::Current()), path_(folder / "library.so"), scope_(*this) {}
  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override {
    const std::size_t length = path_.string().copy(buffer, size - 1);
    buffer[length] = '\0';
    return static_cast<std::uint32_t>(length);
  }

 private:
  fs::path path_;
  platform::ScopedPlatform scope_;
};

TEST_F(PosixPlatform, ARealTestProgramIsRunForReal) {
  fs::copy_file(NORV_BATTERY_TEST_PROGRAM, folder_ / "BatteryTest.exe");
  Write("BatteryTest.exe.version", "3.1.4.1\n");
  ::setenv("ProgramData", folder_.c_str(), 1);
  ::setenv("NORV_BATTERY_TEST_STATUS", "34", 1);
  const LibraryIn library(folder_);
  shared::battery::NorvBatteryTestInfo info;
  info.RunBatteryTest();
  ::unsetenv("ProgramData");
  ::unsetenv("NORV_BATTERY_TEST_STATUS");
  EXPECT_FALSE(info.GetError()) << info.GetError().GetMessageText();
  EXPECT_EQ(info.GetBatteryTestResult(), 34);
  EXPECT_STREQ(info.GetBatteryTestResultLabel(), "CALIBRATE_MULTI_BATTERY");
  EXPECT_STREQ(info.GetBatteryTestVersion(), "3.1.4.1");
}

}  // namespace
}  // namespace norv::test
