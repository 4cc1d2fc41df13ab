// The battery-information block made of what a system's battery driver told.
#include "system-battery/SystemBattery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Listening.h"
#include "Remarks.h"
#include "battery/NorvBatteries.h"
#include "diagnostics/LoggedRemarks.h"
#include "norv/platform/Platform.h"
#include "unit/support/LogCapture.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using platform::AnswerBiosCommand;
using platform::BatteryCapacity;
using platform::BlockDeviates;
using platform::CapacityUnit;
using platform::ChargeState;
using platform::FillBatteryBlock;
using platform::FilledBlock;
using platform::Listening;
using platform::SystemBattery;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

BatteryCapacity Charge(std::int64_t amount) {
  return {amount, CapacityUnit::MilliampereHours};
}

BatteryCapacity Energy(std::int64_t amount) {
  return {amount, CapacityUnit::MilliwattHours};
}

unsigned WordAt(const SystemBattery& battery, std::size_t offset) {
  const auto block = FillBatteryBlock(battery).block;
  return block[offset] + 256U * block[offset + 1];
}

// In the words that the log has for them.
std::vector<std::string> DeviationsOf(const SystemBattery& battery) {
  std::vector<std::string> words;
  for (const platform::Deviation& deviation : FillBatteryBlock(battery).deviations) {
    words.push_back(shared::battery::diagnostics::InWords(deviation));
  }
  return words;
}

unsigned CurrentOf(const SystemBattery& battery) {
  return WordAt(battery, 0x0E);
}

std::string DeviceNameOf(const std::string& told) {
  SystemBattery battery;
  battery.deviceName = told;
  const auto block = FillBatteryBlock(battery).block;
  const std::string field(block.begin() + 0x4F, block.begin() + 0x56);
  return field.substr(0, field.find('\0'));
}

TEST(BatteryBlock, IsEmptyWhereNothingIsKnown) {
  const FilledBlock filled = FillBatteryBlock({});
  EXPECT_EQ(filled.block, TestBlock().Bytes());
  EXPECT_THAT(filled.deviations, IsEmpty());
}

TEST(BatteryBlock, HasEveryFieldInItsPlace) {
  SystemBattery battery;
  battery.designCapacity = Charge(4545);
  battery.fullChargeCapacity = Charge(4398);
  battery.remainingCapacity = Charge(4310);
  battery.cycleCount = 87;
  battery.temperature = 2981;
  battery.voltage = 12714;
  battery.current = -950;
  battery.designVoltage = 11550;
  battery.state = ChargeState::Discharging;
  battery.manufactureDate = {2022, 9, 12};
  battery.serialNumber = "04217 2022-09-14";
  battery.manufacturer = "313-54-33-A, twice";
  battery.deviceName = "NV3C52X";
  battery.stateOfCharge = 98;
  const TestBlock expected = TestBlock()
                                 .Word(0x00, 4545)
                                 .Word(0x02, 4398)
                                 .Word(0x04, 4310)
                                 .Word(0x08, 87)
                                 .Word(0x0A, 2981)
                                 .Word(0x0C, 12714)
                                 .Word(0x0E, 0x10000 - 950)
                                 .Word(0x10, 11550)
                                 .Word(0x12, 0x00C0)
                                 .Text(0x1C, 16, "04217 2022-09-14")
                                 .Text(0x2C, 18, "313-54-33-A, twice")
                                 .Text(0x4F, 7, "NV3C52X")
                                 .Word(0x5C, (42U << 9U) | (9U << 5U) | 12U);
  const FilledBlock filled = FillBatteryBlock(battery);
  EXPECT_EQ(filled.block, expected.Bytes());
  EXPECT_THAT(filled.deviations, IsEmpty());
}

