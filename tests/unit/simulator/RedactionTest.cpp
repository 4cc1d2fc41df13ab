// A redacted recording tells nothing of whose machine it is, and all the rest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>

#include "HexText.h"
#include "MachineText.h"
#include "Redaction.h"
#include "battery/NorvBatteries.h"
#include "norv/simulator/MachineRecorder.h"
#include "record/TrailingDate.h"
#include "unit/support/Snapshot.h"

namespace norv::simulator {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using testing::HasSubstr;
using testing::Not;

// Not a good hash, but one that tells keys and values apart.
KeyedHash HashWith(unsigned int key) {
  return [key](const std::string& value) {
    std::seed_seq seed(value.begin(), value.end());
    std::array<unsigned int, 1> start{};
    seed.generate(start.begin(), start.end());
    std::mt19937 random(start[0] + key);
    std::array<unsigned char, 32> hash{};
    std::generate(hash.begin(), hash.end(), [&] { return static_cast<unsigned char>(random()); });
    return hash;
  };
}

std::string RecordedText(platform::Platform& platform, const KeyedHash& hash) {
  MachineRecorder recorder(platform);
  {
    const platform::ScopedPlatform scope(recorder);
    NorvBatteries batteries(true, true, nullptr, nullptr);
    for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
      if (auto* record = batteries.Query(slot)) {
        record->GetAge();
      }
    }
  }
  RecordingOptions options;
  options.hash = hash;
  return recorder.MachineText(options);
}

test::Snapshot AllAnswers(NorvBatteryInfo& record) {
  test::Snapshot answers{{"valid", std::to_string(record.IsValid())}};
  answers.merge(test::Answers(record));
  answers["age"] = std::to_string(record.GetAge());
  return answers;
}

char Kind(char c) {
  if (c >= '0' && c <= '9') {
    return '0';
  }
  if (c >= 'a' && c <= 'z') {
    return 'a';
  }
  return c >= 'A' && c <= 'Z' ? 'A' : c;
}

std::string Kinds(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), Kind);
  return text;
}

void ExpectTheSameButForItsNumbers(NorvBatteryInfo& plain, NorvBatteryInfo& redacted) {
  test::Snapshot expected = AllAnswers(plain);
  test::Snapshot actual = AllAnswers(redacted);
  const std::string serial = expected["serial number"];
  const std::string ct = expected["CT number"];
  EXPECT_EQ(Kinds(actual["serial number"]), Kinds(serial));
  EXPECT_EQ(Kinds(actual["CT number"]), Kinds(ct));
  EXPECT_EQ(actual["CT number"].substr(0, 10), ct.substr(0, 10));
  for (const char* number : {"serial number", "CT number"}) {
    expected.erase(number);
    actual.erase(number);
  }
  EXPECT_EQ(actual, expected) << "serial number " << serial;
}

TEST(Redaction, KeepsAllOtherAnswersOfEverySample) {
  int batteries = 0;
  for (const SampleMachine& sample : SampleMachines()) {
    SCOPED_TRACE(sample.name);
    auto json = nlohmann::json::parse(SampleText(sample.name));
    if (json.contains("testProgram") && json["testProgram"].is_object()) {
      json["testProgram"].erase("runsMilliseconds");
    }
    const auto machine = SimulatedMachine::FromText(json.dump(), sample.name);
    NorvBatteries plain(true, true, nullptr, nullptr);
    const auto replayed = SimulatedMachine::FromText(RecordedText(machine->AsPlatform(), HashWith(1)), "the recording");
    NorvBatteries redacted(true, true, nullptr, nullptr);
    for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
      ASSERT_EQ(plain.Query(slot) == nullptr, redacted.Query(slot) == nullptr);
      if (plain.Query(slot) != nullptr) {
        ExpectTheSameButForItsNumbers(*plain.Query(slot), *redacted.Query(slot));
        ++batteries;
      }
    }
  }
  EXPECT_GT(batteries, 20);
}

