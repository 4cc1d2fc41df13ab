// The machines that come with the simulator, and machines as the current platform.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "MachineText.h"

namespace norv::simulator {
namespace {

TEST(SampleMachines, AreTheFilesOfTheirFolder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(NORV_BATTERY_MACHINES_DIR)) {
    std::ifstream file(entry.path(), std::ios::binary);
    files[entry.path().stem().string()] = std::string(std::istreambuf_iterator<char>(file), {});
  }
  std::map<std::string, std::string> samples;
  for (const SampleMachine& sample : SampleMachines()) {
    samples[sample.name] = SampleText(sample.name);
  }
  EXPECT_EQ(samples, files);
}

TEST(SampleMachines, AreSortedAndDescribed) {
  const std::vector<SampleMachine> samples = SampleMachines();
  ASSERT_GE(samples.size(), 25U);
  EXPECT_TRUE(std::is_sorted(samples.begin(), samples.end(),
                             [](const auto& left, const auto& right) { return left.name < right.name; }));
  for (const SampleMachine& sample : samples) {
    const auto machine = SimulatedMachine::FromSample(sample.name);
    EXPECT_EQ(machine->Description(), sample.description);
    EXPECT_EQ(machine->AsPlatform().Now(), 1717243200) << sample.name << " has no fixed clock";
  }
}

TEST(SampleMachines, AnswerForTheirSlots) {
  const std::map<std::string, std::pair<std::uint32_t, std::uint32_t>> expected{
      {"one-battery", {0, 6}}, {"two-batteries", {0, 0}}, {"no-battery", {6, 6}}, {"slot-0-unreadable", {3, 0}}};
  for (const auto& [name, codes] : expected) {
    const auto machine = SimulatedMachine::FromSample(name);
    EXPECT_EQ(Ask(machine->AsPlatform(), 7, 0).returnCode, codes.first) << name;
    EXPECT_EQ(Ask(machine->AsPlatform(), 7, 1).returnCode, codes.second) << name;
  }
}

TEST(SampleMachines, TheChannelFailureHasItsMessage) {
  const auto machine = SimulatedMachine::FromSample("channel-failure");
  const auto status = static_cast<std::uint32_t>(Ask(machine->AsPlatform(), 7, 0).status);
  char buffer[100];
  EXPECT_EQ(machine->AsPlatform().FormatSystemMessage(status, buffer, sizeof buffer), 19U);
  EXPECT_STREQ(buffer, "Access is denied.\r\n");
}

TEST(SampleMachines, AnUnknownNameListsThemAll) {
  try {
    SimulatedMachine::FromSample("three-batteries");
    ADD_FAILURE() << "a machine that does not exist was made";
  } catch (const MachineFileError& refusal) {
    const std::string message = refusal.what();
    EXPECT_THAT(message, testing::StartsWith("three-batteries: there is no such sample machine, expected one of:"));
    for (const SampleMachine& sample : SampleMachines()) {
      EXPECT_THAT(message, testing::HasSubstr(" " + sample.name));
    }
  }
}

TEST(SimulatedMachine, IsTheCurrentPlatformWhileItLives) {
  platform::Platform& before = platform::Platform::Current();
  {
    const auto outer = SimulatedMachine::FromSample("no-battery");
    EXPECT_EQ(&platform::Platform::Current(), &outer->AsPlatform());
    {
      const auto inner = SimulatedMachine::FromSample("one-battery");
      EXPECT_EQ(&platform::Platform::Current(), &inner->AsPlatform());
    }
    EXPECT_EQ(&platform::Platform::Current(), &outer->AsPlatform());
  }
  EXPECT_EQ(&platform::Platform::Current(), &before);
}

TEST(SimulatedMachine, ARefusedFileLeavesThePlatformInPlace) {
  platform::Platform& before = platform::Platform::Current();
  EXPECT_THROW(SimulatedMachine::FromText("{}", "test"), MachineFileError);
  EXPECT_EQ(&platform::Platform::Current(), &before);
}

TEST(SimulatedMachine, ComesFromAFile) {
  const auto path = std::filesystem::path(NORV_BATTERY_MACHINES_DIR) / "two-batteries.json";
  const auto machine = SimulatedMachine::FromFile(path.string());
  EXPECT_EQ(Ask(machine->AsPlatform(), 7, 1).returnCode, 0U);
}

}  // namespace
}  // namespace norv::simulator