TEST(BatteryBlock, DividesEnergyByTheDesignVoltage) {
  SystemBattery battery;
  battery.designCapacity = Energy(50000);
  EXPECT_EQ(WordAt(battery, 0), 0U) << "without a voltage the charge is not known";
  EXPECT_THAT(DeviationsOf(battery), IsEmpty());
  battery.voltage = 12600;
  EXPECT_EQ(WordAt(battery, 0), 0U) << "the voltage of the moment is no design voltage";
  battery.standInVoltage = 0;
  EXPECT_EQ(WordAt(battery, 0), 0U);
  EXPECT_THAT(DeviationsOf(battery), IsEmpty());
  battery.standInVoltage = 12600;
  battery.designVoltage = 11400;
  EXPECT_EQ(WordAt(battery, 0), 4386U) << "50000 / 11.4 is 4385.96";
  battery.fullChargeCapacity = Charge(4000);
  EXPECT_EQ(WordAt(battery, 2), 4000U) << "each capacity has a unit of its own";
  EXPECT_THAT(DeviationsOf(battery), IsEmpty());
}

TEST(BatteryBlock, DividesEnergyByTheVoltageThatStandsIn) {
  const std::string deviation =
      "no design voltage is known; the capacities are the driver's energies at the voltage of the moment, 12600 mV";
  for (const std::optional<std::int64_t> noDesignVoltage : {std::optional<std::int64_t>(), {0}, {-11400}}) {
    for (const auto capacity :
         {&SystemBattery::designCapacity, &SystemBattery::fullChargeCapacity, &SystemBattery::remainingCapacity}) {
      SystemBattery battery;
      battery.designVoltage = noDesignVoltage;
      battery.standInVoltage = 12600;
      EXPECT_THAT(DeviationsOf(battery), Each(testing::Not(deviation))) << "nothing to be divided";
      battery.*capacity = Charge(4000);
      EXPECT_THAT(DeviationsOf(battery), Each(testing::Not(deviation)));
      battery.*capacity = Energy(50000);
      EXPECT_THAT(DeviationsOf(battery), testing::Contains(deviation));
    }
  }
  SystemBattery battery;
  battery.standInVoltage = 12600;
  battery.designCapacity = Energy(50000);
  EXPECT_EQ(WordAt(battery, 0), 3968U) << "50000 / 12.6 is 3968.25";
}

TEST(BatteryBlock, TheStateDecidesTheSignOfTheCurrent) {
  SystemBattery battery;
  for (const std::int64_t told : {1500, -1500}) {
    battery.current = told;
    battery.state = ChargeState::Discharging;
    EXPECT_EQ(CurrentOf(battery), 0x10000U - 1500U);
    battery.state = ChargeState::Charging;
    EXPECT_EQ(CurrentOf(battery), 1500U);
    for (const auto state :
         {std::optional<ChargeState>(), std::optional(ChargeState::Full), std::optional(ChargeState::NotCharging)}) {
      battery.state = state;
      EXPECT_EQ(CurrentOf(battery), static_cast<std::uint16_t>(told)) << "as told";
    }
  }
  battery.current = 0;
  battery.state = ChargeState::Discharging;
  EXPECT_EQ(CurrentOf(battery), 0U);
}

TEST(BatteryBlock, TakesThePowerWhereThereIsNoCurrent) {
  SystemBattery battery;
  battery.power = 11400;
  battery.state = ChargeState::Discharging;
  EXPECT_EQ(CurrentOf(battery), 0U) << "without a voltage the current is not known";
  battery.voltage = 12000;
  battery.designVoltage = 10000;
  EXPECT_EQ(CurrentOf(battery), 0x10000U - 950U);
  battery.current = 0;
  EXPECT_EQ(CurrentOf(battery), 0U) << "a current that is told counts";
}