// A block of random bytes, its texts of characters that dates, CT numbers and other texts are made of.
std::string RandomBlock(std::mt19937& random) {
  constexpr std::string_view kCharacters = "00112233456789- /.ABxyz\xE9";
  std::array<unsigned char, 128> block{};
  std::generate(block.begin(), block.end(), [&] { return static_cast<unsigned char>(random()); });
  const auto write = [&](std::size_t offset, std::size_t width, const std::string& end) {
    for (std::size_t i = 0; i < width; ++i) {
      block.at(offset + i) = static_cast<unsigned char>(kCharacters[random() % kCharacters.size()]);
    }
    std::copy(end.begin(), end.end(), block.begin() + static_cast<std::ptrdiff_t>(offset + width - end.size()));
  };
  constexpr std::array<const char*, 8> kEnds = {"",         "2021-05-06", "05/06/2021", "19.05.06",
                                                "05 06 19", "9999-99-99", "20-13-45",   "00-12-2019"};
  write(0x1C, random() % 3 == 0 ? 16 : 10, kEnds.at(random() % kEnds.size()));
  write(0x1C, 16, random() % 2 == 0 ? kEnds.at(random() % kEnds.size()) : "");
  block.at(0x1C + random() % 32 % 17) = random() % 2 == 0 ? 0 : block.at(0x1C);
  write(0x3E, 16, "");
  block.at(0x3E) = '6';
  block.at(0x4C) = random() % 2 == 0 ? 0 : block.at(0x4C);
  return HexText(block);
}

TEST(Redaction, KeepsAllOtherAnswersOfRandomBlocks) {
  std::mt19937 random(20210506);
  for (int i = 0; i < 400; ++i) {
    const std::string block = RandomBlock(random);
    const auto machine =
        MachineWith(R"("clock": {"now": "2024-06-01T12:00:00Z"}, "slots": [{"battery": {"hex": ")" + block + "\"}}]");
    NorvBatteries plain(false, false, nullptr, nullptr);
    const auto replayed = SimulatedMachine::FromText(RecordedText(machine->AsPlatform(), HashWith(1)), "the recording");
    NorvBatteries redacted(false, false, nullptr, nullptr);
    ExpectTheSameButForItsNumbers(*plain.Query(0), *redacted.Query(0));
  }
}

TEST(Redaction, FindsTheDatesThatARecordFinds) {
  std::mt19937 random(7);
  int dates = 0;
  for (int i = 0; i < 5000; ++i) {
    std::string text(6 + random() % 11, ' ');
    std::generate(text.begin(), text.end(), [&] { return "0012219-/. x"[random() % 12]; });
    if (random() % 2 == 0) {
      text.replace(text.size() - 6, 6, "-01-12");
    }
    const bool isDate = shared::battery::record::FindTrailingDate(text).has_value();
    ASSERT_EQ(TrailingDateLength(text) != 0, isDate) << text;
    dates += isDate ? 1 : 0;
  }
  for (const char* text : {"BATT002021-05-06", "04217 2022-09-14", "x19/05/06", "x05.06.2021", "05 06 19"}) {
    EXPECT_TRUE(shared::battery::record::FindTrailingDate(text).has_value()) << text;
    EXPECT_GT(TrailingDateLength(text), 0U) << text;
  }
  EXPECT_EQ(TrailingDateLength("BATT002021-05-06"), 10U);
  EXPECT_EQ(TrailingDateLength("x05 06 19"), 8U);
  EXPECT_EQ(TrailingDateLength("2021-13-06"), 0U);
  EXPECT_GT(dates, 0);
}

// A serial number without a date must not come out with one.
TEST(Redaction, MakesNoDate) {
  const KeyedHash hash = [](const std::string& value) {
    std::array<unsigned char, 32> bytes{};
    bytes.fill(7);
    if (value.starts_with("serial0")) {
      bytes = {2, 0, 2, 1, 0, 0, 5, 0, 0, 6};  // the digits of a date
    }
    return bytes;
  };
  const auto machine = MachineWith(R"("slots": [{"battery": {"serialNumber": "9999-99-99"}}])");
  const auto replayed = SimulatedMachine::FromText(RecordedText(machine->AsPlatform(), hash), "the recording");
  NorvBatteries batteries;
  EXPECT_STREQ(batteries.Query(0)->GetSerialNumber(), "7777-77-77");
}

