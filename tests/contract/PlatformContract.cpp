// What every platform promises, run against each of them: the running system's, a wrapper around it, a simulated
// machine, and what the simulator lays around one.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "norv/platform/Platform.h"
#include "norv/simulator/FaultInjector.h"
#include "norv/simulator/MachineRecorder.h"
#include "norv/simulator/OperationRecorder.h"
#include "norv/simulator/SimulatedMachine.h"
#include "system-battery/BatteryClass.h"
#include "system-battery/SystemBattery.h"
#include "unit/support/PlatformMakers.h"

namespace norv::test {
namespace {

using platform::Platform;
using platform::PlatformWrapper;
using platform::ProductVersion;
using platform::ScopedPlatform;
using platform::WmiConnection;

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

TEST_P(PlatformContract, AnEmptySlotHasNoStateOfCharge) {
  for (const std::uint32_t slot : {0U, 1U, 2U, 0xFFFFFFFFU}) {
    EXPECT_EQ(platform_.DriverStateOfCharge(slot), std::nullopt);
    EXPECT_EQ(platform_.DescribeSlot(slot).stateOfCharge, std::nullopt);
    EXPECT_EQ(platform_.DescribeSlot(slot).source, platform_.BatterySource());
  }
}

// A battery as the driver of Windows told it, on whatever system.
class BatteryClassPlatform : public PlatformWrapper {
 public:
  BatteryClassPlatform() : PlatformWrapper(Platform::Current()) {}

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override {
    return platform::AnswerBiosCommand(first, second, third, input, inputSize, output, returnCode, Read);
  }
  platform::SlotDescription DescribeSlot(std::uint32_t slot) override { return platform::DescribeBattery(Read(slot)); }

 private:
  static std::optional<platform::SystemBattery> Read(std::uint32_t slot) {
    platform::BatteryClassAnswers answers;
    answers.information = {0xC0000000, 100, 90, 412};  // a battery of the system's that counts in percent
    answers.status = {2, 63, 11893, 0};
    return slot == 0 ? platform::TranslateBatteryClass(answers) : std::nullopt;
  }
};

Subject BatteryClass() {
  auto machine = std::make_shared<BatteryClassPlatform>();
  return {machine, machine.get()};
}

Subject SimulatedBattery() {
  const std::shared_ptr<simulator::SimulatedMachine> machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "source": "the system's battery driver",
          "slots": [{"battery": {"cycleCount": 412, "batteryStatus": 64}, "driverStateOfCharge": 70}]})",
      "here");
  return {machine, &machine->AsPlatform()};
}

// The wrapper around a machine with one battery.
template <typename Wrapper, typename... Arguments>
Subject AroundABattery(Arguments... arguments) {
  const Subject inner = SimulatedBattery();
  auto wrapper = std::make_shared<Wrapper>(*inner.platform, arguments...);
  return {std::make_shared<std::pair<Subject, std::shared_ptr<Wrapper>>>(inner, wrapper), wrapper.get()};
}

std::vector<Maker> MakersWithABattery() {
  std::vector<Maker> makers = SystemMakersWithABattery();
  makers.push_back({"BatteryClass", BatteryClass});
  makers.push_back({"Simulated", SimulatedBattery});
  makers.push_back({"Wrapper", [] { return AroundABattery<PlatformWrapper>(); }});
  makers.push_back({"Recorder", [] { return AroundABattery<simulator::OperationRecorder>(); }});
  makers.push_back(
      {"Injector", [] { return AroundABattery<simulator::FaultInjector>(std::vector<simulator::Fault>()); }});
  return makers;
}

// A platform with a battery in slot 0 that has been through 412 cycles, discharges, and by its driver is at 70 percent.
class BatteryContract : public testing::TestWithParam<Maker> {
 protected:
  std::uint32_t Send(std::uint32_t second, unsigned char slot) {
    const std::array<unsigned char, 128> input{slot};
    output_.fill(0xAA);
    std::uint32_t returnCode = 99;
    EXPECT_EQ(platform_.SendBiosCommand(1, second, 1, input.data(), 128, output_.data(), &returnCode), 0);
    return returnCode;
  }

  bool IsOutputUntouched() const {
    return std::all_of(output_.begin(), output_.end(), [](unsigned char byte) { return byte == 0xAA; });
  }

  Subject subject_ = GetParam().make();
  Platform& platform_ = *subject_.platform;
  std::array<unsigned char, 128> output_{};
};

TEST_P(BatteryContract, AnswersTheWholeBlock) {
  EXPECT_EQ(Send(7, 0), 0U);
  EXPECT_EQ(output_[0x08] + 256 * output_[0x09], 412);
  EXPECT_EQ(output_[0x12] & 0x40, 0x40) << "discharging";
  EXPECT_EQ(std::count(output_.begin(), output_.end(), 0xAA), 0) << "every byte is written";
  const auto first = output_;
  EXPECT_EQ(Send(7, 0), 0U);
  EXPECT_EQ(output_, first);
}

TEST_P(BatteryContract, TheOtherSlotsAreEmpty) {
  for (const unsigned int slot : {1U, 2U, 255U}) {
    EXPECT_EQ(Send(7, static_cast<unsigned char>(slot)), 6U);
    EXPECT_TRUE(IsOutputUntouched());
  }
}

TEST_P(BatteryContract, HasNoCellSwellProtection) {
  EXPECT_EQ(Send(86, 0), 4U);
  EXPECT_TRUE(IsOutputUntouched());
}

TEST_P(BatteryContract, SupportsNoOtherCommand) {
  EXPECT_EQ(Send(8, 0), 4U);
  EXPECT_TRUE(IsOutputUntouched());
}

TEST_P(BatteryContract, RefusesACommandWithoutItsBuffers) {
  const std::array<unsigned char, 128> input{};
  std::uint32_t returnCode = 99;
  constexpr auto kInvalidArgument = static_cast<std::int32_t>(0x80070057U);
  EXPECT_EQ(platform_.SendBiosCommand(1, 7, 1, nullptr, 128, output_.data(), &returnCode), kInvalidArgument);
  EXPECT_EQ(platform_.SendBiosCommand(1, 7, 1, input.data(), 0, output_.data(), &returnCode), kInvalidArgument);
  EXPECT_EQ(platform_.SendBiosCommand(1, 7, 1, input.data(), 128, nullptr, &returnCode), kInvalidArgument);
  EXPECT_EQ(platform_.SendBiosCommand(1, 7, 1, input.data(), 128, output_.data(), nullptr), kInvalidArgument);
  EXPECT_EQ(returnCode, 99U);
}

TEST_P(BatteryContract, TellsItsSourceAndTheDriversStateOfCharge) {
  EXPECT_EQ(platform_.BatterySource(), "the system's battery driver");
  EXPECT_EQ(platform_.DriverStateOfCharge(0), 70U);
  EXPECT_EQ(platform_.DriverStateOfCharge(1), std::nullopt);
  EXPECT_EQ(platform_.DescribeSlot(0).stateOfCharge, 70U);
  EXPECT_EQ(platform_.DescribeSlot(1).stateOfCharge, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, BatteryContract, testing::ValuesIn(MakersWithABattery()),
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
