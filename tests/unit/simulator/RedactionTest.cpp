// A redacted recording tells nothing of whose machine it is, and all the rest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <system_error>

#include "MachineText.h"
#include "battery/NorvBatteries.h"
#include "machine/HexText.h"
#include "norv/simulator/MachineRecorder.h"
#include "record/TrailingDate.h"
#include "recording/RedactedBlock.h"
#include "unit/support/Snapshot.h"

namespace norv::simulator {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using testing::HasSubstr;
using testing::Not;

// Not a good hash, but one that tells keys and values apart, and a fast one.
KeyedHash HashWith(std::uint64_t key) {
  return [key](const std::string& value) {
    std::uint64_t state = 0xCBF29CE484222325U + key;
    for (const char c : value) {
      state = (state ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    }
    std::array<unsigned char, 32> hash{};
    std::generate(hash.begin(), hash.end(), [&] {
      state = (state ^ (state >> 29)) * 0xBF58476D1CE4E5B9U + 1;
      return static_cast<unsigned char>(state >> 56);
    });
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
  if (c >= 'A' && c <= 'Z') {
    return 'A';
  }
  return (c & 0x80) != 0 ? '\x80' : c;
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

// Every one of `numbers` becomes another number of the same shape and with the same date, and no two become one.
void ExpectPermuted(const std::vector<std::string>& numbers, const KeyedHash& hash) {
  std::set<std::string> masked;
  for (const std::string& number : numbers) {
    const std::string other = MaskedSerialNumber(number, hash);
    const std::size_t date = TrailingDateLength(number);
    ASSERT_EQ(Kinds(other), Kinds(number));
    ASSERT_EQ(TrailingDateLength(other), date) << number << " became " << other;
    ASSERT_EQ(other.substr(other.size() - date), number.substr(number.size() - date));
    masked.insert(other);
  }
  EXPECT_EQ(masked.size(), numbers.size());
}

std::vector<std::string> Numbers(int digits, const std::string& end) {
  int count = 1;
  for (int i = 0; i < digits; ++i) {
    count *= 10;
  }
  std::vector<std::string> numbers;
  for (int i = 0; i < count; ++i) {
    numbers.push_back(std::to_string(count + i).substr(1) + end);
  }
  return numbers;
}

TEST(MaskedSerialNumber, IsAPermutation) {
  for (const std::uint64_t key : {1U, 2U}) {
    ExpectPermuted(Numbers(5, " 2022-09-14"), HashWith(key));
    ExpectPermuted(Numbers(4, ""), HashWith(key));
    ExpectPermuted(Numbers(1, ""), HashWith(key));
    ExpectPermuted(Numbers(0, ""), HashWith(key));
  }
}

// One in a hundred of these has another date, the one that begins further left.
TEST(MaskedSerialNumber, IsAPermutationBesideTheNumbersOfAnotherDate) {
  for (std::uint64_t key = 0; key < 50; ++key) {
    ExpectPermuted(Numbers(2, "19-05-06"), HashWith(key));
    ExpectPermuted(Numbers(3, "19/12/31"), HashWith(key));
  }
}

// Some of them would read as a date if only their shape was kept.
TEST(MaskedSerialNumber, MakesNoDate) {
  std::vector<std::string> numbers = Numbers(4, "");
  for (std::string& number : numbers) {
    number = number.substr(0, 2) + "-" + number.substr(2, 2) + "-99";
  }
  ExpectPermuted(numbers, HashWith(1));
  // A hash without any randomness is no reason to go round without an end.
  ExpectPermuted(numbers, [](const std::string&) {
    std::array<unsigned char, 32> sevens{};
    sevens.fill(7);
    return sevens;
  });
}

TEST(MaskedSerialNumber, MasksEveryKindOfCharacter) {
  std::vector<std::string> numbers;
  for (int first = 0x80; first < 0x100; ++first) {
    for (const char last : std::string_view("059AMZamz")) {
      numbers.push_back(std::string(1, static_cast<char>(first)) + "-" + last);
    }
  }
  ExpectPermuted(numbers, HashWith(3));
  int same = 0;
  for (const std::string& number : numbers) {
    same += MaskedSerialNumber(number, HashWith(3))[0] == number[0] ? 1 : 0;
  }
  EXPECT_LT(same, 50);  // of 1152
}

TEST(MaskedSerialNumber, HangsOnTheKey) {
  int same = 0;
  for (const std::string& number : Numbers(4, "")) {
    same += MaskedSerialNumber(number, HashWith(1)) == MaskedSerialNumber(number, HashWith(2)) ? 1 : 0;
  }
  EXPECT_LT(same, 20);  // one is to be expected
}

// A block with something of the owner's in every byte that nothing decodes, as a battery's and as the other block.
std::string OwnersBlock() {
  std::string block(0x1C, '\x12');
  while (block.size() < 128) {
    block += "KARL";
  }
  block.replace(0x1C, 16, std::string("A1b\xE9", 4) + "2021-05-06" + std::string("\0K", 2));
  block.replace(0x2C, 18, std::string("123-45-67-A\0KARLKA", 18));
  block.replace(0x3E, 16, std::string("6ABCDEFGHIJKLM\0K", 16));
  block.replace(0x4F, 7, std::string("HT3\0ARL", 7));
  return block.replace(0x5C, 2, "\x34\x56");
}

std::string Hex(const std::string& bytes) {
  return HexText({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

// Asks for more than the library does.
std::string OwnersRecording(std::uint64_t key, const std::string& battery) {
  const auto machine = MachineWith(R"("modulePath": "C:\\Users\\Karl\\norv-battery-info.dll", "slots": [{
    "battery": {"hex": ")" + Hex(battery) +
                                   R"("}, "cellSwell": {"hex": ")" + Hex(OwnersBlock()) + R"("}}], "wmi": {
    "karl": {}, "root\\cimv2": {"Win32_BIOS": [{"SerialNumber": "KARL", "Name": "Karl"}], "Karl": []}})");
  MachineRecorder recorder(machine->AsPlatform());
  {
    const platform::ScopedPlatform scope(recorder);
    NorvBatteries batteries(true, true, nullptr, nullptr);
    std::unique_ptr<platform::WmiConnection> connection;
    EXPECT_EQ(recorder.ConnectWmi(L"karl", connection), 0);
    EXPECT_EQ(recorder.ConnectWmi(L"root\\cimv2", connection), 0);
    EXPECT_EQ(connection->Query(L"SELECT * FROM Karl"), 0);
    EXPECT_NE(connection->Query(L"SELECT * FROM Win32_BIOS WHERE Karl"), 0);
    EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS WHERE Name = 'Karl'"), 0);
    EXPECT_EQ(connection->Query(L"SELECT * FROM Win32_BIOS"), 0);
    EXPECT_TRUE(connection->Next());
    std::string text;
    EXPECT_EQ(connection->ReadText(L"SerialNumber", text), 0);
    EXPECT_EQ(connection->ReadText(L"Name", text), 0);
    EXPECT_NE(connection->ReadText(L"Karl", text), 0);
    platform::ProductVersion version;
    EXPECT_FALSE(recorder.ReadProductVersion("C:/Users/Karl/program.exe", version));
    Block output{};
    std::uint32_t returnCode = 0;
    const std::string input = "Karl";
    recorder.SendBiosCommand(1, 7, 1, reinterpret_cast<const unsigned char*>(input.data()), 4, output.data(),
                             &returnCode);
    recorder.SendBiosCommand(2, 7, 1, output.data(), 1, output.data(), &returnCode);
  }
  RecordingOptions options;
  options.origin = {"file", "/home/karl/my.json", "Karl's machine"};
  options.hash = HashWith(key);
  return recorder.MachineText(options);
}

TEST(Redaction, KeepsOnlyWhatTheLibraryAsks) {
  const std::string text = OwnersRecording(1, OwnersBlock());
  for (const std::string& known : {std::string("Karl"), std::string("karl"), std::string("KARL"), Hex("ARL"),
                                   Hex("Karl"), Hex("KA"), std::string("SerialNumber"), Hex("A1b\xE9"), Hex("JKLM")}) {
    EXPECT_THAT(text, Not(HasSubstr(known)));
  }
  const auto json = nlohmann::json::parse(text);
  EXPECT_EQ(json["description"], "A recorded machine");
  EXPECT_EQ(json["recordedFrom"], nlohmann::json({{"kind", "file"}, {"name", "xxxxxxxxxxxxxxxxxx"}}));
  EXPECT_EQ(json["modulePath"], "xx\\xxxxx\\xxxx\\norv-battery-info.dll");
  EXPECT_EQ(json["wmi"].size(), 3U);
  // The library connects to the same namespace under another name.
  EXPECT_EQ(json["answers"], nlohmann::json::parse(R"([{"operation": "Query", "namespace": "root\\cimv2",
      "argument": "SELECT * FROM Win32_BIOS", "rows": [{"Name": "xxxx"}]}])"));
}

class OwnersCategory : public std::error_category {
 public:
  const char* name() const noexcept override { return "Karl"; }
  std::string message(int) const override { return "Karl is at home"; }
};

// A platform of a host's own, with something of the owner's in what no machine file can say.
class OwnersPlatform : public platform::PlatformWrapper {
 public:
  using PlatformWrapper::PlatformWrapper;

  std::int32_t SendBiosCommand(std::uint32_t, std::uint32_t, std::uint32_t, const unsigned char*, std::uint32_t,
                               unsigned char*, std::uint32_t*) override {
    static const OwnersCategory category;
    throw std::system_error(7, category, "Karl");
  }
  std::wstring ModuleName() override { return L"K\u00E4rl.dll"; }
  platform::SlotDescription DescribeSlot(std::uint32_t slot) override {
    platform::SlotDescription description;
    description.source = slot == 0 ? "Karl\r\nhimself" : "the system's battery driver";
    description.told.reset(3);
    description.stateOfCharge = 57;
    description.modelName = slot == 0 ? "Karl's" : "NV3C50X";
    description.serialNumber = slot == 0 ? "Karl-01497 2021/03/17" : "K\u00E4rl";
    description.manufacturer = slot == 0 ? "Karl the manufacturer himself" : "333-AC-59-A";
    description.technology = slot == 0 ? "Karl" : "Li-ion";
    description.designEnergy = 50050;
    description.power = -9874;
    return description;
  }
  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override {
    std::string_view("C:\\Karl\\a.dll\0Karl", 18).copy(buffer, size);
    return 18;
  }
};

TEST(Redaction, MasksWhatNoMachineFileSays) {
  const auto machine = MachineWith(R"("slots": [])");
  OwnersPlatform owners(machine->AsPlatform());
  MachineRecorder recorder(owners);
  std::array<char, 40> buffer{};
  std::uint32_t returnCode = 0;
  EXPECT_THROW(recorder.SendBiosCommand(1, 7, 1, nullptr, 0, nullptr, &returnCode), std::system_error);
  EXPECT_EQ(recorder.ModuleName(), L"K\u00E4rl.dll");
  EXPECT_EQ(recorder.DescribeSlot(0).source, "Karl\r\nhimself");
  EXPECT_EQ(recorder.DescribeSlot(1).technology, "Li-ion");
  EXPECT_EQ(recorder.LibraryPath(buffer.data(), buffer.size()), 18U);
  RecordingOptions options;
  options.hash = HashWith(1);
  const std::string text = recorder.MachineText(options);
  EXPECT_THAT(text, Not(HasSubstr("arl")));
  const auto replayed = SimulatedMachine::FromText(text, "the recording");
  platform::Platform& replay = replayed->AsPlatform();
  try {
    replay.SendBiosCommand(1, 7, 1, nullptr, 0, nullptr, &returnCode);
    ADD_FAILURE();
  } catch (const std::system_error& thrown) {
    EXPECT_EQ(thrown.code(), std::error_code(7, std::generic_category()));
  }
  EXPECT_EQ(replay.ModuleName(), L"xxxxxxxxx");
  const platform::SlotDescription masked = replay.DescribeSlot(0);
  EXPECT_EQ(masked.source, "xxxx\r\nxxxxxxx");
  EXPECT_EQ(masked.modelName, "xxxxxx");
  EXPECT_EQ(masked.serialNumber.size(), 21U);
  EXPECT_THAT(masked.serialNumber, testing::EndsWith(" 2021/03/17"));
  EXPECT_EQ(masked.manufacturer, std::string(29, 'x'));
  EXPECT_EQ(masked.technology, "xxxx");
  platform::SlotDescription numbers;
  numbers.told.reset(3);
  EXPECT_EQ(masked.told, numbers.told);
  EXPECT_EQ(masked.stateOfCharge, 57U);
  EXPECT_EQ(masked.designEnergy, 50050);
  EXPECT_EQ(masked.power, -9874);
  const platform::SlotDescription kept = replay.DescribeSlot(1);
  EXPECT_EQ(kept.source, "the system's battery driver");
  EXPECT_EQ(kept.modelName, "NV3C50X");
  EXPECT_EQ(kept.manufacturer, "333-AC-59-A");
  EXPECT_EQ(kept.technology, "Li-ion");
  EXPECT_EQ(replay.LibraryPath(buffer.data(), buffer.size()), 18U);
  EXPECT_EQ(std::string(buffer.data(), 18), std::string("xx\\xxxx\\xxxxx\0xxxx", 18));
}

TEST(Redaction, ClearsWhatABlockDoesNotTell) {
  const auto replayed = SimulatedMachine::FromText(OwnersRecording(1, OwnersBlock()), "the recording");
  const auto bytes = Ask(replayed->AsPlatform(), 7, 0).output;
  const std::string block(bytes.begin(), bytes.end());
  const auto zeros = [](std::size_t count) { return std::string(count, '\0'); };
  EXPECT_EQ(Kinds(block.substr(0x1C, 4)), "A0a\x80");
  EXPECT_EQ(Kinds(block.substr(0x48, 4)), "AAAA");
  EXPECT_EQ(block, std::string(0x1C, '\x12') + block.substr(0x1C, 4) + "2021-05-06" + zeros(2) + "123-45-67-A" +
                       zeros(7) + "6ABCDEFGHI" + block.substr(0x48, 4) + zeros(3) + "HT3" + zeros(10) + "\x34\x56" +
                       zeros(34));
  const auto swell = Ask(replayed->AsPlatform(), 86, 0).output;
  EXPECT_EQ(std::string(swell.begin(), swell.end()), std::string(28, '\x12') + zeros(100));
  const auto odd = OwnersBlock().replace(0x4F, 7, "KAR LKA");
  const auto other = SimulatedMachine::FromText(OwnersRecording(1, odd), "the recording");
  EXPECT_EQ(Ask(other->AsPlatform(), 7, 0).output.at(0x4F), 0);
}

TEST(Redaction, ReplacesAlikeWithTheSameKeyOnly) {
  const std::string first = OwnersRecording(1, OwnersBlock());
  EXPECT_EQ(OwnersRecording(1, OwnersBlock()), first);
  EXPECT_NE(OwnersRecording(2, OwnersBlock()), first);
}

}  // namespace
}  // namespace norv::simulator
