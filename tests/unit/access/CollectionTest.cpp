// The collection: what it reads, in which order, what it keeps, logs and releases.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/ScriptedChannel.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryTestInfo;
using shared::error::ErrorCategory;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kConstructor = "norv::shared::battery::NorvBatteries::NorvBatteries";
constexpr const char* kRead = "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo";
const std::string kStarted = std::string("Started ") + kConstructor + " ";
const std::string kFinished = std::string("Finished ") + kConstructor;
const std::string kStartedRead = std::string("Started ") + kRead + " ";
const std::string kFinishedRead = std::string("Finished ") + kRead + " ";

class CountedTestInfo : public NorvBatteryTestInfo {
 public:
  explicit CountedTestInfo(int* alive) : alive_(alive) { ++*alive_; }
  ~CountedTestInfo() override { --*alive_; }
  int GetBatteryTestResult() const override { return 0; }
  void RunBatteryTest() override { ++runs; }

  int runs = 0;

 private:
  int* alive_;
};

std::vector<std::uint32_t> Numbers(const ScriptedChannel& channel) {
  std::vector<std::uint32_t> numbers;
  for (const ChannelCommand& command : channel.Commands()) {
    numbers.push_back(command.second * 10 + command.input[0]);
  }
  return numbers;
}

TEST(Collection, ReadsBothSlotsInTheirOrder) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock().DeviceName("FIRST")).Battery(1, HealthyBlock().DeviceName("SECOND"));
  NorvBatteries batteries(false, false, channel, nullptr);

  EXPECT_THAT(Numbers(*channel), ElementsAre(70, 71));
  ASSERT_NE(batteries.Query(0), nullptr);
  ASSERT_NE(batteries.Query(1), nullptr);
  EXPECT_STREQ(batteries.Query(0)->GetDeviceName(), "FIRST");
  EXPECT_STREQ(batteries.Query(1)->GetDeviceName(), "SECOND");
  EXPECT_FALSE(batteries.GetError());
}

TEST(Collection, QueryGivesTheSamePointerEachTime) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Battery(1, HealthyBlock());
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_EQ(batteries.Query(0), batteries.Query(0));
  EXPECT_EQ(batteries.Query(1), batteries.Query(1));
  EXPECT_NE(batteries.Query(0), batteries.Query(1));
}

TEST(Collection, LogsEachStepLetterByLetter) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Battery(1, HealthyBlock());
  LogCapture log;
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_THAT(log.Lines(), ElementsAre(LogLine{plog::info, kConstructor, kStarted},  //
                                       LogLine{plog::info, kRead, kStartedRead},     //
                                       LogLine{plog::info, kRead, kFinishedRead},    //
                                       LogLine{plog::info, kRead, kStartedRead},     //
                                       LogLine{plog::info, kRead, kFinishedRead},    //
                                       LogLine{plog::info, kConstructor, kFinished}));
}

TEST(Collection, AMissingSecondBatteryIsNormal) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Answer(kBatteryInformation, 1, {.returnCode = 52});
  LogCapture log;
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_NE(batteries.Query(0), nullptr);
  EXPECT_EQ(batteries.Query(1), nullptr);
  EXPECT_FALSE(batteries.GetError());
  EXPECT_THAT(log.Messages(plog::error), IsEmpty());
}

TEST(Collection, AnUnreadableSecondBatteryIsAnErrorWithoutALineOfTheCollection) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Answer(kBatteryInformation, 1, {.returnCode = 3});
  LogCapture log;
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_TRUE(batteries.GetError());
  EXPECT_EQ(log.Count("Error getting battery information"), 0U);
}

TEST(Collection, GoesOnWhenTheFirstSlotCannotBeRead) {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "slots": [{"battery": {}, "batteryReturnCode": 9}, {"battery": {"deviceName": "B"}}]})",
      "here");
  LogCapture log;
  NorvBatteries batteries;
  EXPECT_EQ(batteries.Query(0), nullptr);
  ASSERT_NE(batteries.Query(1), nullptr);
  EXPECT_STREQ(batteries.Query(1)->GetDeviceName(), "B");
  EXPECT_THAT(log.Lines(), Contains(LogLine{plog::error, kConstructor, "Error getting battery information"}));
  // Nobody asks for the BIOS settings of the second battery.
  EXPECT_STREQ(batteries.Query(1)->GetBatteryCareInfo(), "");
  EXPECT_THAT(machine->Operations(), Not(Contains(simulator::Operation{"ConnectWmi", "\\\\.\\root\\cimv2"})));
}