constexpr const char* kHomely = R"(
  "modulePath": "C:\\Users\\Jos\u00e9 Karl\\App\\norv-battery-info.dll",
  "slots": [{"battery": {"serialNumber": "A1b2c32021-05-06", "ctNumber": "6ABCDEFGHIJKLM"},
             "cellSwell": {"hex": "%"}}],
  "wmi": {"root\\cimv2": {"Win32_BIOS": [{"SerialNumber": "5CG1234XYZ", "Name": "of José Karl, A1b2c32021-05-06"}]}},
  "testProgram": {"version": "1.2.3.4",
                  "report": "<r i=\"6\">2</r><r>6ABCDEFGHIJKLM</r><r>A1b2c3</r><r>José Karl</r><r>A1b2c3x</r>"})";

std::string Homely() {
  std::string members = kHomely;
  std::string block = "A1b2c3 and more";
  block.resize(128, '\0');
  return members.replace(members.find('%'), 1,
                         HexText({reinterpret_cast<const unsigned char*>(block.data()), block.size()}));
}

// Asks for all that a home tells.
std::string HomelyRecording(unsigned int key) {
  const auto machine = MachineWith(Homely());
  MachineRecorder recorder(machine->AsPlatform());
  {
    const platform::ScopedPlatform scope(recorder);
    NorvBatteries batteries(true, true, nullptr, nullptr);
    EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), 2);
    std::unique_ptr<platform::WmiConnection> connection;
    EXPECT_EQ(recorder.ConnectWmi(L"root\\cimv2", connection), 0);
    EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
    EXPECT_TRUE(connection->Next());
    std::string text;
    EXPECT_EQ(connection->ReadText(L"SerialNumber", text), 0);
    EXPECT_EQ(connection->ReadText(L"Name", text), 0);
  }
  RecordingOptions options;
  options.origin = {"file", "/home/karl/my.json", "A machine"};
  options.hash = HashWith(key);
  return recorder.MachineText(options);
}

TEST(Redaction, LeavesNothingThatTellsTheOwner) {
  const std::string text = HomelyRecording(1);
  const std::string battery = "A1b2c3";
  for (const std::string& known : {std::string("Karl"), std::string("karl"), std::string("Jos"),
                                   std::string("5CG1234XYZ"), std::string("6ABCDEFGHIJKLM"), battery + "<",
                                   HexText({reinterpret_cast<const unsigned char*>(battery.data()), battery.size()})}) {
    EXPECT_THAT(text, Not(HasSubstr(known)));
  }
  EXPECT_THAT(text, HasSubstr("A1b2c3x"));  // another word
  EXPECT_THAT(text, HasSubstr("\\\\App\\\\norv-battery-info.dll"));
  const auto json = nlohmann::json::parse(text);
  const std::string origin = json["recordedFrom"]["name"];
  EXPECT_EQ(origin.substr(0, 6) + "...." + origin.substr(10), "/home/..../my.json");
  EXPECT_EQ(Kinds(origin.substr(6, 4)), "aaaa");
  // The test program lies beside the library, whose path has another name in it now.
  const auto replayed = SimulatedMachine::FromText(text, "the recording");
  NorvBatteries batteries(true, true, nullptr, nullptr);
  EXPECT_EQ(batteries.Query(0)->GetBatteryTestResult(), 2);
  const std::string serial = batteries.Query(0)->GetSerialNumber();
  EXPECT_EQ(serial.substr(6), "2021-05-06");
  EXPECT_THAT(json["testProgram"]["report"].get<std::string>(), HasSubstr("<r>" + serial.substr(0, 6) + "</r>"));
  EXPECT_THAT(json["testProgram"]["report"].get<std::string>(),
              HasSubstr("<r>" + std::string(batteries.Query(0)->GetCtNumber()) + "</r>"));
}

TEST(Redaction, ReplacesAlikeWithTheSameKeyOnly) {
  auto first = nlohmann::json::parse(HomelyRecording(1));
  auto second = nlohmann::json::parse(HomelyRecording(1));
  const auto other = nlohmann::json::parse(HomelyRecording(2));
  first["recordedFrom"].erase("programData");
  second["recordedFrom"].erase("programData");
  EXPECT_EQ(first, second);
  EXPECT_NE(first["slots"], other["slots"]);
  EXPECT_NE(first["modulePath"], other["modulePath"]);
}

}  // namespace
}  // namespace norv::simulator