TEST(BatteryBlock, SetsTheFlagsThatTheDriverTells) {
  SystemBattery battery;
  battery.remainingCapacity = Charge(0);
  EXPECT_EQ(WordAt(battery, 0x12), 0U);
  battery.fullChargeCapacity = Charge(0);
  EXPECT_EQ(WordAt(battery, 0x12), 0U) << "a gauge that knows no full charge capacity knows no empty battery";
  battery.fullChargeCapacity = Energy(1);
  EXPECT_EQ(WordAt(battery, 0x12), 0x90U);
  battery.remainingCapacity = Energy(1);
  EXPECT_EQ(WordAt(battery, 0x12), 0x80U);
  battery.state = ChargeState::Full;
  EXPECT_EQ(WordAt(battery, 0x12), 0xA0U);
  battery.state = ChargeState::Discharging;
  EXPECT_EQ(WordAt(battery, 0x12), 0xC0U);
  for (const ChargeState idle : {ChargeState::Charging, ChargeState::NotCharging}) {
    battery.state = idle;
    EXPECT_EQ(WordAt(battery, 0x12), 0x80U);
  }
}

TEST(BatteryBlock, StoresTheLargestValueForANumberThatIsTooLarge) {
  SystemBattery battery;
  battery.designCapacity = Charge(65535);
  EXPECT_THAT(DeviationsOf(battery), IsEmpty());
  battery.designCapacity = Charge(65536);
  battery.cycleCount = -1;
  battery.current = 32768;
  const FilledBlock filled = FillBatteryBlock(battery);
  EXPECT_EQ(filled.block, TestBlock().Word(0x00, 0xFFFF).Word(0x0E, 0x7FFF).Bytes());
  EXPECT_THAT(DeviationsOf(battery), ElementsAre("the design capacity 65536 does not fit: 65535 stands for it",
                                                 "the cycle count -1 does not fit: 0 stands for it",
                                                 "the current 32768 does not fit: 32767 stands for it"));
  battery.current = -32768;
  EXPECT_EQ(CurrentOf(battery), 0x8000U);
  battery.current = -32769;
  EXPECT_EQ(CurrentOf(battery), 0x8000U);
  EXPECT_THAT(DeviationsOf(battery), testing::Contains("the current -32769 does not fit: -32768 stands for it"));
}

TEST(BatteryBlock, SurvivesEveryNumber) {
  for (const std::int64_t number : {kMost, kLeast, kMost - 1, kLeast + 1, std::int64_t{0}, std::int64_t{-1}}) {
    for (const auto state : {ChargeState::Discharging, ChargeState::Charging, ChargeState::Full}) {
      SystemBattery battery;
      battery.designCapacity = Energy(number);
      battery.fullChargeCapacity = Charge(number);
      battery.designVoltage = 1;
      battery.voltage = 1;
      battery.power = number;
      battery.state = state;
      const bool negative = state == ChargeState::Discharging || (state == ChargeState::Full && number < 0);
      EXPECT_EQ(WordAt(battery, 0), number > 0 ? 0xFFFFU : 0U) << number;
      EXPECT_EQ(WordAt(battery, 2), number > 0 ? 0xFFFFU : 0U) << number;
      EXPECT_EQ(CurrentOf(battery), number == 0    ? 0U
                                    : number == -1 ? CurrentOf(battery)
                                    : negative     ? 0x8000U
                                                   : 0x7FFFU)
          << number;
      battery.current = number;
      EXPECT_NO_THROW(FillBatteryBlock(battery));
    }
  }
}

TEST(BatteryBlock, CutsATextBetweenItsCharacters) {
  EXPECT_EQ(DeviceNameOf("PA5109U"), "PA5109U");
  EXPECT_EQ(DeviceNameOf("PA5109U-1BRS"), "PA5109U");
  EXPECT_EQ(DeviceNameOf("12345\xC3\xA9"), "12345\xC3\xA9") << "it fits";
  EXPECT_EQ(DeviceNameOf("123456\xC3\xA9"), "123456") << "the second byte does not";
  EXPECT_EQ(DeviceNameOf("12345\xE2\x82\xAC"), "12345");
  EXPECT_EQ(DeviceNameOf("1234\xF0\x9F\x94\x8B"), "1234");
  EXPECT_EQ(DeviceNameOf("123456\xFF\xFF"), "123456\xFF") << "no UTF-8";
  EXPECT_EQ(DeviceNameOf("\x80\x80\x80\x80\x80\x80\x80\x80\x80"), "\x80\x80\x80\x80\x80\x80\x80") << "no UTF-8";
  SystemBattery battery;
  battery.deviceName = "123456\xC3\xA9";
  EXPECT_THAT(DeviationsOf(battery),
              ElementsAre("the device name \"123456\xC3\xA9\" is cut to its first 6 bytes; its field has 7"));
}

