// Channel and log callbacks, several threads, and the logger of the process beside them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "Reader.h"
#include "battery/NorvBatteries.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/TestBlock.h"

namespace norv::test::c {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

struct Line {
  std::int32_t level;
  std::string function;
  std::string text;
};

void Keep(void* context, std::int32_t level, const char* function, const char* text) {
  static_cast<std::vector<Line>*>(context)->push_back({level, function, text});
}

std::vector<std::string> Texts(const std::vector<Line>& lines) {
  std::vector<std::string> texts;
  for (const Line& line : lines) {
    texts.push_back(line.text);
  }
  return texts;
}

norv_battery_options LoggingOptions(std::vector<Line>& lines, std::int32_t level) {
  auto options = Sized<norv_battery_options>();
  options.log = Keep;
  options.logContext = &lines;
  options.logLevel = level;
  return options;
}

// A machine that answers each command with the same thing.
struct Channel {
  std::int32_t status = 0;
  std::uint32_t returnCode = 0;
  TestBlock block = HealthyBlock();
  std::vector<std::string> asked;
};

int32_t Answer(void* context, uint32_t first, uint32_t second, uint32_t third, const uint8_t* input, uint32_t inputSize,
               uint8_t* output, uint32_t* returnCode) {
  auto& channel = *static_cast<Channel*>(context);
  channel.asked.push_back(std::to_string(first) + "," + std::to_string(second) + "," + std::to_string(third) + " " +
                          std::to_string(input[0]) + "/" + std::to_string(inputSize));
  *returnCode = channel.returnCode;
  std::memcpy(output, channel.block.Data(), channel.block.Bytes().size());
  return channel.status;
}

norv_battery_options ChannelOptions(Channel& channel) {
  auto options = Sized<norv_battery_options>();
  options.channel = Answer;
  options.channelContext = &channel;
  return options;
}

TEST(CInterfaceChannel, IsAskedForBothSlots) {
  Channel channel;
  norv_battery_options options = ChannelOptions(channel);
  options.flags = NORV_BATTERY_READ_CELL_SWELL;
  const Collection collection(&options);
  EXPECT_THAT(channel.asked, ElementsAre("1,7,1 0/128", "1,86,1 0/128", "1,7,1 1/128", "1,86,1 1/128"));
  ASSERT_NE(collection.Record(1), nullptr);
  EXPECT_EQ(ReadField(collection.Record(1), NORV_BATTERY_SERIAL_NUMBER).text, "SN00012019-05-06");
  EXPECT_EQ(ReadBytes(collection.Record(1), NORV_BATTERY_TIME_DISCHARGE).size(), 2U);
  EXPECT_EQ(collection.Record(1), collection.Record(1));
}

TEST(CInterfaceChannel, GivesItsFailuresToTheCollection) {
  const auto machine = simulator::SimulatedMachine::FromSample("no-battery");
  Channel channel;
  channel.status = static_cast<std::int32_t>(0x80070005);
  const norv_battery_options options = ChannelOptions(channel);
  const Collection collection(&options);
  EXPECT_EQ(collection.Record(0), nullptr);
  const Failure failure = CollectionFailure(collection.Get());
  EXPECT_EQ(failure.category, NORV_BATTERY_SYSTEM_MESSAGE);
  EXPECT_EQ(failure.code, channel.status);
  EXPECT_EQ(failure.function, "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo");
}

TEST(CInterfaceChannel, ReturnCodesAreValues) {
  Channel channel;
  channel.returnCode = 9;
  const norv_battery_options options = ChannelOptions(channel);
  const Collection collection(&options);
  EXPECT_EQ(CollectionFailure(collection.Get()),
            (Failure{NORV_BATTERY_WRONG_VALUE, 9, "PrivateBiosWMI error", "unsigned long",
                     "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo"}));
}

TEST(CInterfaceChannel, WithoutCellSwellDataThereAreNoCounters) {
  Channel channel;
  const norv_battery_options options = ChannelOptions(channel);
  const Collection collection(&options);
  EXPECT_EQ(channel.asked.size(), 2U);
  EXPECT_EQ(ReadField(collection.Record(0), NORV_BATTERY_TIME_CHARGE).value.state, NORV_BATTERY_ABSENT);
  // Rates are the machine's, whoever answers for its BIOS.
  EXPECT_EQ(ReadField(collection.Record(0), NORV_BATTERY_CHARGE_RATE).value.state, NORV_BATTERY_VALUE);
}

TEST(CInterfaceLog, ReceivesTheLinesOfItsLevel) {
  const auto machine = simulator::SimulatedMachine::FromSample("no-battery");
  const std::string constructor = "norv::shared::battery::NorvBatteries::NorvBatteries";
  std::vector<Line> all;
  norv_battery_options options = LoggingOptions(all, NORV_BATTERY_LOG_VERBOSE);
  { const Collection collection(&options); }
  EXPECT_EQ(all.front().text, "Started " + constructor + " ");
  EXPECT_EQ(all.front().function, constructor);
  EXPECT_EQ(all.front().level, NORV_BATTERY_LOG_INFO);
  EXPECT_EQ(all.back().text, "Finished " + constructor);
  EXPECT_THAT(Texts(all), Contains("Error getting battery information"));
  EXPECT_THAT(Texts(all), Contains(std::string("Battery index ") + '\x01' + " not detected"));

  std::vector<Line> errors;
  options = LoggingOptions(errors, NORV_BATTERY_LOG_ERROR);
  { const Collection collection(&options); }
  EXPECT_THAT(errors, Not(IsEmpty()));
  EXPECT_THAT(errors, Each(::testing::Field(&Line::level, NORV_BATTERY_LOG_ERROR)));

  std::vector<Line> none;
  options = LoggingOptions(none, NORV_BATTERY_LOG_NONE);
  { const Collection collection(&options); }
  EXPECT_THAT(none, IsEmpty());
}

TEST(CInterfaceLog, HearsOfTheTestToo) {
  const auto machine = simulator::SimulatedMachine::FromSample("test-program-missing");
  std::vector<Line> lines;
  const norv_battery_options options = LoggingOptions(lines, NORV_BATTERY_LOG_INFO);
  const Collection collection(&options);
  lines.clear();
  EXPECT_EQ(norv_battery_run_test(collection.Get()), NORV_BATTERY_NO_VERDICT);
  EXPECT_THAT(Texts(lines), Contains("battery_status = -1"));
}

TEST(CInterfaceLog, StandsBesideTheLoggerOfTheProcess) {
  const auto machine = simulator::SimulatedMachine::FromSample("two-batteries");
  const LogCapture capture;
  std::vector<Line> lines;
  const norv_battery_options options = LoggingOptions(lines, NORV_BATTERY_LOG_VERBOSE);
  { const Collection collection(&options); }
  EXPECT_THAT(lines, Not(IsEmpty()));
  EXPECT_EQ(Texts(lines), capture.Messages());
  // A collection without a callback logs to the logger only.
  const std::size_t heard = lines.size();
  { const Collection collection; }
  EXPECT_EQ(lines.size(), heard);
  EXPECT_EQ(capture.Lines().size(), 2 * heard);
}

TEST(CInterfaceLog, HearsNothingOfWhatTheSameThreadDoesOtherwise) {
  const auto machine = simulator::SimulatedMachine::FromSample("two-batteries");
  std::vector<Line> lines;
  const norv_battery_options options = LoggingOptions(lines, NORV_BATTERY_LOG_VERBOSE);
  const Collection collection(&options);
  const std::size_t heard = lines.size();
  { const shared::battery::NorvBatteries batteries; }
  EXPECT_EQ(lines.size(), heard);
}

TEST(CInterfaceDecode, AsksNothingOfThisMachine) {
  const auto machine = simulator::SimulatedMachine::FromSample("two-batteries");
  const TestBlock block = HealthyBlock();
  const Decoded record(block.Data(), block.Data());
  EXPECT_THAT(machine->Operations(), IsEmpty());
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_CHARGE_RATE).value.number, 0);
  EXPECT_EQ(ReadField(record.Get(), NORV_BATTERY_CHARGE_RATE).value.state, NORV_BATTERY_ABSENT);
  // What is read from the machine afterwards has its rates again.
  const Collection collection;
  EXPECT_EQ(ReadField(collection.Record(0), NORV_BATTERY_CHARGE_RATE).value.number, 11370);
}