TEST(Collection, OnlyTheFirstBatteryReadsTheBiosSettings) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Battery(1, HealthyBlock());
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_STREQ(batteries.Query(0)->GetBatteryCareInfo(), "Not supported");
  EXPECT_STREQ(batteries.Query(1)->GetBatteryCareInfo(), "");
}

TEST(Collection, SendsNoCellSwellCommandUnlessAsked) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Battery(1, HealthyBlock());
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_THAT(Numbers(*channel), ElementsAre(70, 71));
  EXPECT_EQ(batteries.Query(0)->GetCellSwellProtectionInfo(), nullptr);
}

TEST(Collection, ReadsCellSwellDataOfEachBatteryThatIsThere) {
  auto* channel = new ScriptedChannel;
  channel->Battery(1, HealthyBlock()).Answer(kCellSwellProtection, 1, {.block = TestBlock().Word(0, 77)});
  NorvBatteries batteries(true, false, channel, nullptr);
  EXPECT_THAT(Numbers(*channel), ElementsAre(70, 71, 861));
  ASSERT_NE(batteries.Query(1)->GetCellSwellProtectionInfo(), nullptr);
  EXPECT_EQ(batteries.Query(1)->GetCellSwellProtectionInfo()->GetTimeCharge(), 77);
}

TEST(Collection, SaysWhenCellSwellDataOfEitherSlotCannotBeRead) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock())
      .Battery(1, HealthyBlock())
      .Answer(kCellSwellProtection, 0, {.returnCode = 4})
      .Answer(kCellSwellProtection, 1, {.returnCode = 52});
  LogCapture log;
  NorvBatteries batteries(true, false, channel, nullptr);
  EXPECT_EQ(log.Count("Error reading Cell Swell Protection data"), 2U);
  EXPECT_THAT(log.Lines(), Contains(LogLine{plog::error, kConstructor, "Error reading Cell Swell Protection data"}));
}

TEST(Collection, ALaterFailureOverwritesAnEarlierOne) {
  auto* channel = new ScriptedChannel;
  channel->Answer(kBatteryInformation, 0, {.returnCode = 11}).Answer(kBatteryInformation, 1, {.returnCode = 12});
  NorvBatteries batteries(false, false, channel, nullptr);
  EXPECT_EQ(batteries.GetError().GetCode(), 12);
}

TEST(Collection, DeletesTheChannelAndTheTestObjectOfTheHost) {
  int channels = 0;
  int tests = 0;
  {
    NorvBatteries batteries(false, false, new ScriptedChannel(&channels), new CountedTestInfo(&tests));
    EXPECT_EQ(channels, 1);
    EXPECT_EQ(tests, 1);
  }
  EXPECT_EQ(channels, 0);
  EXPECT_EQ(tests, 0);
}

TEST(Collection, RunsNothingOfTheTestUnlessAsked) {
  int tests = 0;
  auto* test = new CountedTestInfo(&tests);
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock());
  NorvBatteries batteries(false, false, channel, test);
  EXPECT_EQ(test->runs, 0);
  EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), -1);
}

TEST(Collection, HasNoTestObjectUnlessTheTestIsWantedOrOneIsGiven) {
  const auto machine = simulator::SimulatedMachine::FromText(R"({"description": "test"})", "here");
  LogCapture log;
  NorvBatteries batteries(false, false, nullptr, nullptr);
  EXPECT_THAT(machine->Operations(), Not(Contains(testing::Field(&simulator::Operation::name, "ReadProductVersion"))));
  EXPECT_FALSE(batteries.RunBatteryTest());  // no object, no verdict
}

