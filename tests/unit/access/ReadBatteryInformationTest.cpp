// The read of a battery-information block.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "unit/support/LogCapture.h"
#include "unit/support/ScriptedChannel.h"
#include "unit/support/SystemText.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using shared::error::ErrorCategory;
using testing::ElementsAre;

constexpr const char* kRead = "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo";
const std::string kStarted = std::string("Started ") + kRead + " ";
const std::string kFinished = std::string("Finished ") + kRead + " ";

// A collection whose slots are empty at first, and whose protected read can be called.
class Collection : public NorvBatteries {
 public:
  explicit Collection(ScriptedChannel* channel) : NorvBatteries(false, false, channel, nullptr) {}
  using NorvBatteries::ReadNorvBatteryInfo;
};

class ReadBatteryInformation : public testing::Test {
 protected:
  ScriptedChannel* channel_ = [] {
    auto* channel = new ScriptedChannel;
    channel->Answer(kBatteryInformation, 0, {.returnCode = 99});  // leaves a mark in the error
    return channel;
  }();
  Collection collection_{channel_};
  LogCapture log_;

  void Expect(unsigned char index, ChannelAnswer answer, bool result) {
    channel_->Answer(kBatteryInformation, index, std::move(answer));
    EXPECT_EQ(collection_.ReadNorvBatteryInfo(index), result);
  }

  bool ErrorIsUntouched() const { return collection_.GetError().GetCode() == 99; }
};

TEST_F(ReadBatteryInformation, SendsTheCommandWithTheIndexInABlockOfZeros) {
  Expect(1, {}, true);
  const ChannelCommand& command = channel_->Commands().back();
  EXPECT_EQ(command.first, 1U);
  EXPECT_EQ(command.second, 7U);
  EXPECT_EQ(command.third, 1U);
  std::vector<unsigned char> expected(128, 0);
  expected[0] = 1;
  EXPECT_EQ(command.input, expected);
  EXPECT_EQ(channel_->ValidateCalls(), 0);
}

TEST_F(ReadBatteryInformation, PutsAFreshRecordIntoTheSlot) {
  Expect(0, {.block = HealthyBlock().DeviceName("FRESH")}, true);
  ASSERT_NE(collection_.Query(0), nullptr);
  EXPECT_STREQ(collection_.Query(0)->GetDeviceName(), "FRESH");
  EXPECT_TRUE(ErrorIsUntouched()) << "a success clears nothing";
  EXPECT_THAT(log_.Lines(), ElementsAre(LogLine{plog::info, kRead, kStarted}, LogLine{plog::info, kRead, kFinished}));
}

TEST_F(ReadBatteryInformation, ReplacesAnOlderRecord) {
  Expect(0, {.block = HealthyBlock().DeviceName("OLD")}, true);
  Expect(0, {.block = HealthyBlock().DeviceName("NEW")}, true);
  EXPECT_STREQ(collection_.Query(0)->GetDeviceName(), "NEW");
}

TEST_F(ReadBatteryInformation, AFailedReadLeavesTheOlderRecord) {
  Expect(0, {.block = HealthyBlock().DeviceName("OLD")}, true);
  const NorvBatteryInfo* old = collection_.Query(0);
  Expect(0, {.returnCode = 1}, false);
  Expect(0, {.status = -1}, false);
  Expect(0, {.before = [] { throw 1; }}, false);
  EXPECT_EQ(collection_.Query(0), old);
  EXPECT_STREQ(old->GetDeviceName(), "OLD");
}

TEST_F(ReadBatteryInformation, RefusesAnIndexAboveOneBeforeAnyTraffic) {
  const auto before = channel_->Commands().size();
  for (const int index : {2, 3, 255}) {
    EXPECT_FALSE(collection_.ReadNorvBatteryInfo(static_cast<unsigned char>(index)));
    EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::Value, 0, "Invalid battery index", "int", kRead));
  }
  EXPECT_EQ(channel_->Commands().size(), before);
  EXPECT_EQ(log_.Lines()[0], (LogLine{plog::info, kRead, kStarted}));
  EXPECT_EQ(log_.Lines()[1], (LogLine{plog::error, kRead, TextForm(collection_.GetError())}));
}