TEST(CInterfaceTest, OpeningMayRunTheTest) {
  const auto machine = simulator::SimulatedMachine::FromSample("test-calibrate");
  auto options = Sized<norv_battery_options>();
  options.flags = NORV_BATTERY_RUN_TEST;
  const Collection opened(&options);
  const Collection asked;
  EXPECT_EQ(ReadField(asked.Record(0), NORV_BATTERY_TEST_RESULT).value.state, NORV_BATTERY_ABSENT);
  EXPECT_EQ(ReadTest(asked.Get(), NORV_BATTERY_TEST_LABEL).text, "NOT_DEFINED");
  EXPECT_EQ(norv_battery_run_test(asked.Get()), NORV_BATTERY_OK);
  for (const Collection* collection : {&opened, &asked}) {
    for (const std::int32_t field : {NORV_BATTERY_TEST_RESULT, NORV_BATTERY_TEST_LABEL, NORV_BATTERY_TEST_VERSION}) {
      EXPECT_EQ(ReadField(collection->Record(0), field).text, ReadTest(collection->Get(), field).text);
      EXPECT_EQ(ReadField(collection->Record(0), field).value.state, NORV_BATTERY_VALUE);
    }
  }
  EXPECT_EQ(ReadField(asked.Record(0), NORV_BATTERY_TEST_RESULT).value.number, 0x20);
}