TEST(Collection, DefaultConstructionReadsThroughTheMachinesOwnChannel) {
  const auto machine = simulator::SimulatedMachine::FromText(
      R"({"description": "test", "slots": [{"battery": {"deviceName": "OWN"}}]})", "here");
  NorvBatteries batteries;
  ASSERT_NE(batteries.Query(0), nullptr);
  EXPECT_STREQ(batteries.Query(0)->GetDeviceName(), "OWN");
  EXPECT_THAT(machine->Operations(), Contains(simulator::Operation{"SendBiosCommand", "1,7,1 slot 0"}));
  EXPECT_THAT(machine->Operations(), Contains(simulator::Operation{"SendBiosCommand", "1,7,1 slot 1"}));
  EXPECT_THAT(machine->Operations(), Not(Contains(simulator::Operation{"SendBiosCommand", "1,86,1 slot 0"})));
}

// Of a collection that nobody destroys: what its error keeps on the heap is its own.
void ReleaseError(const NorvBatteries& collection) {
  std::destroy_at(&collection.GetError());
}

TEST(Collection, CopiesAreShallow) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock()).Answer(kBatteryInformation, 1, {.returnCode = 12});
  NorvBatteries original(false, false, channel, nullptr);

  // Of collections that share only one may be destroyed: these stay in storage that nobody destroys.
  alignas(NorvBatteries) std::array<unsigned char, sizeof(NorvBatteries)> copyStorage{};
  auto* copy = new (copyStorage.data()) NorvBatteries(original);
  EXPECT_EQ(copy->Query(0), original.Query(0));
  EXPECT_EQ(copy->GetError().GetCode(), 12);

  alignas(NorvBatteries) std::array<unsigned char, sizeof(NorvBatteries)> targetStorage{};
  auto* target = new (targetStorage.data()) NorvBatteries(original);
  *target = original;
  EXPECT_EQ(target->Query(0), original.Query(0));
  EXPECT_EQ(TextForm(target->GetError()), TextForm(original.GetError()));
  ReleaseError(*copy);
  ReleaseError(*target);
}

TEST(Collection, AssignmentReleasesNothingOfItsTarget) {
  int firstAlive = 0;
  int secondAlive = 0;
  auto* first = new ScriptedChannel(&firstAlive);
  auto* second = new ScriptedChannel(&secondAlive);
  NorvBatteries source(false, false, second, nullptr);
  {
    alignas(NorvBatteries) std::array<unsigned char, sizeof(NorvBatteries)> storage{};
    auto* target = new (storage.data()) NorvBatteries(false, false, first, nullptr);
    *target = source;
    EXPECT_EQ(firstAlive, 1);
    ReleaseError(*target);
  }
  delete first;
  EXPECT_EQ(secondAlive, 1);
}

// Storage in which no collection lives yet is just what is filled with zeros; the sanitizer expects one there.
__attribute__((no_sanitize("undefined"))) void ZeroFill(NorvBatteries* place, std::size_t byteCount) {
  place->ZeroFill(byteCount);
}

TEST(Collection, ZeroFillClearsTheBytesItIsToldTo) {
  alignas(NorvBatteries) std::array<unsigned char, sizeof(NorvBatteries) + 8> storage{};
  storage.fill(0xAA);
  auto* place = reinterpret_cast<NorvBatteries*>(storage.data());
  ZeroFill(place, 10);
  EXPECT_EQ(storage[0], 0);
  EXPECT_EQ(storage[9], 0);
  EXPECT_EQ(storage[10], 0xAA);
  ZeroFill(place, storage.size());
  EXPECT_EQ(storage[sizeof(NorvBatteries) - 1], 0);
  EXPECT_EQ(storage[sizeof(NorvBatteries)], 0xAA) << "never beyond the object";
}

TEST(Collection, AnAppenderThatThrowsLosesItsLineOnly) {
  auto* channel = new ScriptedChannel;
  channel->Battery(0, HealthyBlock());
  LogCapture log;
  log.onLine = [] { throw std::runtime_error("full"); };
  NorvBatteries batteries(true, false, channel, nullptr);
  EXPECT_NE(batteries.Query(0), nullptr);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

#ifndef NDEBUG
TEST(CollectionDeathTest, QueryAssertsItsIndexInDebugBuilds) {
  NorvBatteries batteries(false, false, new ScriptedChannel, nullptr);
  EXPECT_DEATH(batteries.Query(2), "index < .*kSlotCount");
}
#endif

}  // namespace
}  // namespace norv::test
