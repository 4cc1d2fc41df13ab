// What the slots of a machine file answer to the BIOS commands.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "MachineText.h"

namespace norv::simulator {
namespace {

constexpr std::uint32_t kBattery = 7;
constexpr std::uint32_t kCellSwell = 86;

unsigned WordAt(const BiosAnswer& answer, std::size_t offset) {
  return answer.output[offset] | static_cast<unsigned>(answer.output[offset + 1]) << 8;
}

std::string TextAt(const BiosAnswer& answer, std::size_t offset, std::size_t width) {
  const auto start = answer.output.begin() + static_cast<std::ptrdiff_t>(offset);
  return {start, start + static_cast<std::ptrdiff_t>(width)};
}

BiosAnswer BatteryWith(const std::string& fields) {
  const auto machine = MachineWith("\"slots\": [{\"battery\": {" + fields + "}}]");
  return Ask(machine->AsPlatform(), kBattery, 0);
}

TEST(BiosAnswers, EachWordLiesAtItsOffset) {
  const std::vector<std::pair<std::string, std::size_t>> words{
      {"designCapacity", 0x00}, {"fullChargeCapacity", 0x02}, {"remainingCapacity", 0x04}, {"maxError", 0x06},
      {"cycleCount", 0x08},     {"temperature", 0x0A},        {"voltage", 0x0C},           {"current", 0x0E},
      {"designVoltage", 0x10},  {"batteryStatus", 0x12},      {"manufactureDate", 0x5C}};
  for (const auto& [key, offset] : words) {
    const BiosAnswer answer = BatteryWith("\"" + key + "\": 4660");
    EXPECT_EQ(answer.returnCode, 0U);
    for (std::size_t i = 0; i < 128; ++i) {
      const unsigned expected = i == offset ? 0x34 : i == offset + 1 ? 0x12 : 0;
      EXPECT_EQ(answer.output[i], expected) << key << " at " << i;
    }
  }
}

TEST(BiosAnswers, EachCellSwellWordLiesAtItsOffset) {
  const char* const keys[] = {"timeCharge",
                              "timeDischarge",
                              "timeRelax",
                              "timeSleep",
                              "timeFullCharge",
                              "timeRsoc",
                              "levelATime",
                              "levelBTime",
                              "levelARunningTime",
                              "levelBRunningTime",
                              "levelATemperature1Time",
                              "levelBTemperature1Time",
                              "levelATemperature2Time",
                              "levelBTemperature2Time"};
  std::size_t offset = 0;
  for (const char* key : keys) {
    const auto machine = MachineWith(std::string(R"("slots": [{"cellSwell": {")") + key + R"(": 4660}}])");
    const BiosAnswer answer = Ask(machine->AsPlatform(), kCellSwell, 0);
    EXPECT_EQ(answer.returnCode, 0U);
    for (std::size_t i = 0; i < 128; ++i) {
      const unsigned expected = i == offset ? 0x34 : i == offset + 1 ? 0x12 : 0;
      EXPECT_EQ(answer.output[i], expected) << key << " at " << i;
    }
    offset += 2;
  }
}

TEST(BiosAnswers, ANegativeCurrentIsItsTwosComplement) {
  EXPECT_EQ(WordAt(BatteryWith("\"current\": -1"), 0x0E), 0xFFFFU);
  EXPECT_EQ(WordAt(BatteryWith("\"current\": -32768"), 0x0E), 0x8000U);
  EXPECT_EQ(WordAt(BatteryWith("\"current\": 65535"), 0x0E), 0xFFFFU);
}

TEST(BiosAnswers, TextsFillTheirFieldsByteForByte) {
  const BiosAnswer answer = BatteryWith(
      "\"serialNumber\": \"0123456789abcdef\", \"manufacturer\": \"ABCDEFGHIJKLMNOPQR\", "
      "\"ctNumber\": \"6\\u00ff\\u0000x\", \"deviceName\": \"1234567\"");
  EXPECT_EQ(TextAt(answer, 0x1C, 16), "0123456789abcdef");
  EXPECT_EQ(TextAt(answer, 0x2C, 18), "ABCDEFGHIJKLMNOPQR");
  EXPECT_EQ(TextAt(answer, 0x3E, 16), std::string("6\xFF\0x", 4) + std::string(12, '\0'));
  EXPECT_EQ(answer.output[0x4E], 0);
  EXPECT_EQ(TextAt(answer, 0x4F, 7), "1234567");
  EXPECT_EQ(answer.output[0x56], 0);
}

TEST(BiosAnswers, ADateIsPacked) {
  EXPECT_EQ(WordAt(BatteryWith("\"manufactureDate\": \"2021-05-06\""), 0x5C), 0x52A6U);
  EXPECT_EQ(WordAt(BatteryWith("\"manufactureDate\": \"1980-00-00\""), 0x5C), 0U);
  EXPECT_EQ(WordAt(BatteryWith("\"manufactureDate\": \"2107-15-31\""), 0x5C), 0xFFFFU);
}

TEST(BiosAnswers, FieldsOverwriteTheBytesInHex) {
  std::string hex;
  for (int i = 0; i < 128; ++i) {
    hex += "a5 ";
  }
  const BiosAnswer answer =
      BatteryWith("\"hex\": \"" + hex + R"(", "voltage": 4660, "cellVoltages": [1, 2], "deviceName": "AB")");
  for (std::size_t i = 0; i < 128; ++i) {
    const bool voltage = i == 0x0C || i == 0x0D;
    const bool cells = i >= 0x14 && i < 0x18;
    const bool name = i >= 0x4F && i < 0x56;
    EXPECT_EQ(answer.output[i] == 0xA5, !voltage && !cells && !name) << i;
  }
  EXPECT_EQ(WordAt(answer, 0x0C), 4660U);
  EXPECT_EQ(WordAt(answer, 0x14), 1U);
  EXPECT_EQ(WordAt(answer, 0x16), 2U);
  EXPECT_EQ(TextAt(answer, 0x4F, 7), std::string("AB\0\0\0\0\0", 7));
}

TEST(BiosAnswers, HexIsReadInEitherCase) {
  std::string hex = "0fF0";
  hex.append(252, '0');
  const BiosAnswer answer = BatteryWith("\"hex\": \"" + hex + "\"");
  EXPECT_EQ(answer.output[0], 0x0F);
  EXPECT_EQ(answer.output[1], 0xF0);
}

TEST(BiosAnswers, AnEmptySlotHasNoBattery) {
  const auto machine = MachineWith("\"slots\": [null]");
  constexpr unsigned char kSlots[] = {0, 1, 2, 255};
  for (const unsigned char slot : kSlots) {
    const BiosAnswer battery = Ask(machine->AsPlatform(), kBattery, slot);
    EXPECT_EQ(battery.status, 0);
    EXPECT_EQ(battery.returnCode, 6U);
    EXPECT_TRUE(IsUntouched(battery));
    EXPECT_EQ(Ask(machine->AsPlatform(), kCellSwell, slot).returnCode, 52U);
  }
}

TEST(BiosAnswers, ABatteryWithoutCellSwellDataDoesNotSupportIt) {
  const auto machine = MachineWith("\"slots\": [{\"battery\": {}}]");
  const BiosAnswer answer = Ask(machine->AsPlatform(), kCellSwell, 0);
  EXPECT_EQ(answer.returnCode, 4U);
  EXPECT_TRUE(IsUntouched(answer));
}

TEST(BiosAnswers, ReturnCodesTakeTheBlocksPlace) {
  const auto machine = MachineWith(
      R"("slots": [{"battery": {}, "batteryReturnCode": 52, "cellSwell": {}, "cellSwellReturnCode": "0xFFFFFFFF"}])");
  const BiosAnswer battery = Ask(machine->AsPlatform(), kBattery, 0);
  EXPECT_EQ(battery.status, 0);
  EXPECT_EQ(battery.returnCode, 52U);
  EXPECT_TRUE(IsUntouched(battery));
  EXPECT_EQ(Ask(machine->AsPlatform(), kCellSwell, 0).returnCode, 0xFFFFFFFFU);
}

TEST(BiosAnswers, AFailedChannelTouchesNothing) {
  const auto machine =
      MachineWith(R"("slots": [{"battery": {}, "batteryChannelStatus": "0x80070005", "cellSwellChannelStatus": -5}])");
  const BiosAnswer battery = Ask(machine->AsPlatform(), kBattery, 0);
  EXPECT_EQ(battery.status, Hresult(0x80070005));
  EXPECT_EQ(battery.returnCode, 12345U);
  EXPECT_TRUE(IsUntouched(battery));
  EXPECT_EQ(Ask(machine->AsPlatform(), kCellSwell, 0).status, -5);
}

TEST(BiosAnswers, OtherCommandsAreNotSupported) {
  const auto machine = MachineWith("\"slots\": [{\"battery\": {}}]");
  EXPECT_EQ(Ask(machine->AsPlatform(), 8, 0).returnCode, 4U);
  unsigned char block[128] = {};
  std::uint32_t returnCode = 0;
  EXPECT_EQ(machine->AsPlatform().SendBiosCommand(2, 7, 1, block, 128, block, &returnCode), 0);
  EXPECT_EQ(returnCode, 4U);
}

TEST(BiosAnswers, NullPointersAreRefused) {
  const auto machine = MachineWith("\"slots\": [{\"battery\": {}}]");
  platform::Platform& platform = machine->AsPlatform();
  unsigned char block[128] = {};
  std::uint32_t returnCode = 7;
  const auto invalid = static_cast<std::int32_t>(0x80070057);
  EXPECT_EQ(platform.SendBiosCommand(1, 7, 1, nullptr, 128, block, &returnCode), invalid);
  EXPECT_EQ(platform.SendBiosCommand(1, 7, 1, block, 0, block, &returnCode), invalid);
  EXPECT_EQ(platform.SendBiosCommand(1, 7, 1, block, 128, nullptr, &returnCode), invalid);
  EXPECT_EQ(platform.SendBiosCommand(1, 7, 1, block, 128, block, nullptr), invalid);
  EXPECT_EQ(returnCode, 7U);
}

}  // namespace
}  // namespace norv::simulator
