// What every platform promises, run against each of them: the running system's, a wrapper around it, a simulated
// machine, and what the simulator lays around one.
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "norv/platform/Platform.h"
#include "norv/simulator/FaultInjector.h"
#include "norv/simulator/MachineRecorder.h"
#include "norv/simulator/OperationRecorder.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::test {
namespace {

using platform::Platform;
using platform::PlatformWrapper;
using platform::ProductVersion;
using platform::ScopedPlatform;
using platform::WmiConnection;

// A platform and whatever it needs to live.
struct Subject {
  std::shared_ptr<void> owner;
  Platform* platform;
};

struct Maker {
  const char* name;
  std::function<Subject()> make;
};

void PrintTo(const Maker& maker, std::ostream* stream) {
  *stream << maker.name;
}

template <typename Wrapper, typename... Arguments>
Subject Wrapped(Arguments... arguments) {
  auto wrapper = std::make_shared<Wrapper>(Platform::Current(), arguments...);
  return {wrapper, wrapper.get()};
}

Subject Simulated() {
  const std::shared_ptr<simulator::SimulatedMachine> machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "systemMessages": {"5": "Access is denied.\r\n"}})", "here");
  return {machine, &machine->AsPlatform()};
}

const std::array<Maker, 6> kMakers{{
    {"System",
     [] {
       return Subject{nullptr, &Platform::Current()};
     }},
    {"Wrapper", [] { return Wrapped<PlatformWrapper>(); }},
    {"Recorder", [] { return Wrapped<simulator::OperationRecorder>(); }},
    {"MachineRecorder", [] { return Wrapped<simulator::MachineRecorder>(); }},
    {"Injector", [] { return Wrapped<simulator::FaultInjector>(std::vector<simulator::Fault>()); }},
    {"Simulated", Simulated},
}};

// In a folder that is there.
std::string MissingProgram() {
  return (std::filesystem::temp_directory_path() / "norv-battery-missing.exe").string();
}

class PlatformContract : public testing::TestWithParam<Maker> {
 protected:
  Subject subject_ = GetParam().make();
  Platform& platform_ = *subject_.platform;
};

TEST_P(PlatformContract, AnswersForASlotWithoutABattery) {
  std::array<unsigned char, 128> input{};
  std::array<unsigned char, 128> output{};
  output.fill(0xAA);
  for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
    input[0] = slot;
    std::uint32_t returnCode = 99;
    EXPECT_EQ(platform_.SendBiosCommand(1, 7, 1, input.data(), 128, output.data(), &returnCode), 0);
    EXPECT_EQ(returnCode, 6U);
  }
  EXPECT_EQ(output[0], 0xAA) << "only a success fills the output";
}

TEST_P(PlatformContract, AConnectionThatFailsLeavesNone) {
  std::unique_ptr<WmiConnection> connection;
  EXPECT_NE(platform_.ConnectWmi(L"\\\\.\\root\\nowhere\\at\\all", connection), 0);
  EXPECT_EQ(connection, nullptr);
}

TEST_P(PlatformContract, AProgramThatIsMissingCannotBeStarted) {
  EXPECT_FALSE(platform_.RunProgram(MissingProgram().c_str()));
  EXPECT_EQ(platform_.LastSystemCode(), 2U);
}

TEST_P(PlatformContract, AProgramThatIsMissingHasNoVersion) {
  ProductVersion version{1, 2, 3, 4};
  EXPECT_FALSE(platform_.ReadProductVersion(MissingProgram().c_str(), version));
  EXPECT_EQ(platform_.LastSystemCode(), 2U);
  EXPECT_EQ(version.major, 1);
  EXPECT_EQ(version.minor, 2);
  EXPECT_EQ(version.build, 3);
  EXPECT_EQ(version.revision, 4);
}