TEST(CInterfaceTest, AFailedTestHasAnErrorOfItsOwn) {
  const auto machine = simulator::SimulatedMachine::FromSample("test-program-missing");
  const Collection collection;
  EXPECT_EQ(TestFailure(collection.Get()), Failure());
  EXPECT_EQ(norv_battery_run_test(collection.Get()), NORV_BATTERY_NO_VERDICT);
  EXPECT_EQ(TestFailure(collection.Get()).message, "Error getting version of BatteryTest.exe");
  EXPECT_EQ(CollectionFailure(collection.Get()).message, "Battery Test Error - Battery is not supported");
  EXPECT_EQ(ReadTest(collection.Get(), NORV_BATTERY_TEST_RESULT).value.number, -1);
  EXPECT_EQ(ReadTest(collection.Get(), NORV_BATTERY_TEST_VERSION).value.state, NORV_BATTERY_ABSENT);
}

// Each thread has a record of its own; their CT numbers differ in every character.
TEST(CInterfaceThreads, CtFieldsOfDifferentRecordsDoNotMix) {
  constexpr int kThreads = 4;
  std::vector<int> mixed(kThreads, 0);
  std::vector<std::thread> threads;
  for (int index = 0; index < kThreads; ++index) {
    threads.emplace_back([index, &wrong = mixed[static_cast<std::size_t>(index)]] {
      const std::string number(14, static_cast<char>('a' + index));
      const Decoded record(HealthyBlock().CtNumber(number).Data());
      for (int round = 0; round < 2000; ++round) {
        for (const std::int32_t field : {NORV_BATTERY_CT_ASSEMBLY, NORV_BATTERY_CT_REVISION, NORV_BATTERY_CT_SUPPLIER,
                                         NORV_BATTERY_CT_MANUFACTURING_WEEK}) {
          const std::string text = ReadField(record.Get(), field).text;
          wrong += text.empty() || text.find_first_not_of(number[0]) != std::string::npos ? 1 : 0;
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(mixed, Each(0));
}

TEST(CInterfaceThreads, EachThreadHearsItsOwnCollection) {
  std::vector<std::vector<Line>> heard(4);
  std::vector<std::thread> threads;
  for (auto& lines : heard) {
    threads.emplace_back([&lines] {
      Channel channel;
      norv_battery_options options = ChannelOptions(channel);
      options.log = Keep;
      options.logContext = &lines;
      options.logLevel = NORV_BATTERY_LOG_INFO;
      for (int round = 0; round < 50; ++round) {
        const Collection collection(&options);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& lines : heard) {
    EXPECT_EQ(Texts(lines), Texts(heard.front()));
    EXPECT_EQ(lines.size() % 50, 0U);
  }
  EXPECT_THAT(heard.front(), Not(IsEmpty()));
}

}  // namespace
}  // namespace norv::test::c