TEST(BatteryBlock, LeavesOutADateThatNoBatteryCanTell) {
  const auto dateWord = [](int year, int month, int day) {
    SystemBattery battery;
    battery.manufactureDate = {year, month, day};
    return WordAt(battery, 0x5C);
  };
  EXPECT_EQ(dateWord(1980, 1, 1), (1U << 5U) | 1U);
  EXPECT_EQ(dateWord(2107, 12, 31), (127U << 9U) | (12U << 5U) | 31U);
  EXPECT_EQ(dateWord(1979, 12, 31), 0U);
  EXPECT_EQ(dateWord(2108, 1, 1), 0U);
  EXPECT_EQ(dateWord(2020, 0, 1), 0U);
  EXPECT_EQ(dateWord(2020, 13, 1), 0U);
  EXPECT_EQ(dateWord(2020, 1, 0), 0U);
  EXPECT_EQ(dateWord(2020, 1, 32), 0U);
  SystemBattery battery;
  battery.manufactureDate = {1970, 1, 1};
  EXPECT_THAT(DeviationsOf(battery),
              ElementsAre("the manufacture date 1970-1-1 is none that a battery can tell, and is left out"));
}

std::optional<SystemBattery> SmallBattery(std::uint32_t slot) {
  if (slot != 0) {
    return std::nullopt;
  }
  SystemBattery battery;
  battery.designCapacity = Charge(70000);
  battery.cycleCount = 300;
  return battery;
}

class BiosCommandAnswer : public testing::Test {
 protected:
  std::int32_t Send(std::uint32_t first, std::uint32_t second, std::uint32_t third) {
    return AnswerBiosCommand(first, second, third, input_.data(), 128, output_.data(), &returnCode_, SmallBattery);
  }

  std::array<unsigned char, 128> input_{};
  std::array<unsigned char, 128> output_{};
  std::uint32_t returnCode_ = 99;
};

TEST_F(BiosCommandAnswer, IsTheBatterysBlock) {
  EXPECT_EQ(Send(1, 7, 1), 0);
  EXPECT_EQ(returnCode_, 0U);
  EXPECT_EQ(output_, TestBlock().Word(0, 0xFFFF).Word(8, 300).Bytes());
}

TEST_F(BiosCommandAnswer, IsAReturnCodeWithoutABattery) {
  for (const int slot : {1, 2, 255}) {
    input_[0] = static_cast<unsigned char>(slot);
    returnCode_ = 99;
    EXPECT_EQ(Send(1, 7, 1), 0);
    EXPECT_EQ(returnCode_, 6U);
  }
  EXPECT_EQ(output_, TestBlock().Bytes());
}

TEST_F(BiosCommandAnswer, SupportsNoOtherCommand) {
  for (const auto& [first, second, third] :
       {std::array{1U, 86U, 1U}, std::array{1U, 8U, 1U}, std::array{2U, 7U, 1U}, std::array{1U, 7U, 2U}}) {
    returnCode_ = 99;
    EXPECT_EQ(Send(first, second, third), 0);
    EXPECT_EQ(returnCode_, 4U);
  }
  EXPECT_EQ(output_, TestBlock().Bytes());
}