TEST_F(ReadBatteryInformation, AChannelStatusBecomesTheSystemsMessage) {
  Expect(1, {.status = static_cast<std::int32_t>(0x80070005U), .returnCode = 52}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::SystemMessage, static_cast<std::int32_t>(0x80070005U),
                      SystemText(0x80070005U), "long", kRead));
  EXPECT_EQ(log_.Lines().back(), (LogLine{plog::error, kRead, TextForm(collection_.GetError())}));
}

TEST_F(ReadBatteryInformation, ASecondSlotWithoutABatteryIsOnlyNoticed) {
  for (const std::uint32_t code : {6U, 52U}) {
    Expect(1, {.returnCode = code}, false);
    EXPECT_TRUE(ErrorIsUntouched());
    EXPECT_EQ(log_.Lines().back(), (LogLine{plog::verbose, kRead, "Battery index \x01 not detected"}));
  }
}

TEST_F(ReadBatteryInformation, AFirstSlotWithoutABatteryIsAFailure) {
  for (const std::uint32_t code : {6U, 52U}) {
    Expect(0, {.returnCode = code}, false);
    EXPECT_TRUE(
        IsError(collection_.GetError(), ErrorCategory::Value, code, "PrivateBiosWMI error", "unsigned long", kRead));
    EXPECT_EQ(log_.Lines().back(), (LogLine{plog::error, kRead, TextForm(collection_.GetError())}));
  }
}

TEST_F(ReadBatteryInformation, EveryOtherReturnCodeIsAFailure) {
  for (const unsigned char index : std::initializer_list<unsigned char>{0, 1}) {
    for (const std::uint32_t code : {1U, 4U, 5U, 7U, 51U, 53U, 0xFFFFFFFFU}) {
      Expect(index, {.returnCode = code}, false);
      EXPECT_TRUE(
          IsError(collection_.GetError(), ErrorCategory::Value, code, "PrivateBiosWMI error", "unsigned long", kRead));
      EXPECT_EQ(log_.Lines().back(), (LogLine{plog::error, kRead, TextForm(collection_.GetError())}));
    }
  }
}

TEST_F(ReadBatteryInformation, AStandardExceptionKeepsItsOwnMessage) {
  Expect(0, {.before = [] { throw std::out_of_range("too far"); }}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::StandardException, 1, "too far", "std::out_of_range", ""));
  EXPECT_EQ(log_.Lines().back(), (LogLine{plog::error, kRead, TextForm(collection_.GetError())}));
}

TEST_F(ReadBatteryInformation, ASystemErrorKeepsItsOwnMessageToo) {
  const std::system_error thrown(std::make_error_code(std::errc::io_error), "bus");
  Expect(0, {.before = [&] { throw thrown; }}, false);
  EXPECT_TRUE(
      IsError(collection_.GetError(), ErrorCategory::StandardException, 1, thrown.what(), "std::system_error", ""));
}

TEST_F(ReadBatteryInformation, AnyOtherExceptionIsConvertedByItsType) {
  struct Odd {};
  Expect(0, {.before = [] { throw 17; }}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::Value, 17, "", "int", ""));
  Expect(0, {.before = [] { throw 18UL; }}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::Value, 18, "", "unsigned long", ""));
  Expect(0, {.before = [] { throw Odd(); }}, false);
  EXPECT_TRUE(
      IsError(collection_.GetError(), ErrorCategory::UnknownException, 0, "Unknown exception type.", "Unknown", ""));
  EXPECT_EQ(log_.Lines().back(), (LogLine{plog::error, kRead, TextForm(collection_.GetError())}));
}

}  // namespace
}  // namespace norv::test