TEST_P(PlatformContract, TheLibraryHasAPathAndAName) {
  std::array<char, 1024> buffer{};
  buffer.fill('x');
  const std::uint32_t length = platform_.LibraryPath(buffer.data(), static_cast<std::uint32_t>(buffer.size()));
  ASSERT_GT(length, 0U);
  ASSERT_LT(length, buffer.size());
  EXPECT_EQ(buffer[length], '\0');
  const std::string path = buffer.data();
  EXPECT_EQ(path.size(), length);
  const std::string name = path.substr(path.find_last_of("\\/") + 1);
  EXPECT_EQ(platform_.ModuleName(), std::wstring(name.begin(), name.end()));
}

TEST_P(PlatformContract, APathThatDoesNotFitIsCut) {
  std::array<char, 8> buffer{};
  buffer.fill('x');
  EXPECT_EQ(platform_.LibraryPath(buffer.data(), 5), 4U);
  EXPECT_EQ(buffer[4], '\0');
  EXPECT_EQ(buffer[5], 'x');
}

TEST_P(PlatformContract, FormatsTheSystemsMessages) {
  std::array<char, 64> buffer{};
  buffer.fill('x');
  const std::uint32_t length = platform_.FormatSystemMessage(5, buffer.data(), 64);
  ASSERT_GT(length, 2U);
  ASSERT_LT(length, 64U);
  EXPECT_EQ(buffer[length], '\0');
  const std::string text = buffer.data();
  EXPECT_EQ(text.size(), length);
  EXPECT_TRUE(text.starts_with("Access ") && text.ends_with("denied.\r\n")) << text;
}

TEST_P(PlatformContract, AMessageFitsWithItsTerminatorOrNotAtAll) {
  std::array<char, 64> buffer{};
  const std::uint32_t length = platform_.FormatSystemMessage(5, buffer.data(), 64);
  EXPECT_EQ(platform_.FormatSystemMessage(5, buffer.data(), length + 1), length);
  EXPECT_EQ(platform_.FormatSystemMessage(5, buffer.data(), length), 0U);
  EXPECT_EQ(platform_.LastSystemCode(), 122U);
}

TEST_P(PlatformContract, ACodeWithoutAMessageSaysSo) {
  std::array<char, 64> buffer{};
  EXPECT_EQ(platform_.FormatSystemMessage(0x2FFFFFFF, buffer.data(), 64), 0U);
  EXPECT_EQ(platform_.LastSystemCode(), 317U);
}

TEST_P(PlatformContract, ReportsAnInvalidParameterThroughErrno) {
  errno = 0;
  platform_.ReportInvalidParameter();
  EXPECT_EQ(errno, EINVAL);
}

TEST_P(PlatformContract, TimeAgreesWithItself) {
  const std::time_t now = platform_.Now();
  EXPECT_GT(now, 1700000000);
  std::tm calendar{};
  calendar.tm_year = 121;
  calendar.tm_mon = 4;
  calendar.tm_mday = 6;
  const std::time_t first = platform_.LocalTimeValue(calendar);
  calendar.tm_mday = 7;
  EXPECT_EQ(platform_.LocalTimeValue(calendar) - first, 86400);
  calendar.tm_mday = 37;  // runs on into June
  EXPECT_EQ(platform_.LocalTimeValue(calendar) - first, 31 * 86400);
  EXPECT_EQ(calendar.tm_mday, 37) << "the caller's calendar time is not changed";
}

INSTANTIATE_TEST_SUITE_P(All, PlatformContract, testing::ValuesIn(kMakers),
                         [](const auto& maker) { return std::string(maker.param.name); });

TEST(CurrentPlatform, IsTheInnermostScopes) {
  Platform& system = Platform::Current();
  PlatformWrapper outer(system);
  PlatformWrapper inner(system);
  {
    const ScopedPlatform outerScope(outer);
    EXPECT_EQ(&Platform::Current(), &outer);
    {
      const ScopedPlatform innerScope(inner);
      EXPECT_EQ(&Platform::Current(), &inner);
    }
    EXPECT_EQ(&Platform::Current(), &outer);
  }
  EXPECT_EQ(&Platform::Current(), &system);
}

}  // namespace
}  // namespace norv::test
