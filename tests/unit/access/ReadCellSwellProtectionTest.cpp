// The read of a cell swell protection block, and its record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryCellSwellProtectionInfo.h"
#include "battery/NorvBatteryInfo.h"
#include "unit/support/LogCapture.h"
#include "unit/support/ScriptedChannel.h"
#include "unit/support/SystemText.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryCellSwellProtectionInfo;
using shared::error::ErrorCategory;
using testing::ElementsAre;

constexpr const char* kRead = "norv::shared::battery::NorvBatteries::ReadNorvBatteryCSP";
const std::string kStarted = std::string("Started ") + kRead + " ";
const std::string kFinished = std::string("Finished ") + kRead;

class Collection : public NorvBatteries {
 public:
  explicit Collection(ScriptedChannel* channel) : NorvBatteries(false, false, channel, nullptr) {}
  using NorvBatteries::ReadNorvBatteryCSP;
};

class ReadCellSwellProtection : public testing::Test {
 protected:
  ScriptedChannel* channel_ = [] {
    auto* channel = new ScriptedChannel;
    channel->Answer(kBatteryInformation, 0, {.returnCode = 99}).Battery(1, HealthyBlock());
    return channel;
  }();
  Collection collection_{channel_};
  LogCapture log_;

  void Expect(unsigned char index, ChannelAnswer answer, bool result) {
    channel_->Answer(kCellSwellProtection, index, std::move(answer));
    EXPECT_EQ(collection_.ReadNorvBatteryCSP(index), result);
  }

  bool ErrorIsUntouched() const { return collection_.GetError().GetCode() == 99; }
  bool ErrorIsLogged() const {
    return log_.Lines().back() == LogLine{plog::error, kRead, TextForm(collection_.GetError())};
  }
};

TEST_F(ReadCellSwellProtection, SendsTheCommandWithTheIndexInABlockOfZeros) {
  Expect(1, {}, true);
  const ChannelCommand& command = channel_->Commands().back();
  EXPECT_EQ(command.first, 1U);
  EXPECT_EQ(command.second, 86U);
  EXPECT_EQ(command.third, 1U);
  std::vector<unsigned char> expected(128, 0);
  expected[0] = 1;
  EXPECT_EQ(command.input, expected);
  EXPECT_EQ(channel_->ValidateCalls(), 0);
}

TEST_F(ReadCellSwellProtection, AttachesTheBlockToTheRecord) {
  Expect(1, {.block = TestBlock().Word(0, 0x1234)}, true);
  EXPECT_EQ(collection_.Query(1)->GetCellSwellProtectionInfo()->GetTimeCharge(), 0x1234);
  EXPECT_TRUE(ErrorIsUntouched());
  EXPECT_THAT(log_.Lines(), ElementsAre(LogLine{plog::info, kRead, kStarted}, LogLine{plog::info, kRead, kFinished}));
}

TEST_F(ReadCellSwellProtection, ASecondReadReplacesTheDataAndKeepsTheOldPointerGood) {
  Expect(1, {.block = TestBlock().Word(0, 1)}, true);
  const auto* first = collection_.Query(1)->GetCellSwellProtectionInfo();
  Expect(1, {.block = TestBlock().Word(0, 2)}, true);
  EXPECT_EQ(collection_.Query(1)->GetCellSwellProtectionInfo()->GetTimeCharge(), 2);
  EXPECT_EQ(first->GetTimeCharge(), 1);
}

TEST_F(ReadCellSwellProtection, DropsTheBlockOfASlotWithoutARecord) {
  Expect(0, {.block = TestBlock().Word(0, 1)}, true);
  EXPECT_EQ(collection_.Query(0), nullptr);
  EXPECT_TRUE(ErrorIsUntouched());
  EXPECT_EQ(log_.Lines().back(), (LogLine{plog::info, kRead, kFinished}));
}

TEST_F(ReadCellSwellProtection, RefusesAnIndexAboveOneBeforeAnyTraffic) {
  const auto before = channel_->Commands().size();
  EXPECT_FALSE(collection_.ReadNorvBatteryCSP(2));
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::Value, 0, "Invalid battery index", "int", kRead));
  EXPECT_TRUE(ErrorIsLogged());
  EXPECT_EQ(channel_->Commands().size(), before);
}

TEST_F(ReadCellSwellProtection, AChannelStatusIsLoggedAsANumber) {
  Expect(1, {.status = static_cast<std::int32_t>(0x80070005U)}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::SystemMessage, static_cast<std::int32_t>(0x80070005U),
                      SystemText(0x80070005U), "long", kRead));
  EXPECT_THAT(log_.Lines(),
              ElementsAre(LogLine{plog::info, kRead, kStarted},
                          LogLine{plog::error, kRead, "PrivateBiosWMI error occurred - HRESULT = -2147024891"}));
}

TEST_F(ReadCellSwellProtection, DataThatIsNotSupportedHasItsOwnMessageOnEitherSlot) {
  for (const unsigned char index : std::initializer_list<unsigned char>{0, 1}) {
    Expect(index, {.returnCode = 4}, false);
    EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::Value, 4, "Battery swell protection data not supported",
                        "unsigned long", kRead));
    EXPECT_TRUE(ErrorIsLogged());
  }
}

TEST_F(ReadCellSwellProtection, ASecondSlotWithoutABatteryIsOnlyNoticed) {
  Expect(1, {.returnCode = 52}, false);
  EXPECT_TRUE(ErrorIsUntouched());
  EXPECT_EQ(log_.Lines().back(), (LogLine{plog::verbose, kRead, "Battery not detected"}));
}