TEST_F(BiosCommandAnswer, NeedsAllItsBuffers) {
  constexpr auto kInvalidArgument = static_cast<std::int32_t>(0x80070057U);
  const auto* input = input_.data();
  auto* output = output_.data();
  EXPECT_EQ(AnswerBiosCommand(1, 7, 1, nullptr, 128, output, &returnCode_, SmallBattery), kInvalidArgument);
  EXPECT_EQ(AnswerBiosCommand(1, 7, 1, input, 0, output, &returnCode_, SmallBattery), kInvalidArgument);
  EXPECT_EQ(AnswerBiosCommand(1, 7, 1, input, 128, nullptr, &returnCode_, SmallBattery), kInvalidArgument);
  EXPECT_EQ(AnswerBiosCommand(1, 7, 1, input, 128, output, nullptr, SmallBattery), kInvalidArgument);
  EXPECT_EQ(returnCode_, 99U);
}

// The running system with one battery in it.
class OneBattery : public platform::PlatformWrapper {
 public:
  using PlatformWrapper::PlatformWrapper;

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override {
    return AnswerBiosCommand(first, second, third, input, inputSize, output, returnCode, SmallBattery);
  }
};

const platform::WmiTimedOut kTimedOut{std::chrono::milliseconds(50), L"SELECT * FROM Things"};

TEST(Remarks, GoToTheLog) {
  OneBattery machine(platform::Platform::Current());
  const platform::ScopedPlatform scope(machine);
  const LogCapture log;
  const shared::battery::NorvBatteries batteries;
  const LogLine expected{plog::info, "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo",
                         "Battery index 0: the design capacity 70000 does not fit: 65535 stands for it"};
  EXPECT_THAT(log.Lines(), testing::Contains(expected));
  const std::size_t lines = log.Lines().size();
  platform::Tell(kTimedOut);
  EXPECT_EQ(log.Lines().size(), lines) << "nobody listens any more";
}

// The running system without WMI, which it remarks about.
class NoWmi : public platform::PlatformWrapper {
 public:
  using PlatformWrapper::PlatformWrapper;

  std::int32_t SendBiosCommand(std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                               const unsigned char* /*input*/, std::uint32_t /*inputSize*/, unsigned char* /*output*/,
                               std::uint32_t* returnCode) override {
    *returnCode = 0;
    return 0;
  }
  long ConnectWmi(const std::wstring& /*namespacePath*/,
                  std::unique_ptr<platform::WmiConnection>& /*connection*/) override {
    platform::Tell(kTimedOut);
    return -1;
  }
};

TEST(Remarks, OnFailuresAreErrorsInTheLogAlsoOfTheSettings) {
  NoWmi machine(platform::Platform::Current());
  const platform::ScopedPlatform scope(machine);
  const LogCapture log;
  const shared::battery::NorvBatteries batteries;
  const std::string type = "norv::shared::battery::NorvBatteries::";
  const std::string line = "WMI has not answered within 50 ms: SELECT * FROM Things";
  EXPECT_THAT(log.Lines(), testing::Contains(LogLine{plog::error, type + "ReadNorvBatteryInfo", line}).Times(2))
      << "the rates of two batteries";
  EXPECT_THAT(log.Lines(), testing::Contains(LogLine{plog::error, type + "NorvBatteries", line}).Times(2))
      << "the board, the settings";
}

TEST(Remarks, GoToTheInnermostListener) {
  struct Keeper : platform::RemarkListener {
    void Hear(const platform::Remark& remark) override { slots.push_back(std::get<BlockDeviates>(remark).slot); }
    std::vector<std::uint32_t> slots;
  };
  Keeper outer;
  Keeper inner;
  const Listening<platform::RemarkListener> outerScope(&outer);
  {
    const Listening<platform::RemarkListener> innerScope(&inner);
    platform::Tell(BlockDeviates{1, platform::DateLeftOut{}});
  }
  platform::Tell(BlockDeviates{2, platform::DateLeftOut{}});
  {
    const Listening<platform::RemarkListener> nobody(nullptr);
    platform::Tell(BlockDeviates{3, platform::DateLeftOut{}});
  }
  EXPECT_THAT(inner.slots, ElementsAre(1U));
  EXPECT_THAT(outer.slots, ElementsAre(2U));
}

}  // namespace
}  // namespace norv::test