TEST_F(ReadCellSwellProtection, EveryOtherReturnCodeIsAFailure) {
  for (const auto& [index, code] : std::vector<std::pair<unsigned char, std::uint32_t>>{
           {0, 52}, {0, 6}, {1, 6}, {0, 1}, {1, 1}, {1, 5}, {1, 0xFFFFFFFF}}) {
    Expect(index, {.returnCode = code}, false);
    EXPECT_TRUE(
        IsError(collection_.GetError(), ErrorCategory::Value, code, "PrivateBiosWMI error", "unsigned long", kRead));
    EXPECT_TRUE(ErrorIsLogged());
  }
}

TEST_F(ReadCellSwellProtection, ExceptionsBecomeErrorsWithoutAFunction) {
  Expect(1, {.before = [] { throw std::runtime_error("gone"); }}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::StandardException, 1, "gone", "std::runtime_error", ""));
  EXPECT_TRUE(ErrorIsLogged());
  Expect(1, {.before = [] { throw 5; }}, false);
  EXPECT_TRUE(IsError(collection_.GetError(), ErrorCategory::Value, 5, "", "int", ""));
  EXPECT_TRUE(ErrorIsLogged());
}

struct Counter {
  const char* name;
  std::size_t offset;
  int (NorvBatteryCellSwellProtectionInfo::*read)() const;
};

const Counter kCounters[]{
    {"TimeCharge", 0, &NorvBatteryCellSwellProtectionInfo::GetTimeCharge},
    {"TimeDischarge", 2, &NorvBatteryCellSwellProtectionInfo::GetTimeDischarge},
    {"TimeRelax", 4, &NorvBatteryCellSwellProtectionInfo::GetTimeRelax},
    {"TimeSleep", 6, &NorvBatteryCellSwellProtectionInfo::GetTimeSleep},
    {"TimeFullCharge", 8, &NorvBatteryCellSwellProtectionInfo::GetTimeFullCharge},
    {"TimeRSOC", 10, &NorvBatteryCellSwellProtectionInfo::GetTimeRSOC},
    {"CSPATime", 12, &NorvBatteryCellSwellProtectionInfo::GetCSPATime},
    {"CSPBTime", 14, &NorvBatteryCellSwellProtectionInfo::GetCSPBTime},
    {"CSPARunningTime", 16, &NorvBatteryCellSwellProtectionInfo::GetCSPARunningTime},
    {"CSPBRunningTime", 18, &NorvBatteryCellSwellProtectionInfo::GetCSPBRunningTime},
    {"CSPATemp1Time", 20, &NorvBatteryCellSwellProtectionInfo::GetCSPATemp1Time},
    {"CSPBTemp1Time", 22, &NorvBatteryCellSwellProtectionInfo::GetCSPBTemp1Time},
    {"CSPATemp2Time", 24, &NorvBatteryCellSwellProtectionInfo::GetCSPATemp2Time},
    {"CSPBTemp2Time", 26, &NorvBatteryCellSwellProtectionInfo::GetCSPBTemp2Time},
};

TEST(CellSwellProtectionInfo, EachCounterIsItsOwnLittleEndianWord) {
  for (const Counter& counter : kCounters) {
    const TestBlock block = TestBlock().Byte(counter.offset, 0x34).Byte(counter.offset + 1, 0x12);
    const NorvBatteryCellSwellProtectionInfo info(block.Data());
    for (const Counter& other : kCounters) {
      EXPECT_EQ((info.*other.read)(), other.offset == counter.offset ? 4660 : 0) << counter.name << ' ' << other.name;
    }
  }
}

TEST(CellSwellProtectionInfo, CountersAreNeverNegative) {
  TestBlock block;
  for (std::size_t offset = 0; offset < 128; offset += 2) {
    block.Word(offset, 0xFFFF);
  }
  const NorvBatteryCellSwellProtectionInfo info(block.Data());
  for (const Counter& counter : kCounters) {
    EXPECT_EQ((info.*counter.read)(), 65535) << counter.name;
  }
}

TEST(CellSwellProtectionInfo, ANullBlockGivesZerosAndSaysSo) {
  errno = 0;
  const NorvBatteryCellSwellProtectionInfo info(nullptr);
  EXPECT_EQ(errno, EINVAL);
  for (const Counter& counter : kCounters) {
    EXPECT_EQ((info.*counter.read)(), 0) << counter.name;
  }
}

TEST(CellSwellProtectionInfo, AssignmentCopiesAllBytes) {
  TestBlock block;
  for (std::size_t offset = 0; offset < 128; ++offset) {
    block.Byte(offset, static_cast<unsigned char>(offset + 1));
  }
  const NorvBatteryCellSwellProtectionInfo source(block.Data());
  NorvBatteryCellSwellProtectionInfo target(TestBlock().Data());
  EXPECT_EQ(&(target = source), &target);
  for (const Counter& counter : kCounters) {
    EXPECT_EQ((target.*counter.read)(), (source.*counter.read)()) << counter.name;
  }
  // The reserved bytes have no getter; they lie behind the table pointer.
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(&target) + sizeof(void*), block.Data(), 128), 0);
}

TEST(CellSwellProtectionInfo, HostsCannotCopyConstructOne) {
  EXPECT_FALSE(std::is_copy_constructible_v<NorvBatteryCellSwellProtectionInfo>);
  EXPECT_TRUE(std::is_copy_assignable_v<NorvBatteryCellSwellProtectionInfo>);
  EXPECT_TRUE(std::has_virtual_destructor_v<NorvBatteryCellSwellProtectionInfo>);
}

}  // namespace
}  // namespace norv::test
