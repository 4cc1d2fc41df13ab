// A machine recorded into a machine file answers as it did.
#include "norv/simulator/MachineRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

#include "MachineText.h"
#include "battery/NorvBatteries.h"
#include "norv/simulator/FaultInjector.h"
#include "unit/support/LogCapture.h"
#include "unit/support/Snapshot.h"

namespace norv::simulator {
namespace {

using shared::battery::NorvBatteries;
using testing::HasSubstr;
using testing::Not;

using Slots = std::array<std::optional<test::Snapshot>, 2>;

// What a host learns of the current machine, with the library's log of it.
struct Learnt {
  Slots slots;
  std::string error;
  std::vector<std::string> log;
};

void PrintTo(const Learnt& learnt, std::ostream* stream) {
  *stream << learnt.error << '\n';
  for (const std::string& line : learnt.log) {
    *stream << line << '\n';
  }
}

bool operator==(const Learnt& left, const Learnt& right) {
  return left.slots == right.slots && left.error == right.error && left.log == right.log;
}

Learnt ReadAll() {
  Learnt learnt;
  const test::LogCapture log;
  NorvBatteries batteries(true, true, nullptr, nullptr);
  for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
    if (auto* record = batteries.Query(slot)) {
      learnt.slots.at(slot) = test::Answers(*record);
      learnt.slots.at(slot)->emplace("age", std::to_string(record->GetAge()));
    }
  }
  learnt.error = test::TextForm(batteries.GetError());
  for (const test::LogLine& line : log.Lines()) {
    learnt.log.push_back(line.message);
  }
  return learnt;
}

// The machine file of all that a host asks of `platform`, and what it learns by that.
struct Recorded {
  Learnt learnt;
  std::string text;
};

Recorded Record(platform::Platform& platform) {
  MachineRecorder recorder(platform);
  Recorded recorded;
  {
    const platform::ScopedPlatform scope(recorder);
    recorded.learnt = ReadAll();
  }
  recorded.text = recorder.MachineText();
  return recorded;
}

Learnt Replay(const std::string& text) {
  const auto machine = SimulatedMachine::FromText(text, "the recording");
  return ReadAll();
}

std::unique_ptr<SimulatedMachine> QuickSample(const std::string& name) {
  { const test::LogCapture logger; }  // asks for the module's name once in a process
  auto json = nlohmann::json::parse(SampleText(name));
  if (json.contains("testProgram") && json["testProgram"].is_object()) {
    json["testProgram"].erase("runsMilliseconds");
  }
  return SimulatedMachine::FromText(json.dump(), name);
}

TEST(MachineRecorder, EverySampleIsReplayedInTheWordsOfADescription) {
  for (const SampleMachine& sample : SampleMachines()) {
    SCOPED_TRACE(sample.name);
    const auto machine = QuickSample(sample.name);
    const Recorded recorded = Record(machine->AsPlatform());
    EXPECT_EQ(Replay(recorded.text), recorded.learnt);
    EXPECT_THAT(recorded.text, Not(HasSubstr("\"answers\"")));
  }
}

TEST(MachineRecorder, ARecordingOfARecordingIsTheSame) {
  const auto machine = QuickSample("two-batteries");
  auto first = nlohmann::json::parse(Record(machine->AsPlatform()).text);
  const auto replayed = SimulatedMachine::FromText(first.dump(), "the recording");
  auto second = nlohmann::json::parse(Record(replayed->AsPlatform()).text);
  first["recordedFrom"].erase("programData");  // a temporary folder of each machine's own
  second["recordedFrom"].erase("programData");
  EXPECT_EQ(first, second);
}

constexpr FaultEffect kEffects[]{
    FaultEffect::Status,         FaultEffect::ReturnCode,         FaultEffect::Code,
    FaultEffect::Fails,          FaultEffect::ThrowsRuntimeError, FaultEffect::ThrowsSystemError,
    FaultEffect::ThrowsBadAlloc, FaultEffect::ThrowsInt,          FaultEffect::ThrowsUnsignedLong,
    FaultEffect::ThrowsString,   FaultEffect::ThrowsText,         FaultEffect::ThrowsOther};

// Each call of each operation fails in turn in each way.
TEST(MachineRecorder, EveryFailureIsReplayed) {
  int failures = 0;
  for (const char* sample : {"two-batteries", "channel-failure", "test-program-missing", "excluded-bios"}) {
    const auto machine = QuickSample(sample);
    ReadAll();
    std::map<std::string, unsigned> calls;
    const std::vector<Operation> operations = machine->Operations();
    for (const Operation& operation : operations) {
      const unsigned call = ++calls[operation.name];
      for (const FaultEffect effect : kEffects) {
        const Fault fault{operation.name, call, std::nullopt, effect, 0x80070005};
        if (!FaultProblem(fault).empty()) {
          continue;
        }
        SCOPED_TRACE(std::string(sample) + ": " + operation.name + " " + std::to_string(call) + ", effect " +
                     std::to_string(static_cast<int>(effect)));
        FaultInjector injector(machine->AsPlatform(), {fault});
        const Recorded recorded = Record(injector);
        ASSERT_EQ(Replay(recorded.text), recorded.learnt) << recorded.text;
        ++failures;
      }
    }
  }
  EXPECT_GT(failures, 500);
}

// What stands in no description: answers that follow on one another, and a zone with daylight-saving time.
class OddPlatform : public platform::PlatformWrapper {
 public:
  using PlatformWrapper::PlatformWrapper;

  std::time_t Now() override { return now_ += 7; }
  std::time_t LocalTimeValue(const std::tm& time) override {
    return PlatformWrapper::LocalTimeValue(time) - (time.tm_mon % 2 == 0 ? 3600 : 0);
  }
  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override {
    PlatformWrapper::LibraryPath(buffer, size);
    buffer[0] = '\xFF';  // no UTF-8
    return 3;
  }
  platform::SlotDescription DescribeSlot(std::uint32_t slot) override {
    platform::SlotDescription description;
    description.source = "an odd platform";
    description.stateOfCharge = 50 + slot + ++asked_;
    return description;
  }

 private:
  std::time_t now_ = 1600000000;
  std::uint32_t asked_ = 0;
};

TEST(MachineRecorder, AnswersThatNoDescriptionHoldsAreSpelledOut) {
  const auto machine = QuickSample("two-batteries");
  OddPlatform odd(machine->AsPlatform());
  MachineRecorder recorder(odd);
  std::vector<std::int64_t> answers;
  const auto ask = [](platform::Platform& platform) {
    std::vector<std::int64_t> told;
    std::tm time{};
    time.tm_year = 121;
    time.tm_mday = 6;
    for (time.tm_mon = 0; time.tm_mon < 3; ++time.tm_mon) {
      told.push_back(platform.Now());
      told.push_back(platform.LocalTimeValue(time));
      told.push_back(*platform.DescribeSlot(1).stateOfCharge);
    }
    char path[8];
    told.push_back(platform.LibraryPath(path, sizeof path));
    told.push_back(path[0]);
    told.push_back(path[7]);
    EXPECT_EQ(platform.DescribeSlot(0).source, "an odd platform");
    return told;
  };
  const std::vector<std::int64_t> told = ask(recorder);
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(), "the recording");
  EXPECT_EQ(ask(replayed->AsPlatform()), told);
}

// Tells another length than that of the text that it writes.
class MistakenPlatform : public platform::PlatformWrapper {
 public:
  MistakenPlatform(platform::Platform& inner, std::uint32_t told) : PlatformWrapper(inner), told_(told) {}

  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override {
    PlatformWrapper::LibraryPath(buffer, size);
    return told_;
  }
  std::uint32_t FormatSystemMessage(std::uint32_t, char* buffer, std::uint32_t) override {
    std::strcpy(buffer, "A text.\r\n");
    return told_;
  }

 private:
  std::uint32_t told_;
};

TEST(MachineRecorder, ATextIsReplayedWhateverItsLengthIsSaidToBe) {
  for (const char* sample : {"two-batteries", "channel-failure"}) {
    const auto machine = QuickSample(sample);
    for (const std::uint32_t told : {0U, 1U, 5U, 8U, 9U, 10U, 20U, 259U, 260U, 5000U}) {
      SCOPED_TRACE(std::string(sample) + " " + std::to_string(told));
      MistakenPlatform mistaken(machine->AsPlatform(), told);
      const Recorded recorded = Record(mistaken);
      EXPECT_EQ(Replay(recorded.text), recorded.learnt) << recorded.text;
    }
  }
}

TEST(MachineRecorder, CommandsOfAllKindsAreKeptWithTheirInput) {
  class Channel : public platform::PlatformWrapper {
   public:
    using PlatformWrapper::PlatformWrapper;
    std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t, std::uint32_t, const unsigned char* input,
                                 std::uint32_t, unsigned char* output, std::uint32_t* returnCode) override {
      std::fill_n(output, 128, static_cast<unsigned char>(first + input[3]));
      *returnCode = 0;
      return 0;
    }
  };
  const auto ask = [](platform::Platform& platform, unsigned char byte) {
    std::array<unsigned char, 128> input{};
    std::array<unsigned char, 128> output{};
    input[3] = byte;
    std::uint32_t returnCode = 1;
    EXPECT_EQ(platform.SendBiosCommand(20, 1, 2, input.data(), 128, output.data(), &returnCode), 0);
    EXPECT_EQ(returnCode, 0U);
    return output[127];
  };
  Channel channel(platform::Platform::Current());
  MachineRecorder recorder(channel);
  ask(recorder, 4);
  ask(recorder, 5);
  ask(recorder, 0);
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(), "the recording");
  EXPECT_EQ(ask(replayed->AsPlatform(), 5), 25);
  EXPECT_EQ(ask(replayed->AsPlatform(), 0), 20);
  EXPECT_EQ(ask(replayed->AsPlatform(), 4), 24);
}

// A property may be read in both ways, hold no UTF-8, and differ from one query to the next.
class OddWmi : public platform::PlatformWrapper {
 public:
  using PlatformWrapper::PlatformWrapper;

  long ConnectWmi(const std::wstring&, std::unique_ptr<platform::WmiConnection>& connection) override {
    connection = std::make_unique<Connection>(queries_);
    return 0;
  }

 private:
  class Connection : public platform::WmiConnection {
   public:
    explicit Connection(int& queries) : queries_(queries) {}
    long Query(const std::wstring&) override {
      left_ = ++queries_;
      return 0;
    }
    bool Next() override { return left_-- > 0; }
    long ReadText(const std::wstring&, std::string& value) override {
      value = "\xFF" + std::to_string(left_);
      return 0;
    }
    bool ReadNumber(const std::wstring&, std::uint32_t& value) override {
      value = 77;
      return true;
    }

   private:
    int& queries_;
    int left_ = 0;
  };

  int queries_ = 0;
};

std::vector<std::string> AskWmi(platform::Platform& platform) {
  std::vector<std::string> told;
  std::unique_ptr<platform::WmiConnection> connection;
  EXPECT_EQ(platform.ConnectWmi(L"root\\odd", connection), 0);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(connection->Query(L"SELECT * FROM Odd"), 0);
    while (connection->Next()) {
      std::string text;
      std::uint32_t number = 0;
      EXPECT_EQ(connection->ReadText(L"Name", text), 0);
      EXPECT_TRUE(connection->ReadNumber(L"NAME", number));
      told.push_back(text + " " + std::to_string(number));
    }
    told.emplace_back("end");
  }
  return told;
}

TEST(MachineRecorder, WmiIsReplayedQueryByQuery) {
  OddWmi odd(platform::Platform::Current());
  MachineRecorder recorder(odd);
  const std::vector<std::string> told = AskWmi(recorder);
  ASSERT_EQ(told.size(), 9U);
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(), "the recording");
  EXPECT_EQ(AskWmi(replayed->AsPlatform()), told);
}

TEST(MachineRecorder, WhatNoDescriptionHoldsIsSpelledOut) {
  class Talkative : public platform::PlatformWrapper {
   public:
    using PlatformWrapper::PlatformWrapper;
    platform::SlotDescription DescribeSlot(std::uint32_t /*slot*/) override {
      platform::SlotDescription description;
      description.source = "a source\nof two lines";
      return description;
    }
  };
  const auto machine = QuickSample("one-battery");
  Talkative talkative(machine->AsPlatform());
  MachineRecorder recorder(talkative);
  EXPECT_EQ(recorder.DescribeSlot(0).source, "a source\nof two lines");
  const BiosAnswer battery = Ask(recorder, 7, 0);
  RecordingOptions options;
  options.origin.description = "Also\ntwo lines";
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(options), "the recording");
  EXPECT_EQ(replayed->AsPlatform().DescribeSlot(0).source, "a source\nof two lines");
  EXPECT_EQ(Ask(replayed->AsPlatform(), 7, 0).output, battery.output);
  EXPECT_EQ(replayed->RecordedFrom()->description, "Also two lines");
}

// The description of each slot, with another state of charge each time where `changes`.
class DescribedPlatform : public platform::PlatformWrapper {
 public:
  DescribedPlatform(platform::Platform& inner, bool changes) : PlatformWrapper(inner), changes_(changes) {}

  platform::SlotDescription DescribeSlot(std::uint32_t slot) override {
    platform::SlotDescription description;
    description.source = "a driver";
    if (slot != 0) {
      description.told.reset();
      return description;
    }
    description.told.reset(9).reset(127);
    description.stateOfCharge = 57 + (changes_ ? asked_++ : 0);
    description.modelName = "DELTA 45\xC3\xA4";
    description.serialNumber = "01497 and more than the block holds";
    description.manufacturer = "SMP";
    description.technology = "Li-ion";
    description.designEnergy = 50050;
    description.fullChargeEnergy = 44110;
    description.remainingEnergy = 0;
    description.power = -9874;
    return description;
  }

 private:
  bool changes_;
  std::uint32_t asked_ = 0;
};

TEST(MachineRecorder, ASlotIsDescribedAsItWas) {
  for (const bool changes : {false, true}) {
    const auto machine = QuickSample("one-battery");
    DescribedPlatform described(machine->AsPlatform(), changes);
    MachineRecorder recorder(described);
    std::vector<platform::SlotDescription> told;
    for (const std::uint32_t slot : {0U, 1U, 0U}) {
      told.push_back(recorder.DescribeSlot(slot));
    }
    const auto text = recorder.MachineText();
    EXPECT_EQ(text.find("\"answers\"") != std::string::npos, changes);
    const auto replayed = SimulatedMachine::FromText(text, "the recording");
    EXPECT_EQ(replayed->AsPlatform().DescribeSlot(0), told[0]);
    EXPECT_EQ(replayed->AsPlatform().DescribeSlot(1), told[1]);
    EXPECT_EQ(replayed->AsPlatform().DescribeSlot(0), told[2]);
  }
}

// Of the time when the source and the state of charge were asked for by themselves.
TEST(MachineRecorder, RecordingsOfEarlierVersionsAreReplayed) {
  const auto machine = SimulatedMachine::FromText(R"({
      "description": "A recorded machine",
      "recordedFrom": {"kind": "machine"},
      "slots": [{"battery": {"voltage": 11800}, "driverStateOfCharge": 97}, null],
      "clock": {"now": "2024-06-01T12:00:00Z"},
      "answers": [
        {"operation": "BatterySource", "result": "a source\nof two lines"},
        {"operation": "DriverStateOfCharge", "argument": "0", "result": 97},
        {"operation": "DriverStateOfCharge", "argument": "0", "result": null},
        {"operation": "DriverStateOfCharge", "argument": "0", "throws": "int", "number": 3}
      ]})",
                                                  "an earlier recording");
  platform::Platform& platform = machine->AsPlatform();
  const platform::SlotDescription first = platform.DescribeSlot(0);
  EXPECT_EQ(first.source, "a source\nof two lines");
  EXPECT_EQ(first.stateOfCharge, 97U);
  EXPECT_TRUE(first.told.all());
  EXPECT_EQ(platform.DescribeSlot(0).stateOfCharge, std::nullopt);
  EXPECT_THROW(platform.DescribeSlot(0), int);
  EXPECT_EQ(platform.DescribeSlot(1).stateOfCharge, std::nullopt);
  EXPECT_EQ(platform.DescribeSlot(1).source, first.source);
}

TEST(MachineRecorder, ARecordingNamesItsOrigin) {
  const auto machine = SimulatedMachine::FromSample("no-battery");
  MachineRecorder recorder(machine->AsPlatform());
  RecordingOptions options;
  options.origin = {"sample", "no-battery", "Both slots empty"};
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(options), "the recording");
  ASSERT_TRUE(replayed->RecordedFrom().has_value());
  EXPECT_EQ(replayed->RecordedFrom()->kind, "sample");
  EXPECT_EQ(replayed->RecordedFrom()->name, "no-battery");
  EXPECT_EQ(replayed->RecordedFrom()->description, "Both slots empty");
  EXPECT_FALSE(machine->RecordedFrom().has_value());
}

TEST(MachineRecorder, KeepsTheReportThatLiesInTheFolderOfAMachine) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "report": "<r>\u00e9</r>"})");
  MachineRecorder recorder(machine->AsPlatform());
  recorder.RunProgram("C:\\Program Files\\Norv\\BatteryTest.exe");
  ASSERT_TRUE(recorder.ProgramDataFolder().has_value());
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(), "the recording");
  ASSERT_TRUE(replayed->AsPlatform().RunProgram("C:/Program Files/Norv/BatteryTest.exe"));
  const auto folder = replayed->AsPlatform().ProgramDataFolder();
  ASSERT_TRUE(folder.has_value());
  std::ifstream file(*folder + "/Quellbrook/Tavenhall/Resources/Temp/Battery.xml", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "<r>\xC3\xA9</r>");
}

TEST(MachineRecorder, KeepsTheReportOfAProgramThatRunsOnlyOnce) {
  const auto machine = MachineWith(R"("testProgram": {"version": "1.2.3.4", "report": "<r/>"},
      "faults": [{"operation": "RunProgram", "call": 2, "code": 5}])");
  const auto run = [](platform::Platform& platform) {
    return platform.RunProgram("C:\\Program Files\\Norv\\BatteryTest.exe");
  };
  MachineRecorder recorder(machine->AsPlatform());
  EXPECT_TRUE(run(recorder));
  ASSERT_TRUE(recorder.ProgramDataFolder().has_value());
  EXPECT_FALSE(run(recorder));
  const auto replayed = SimulatedMachine::FromText(recorder.MachineText(), "the recording");
  EXPECT_TRUE(run(replayed->AsPlatform()));
  const auto folder = replayed->AsPlatform().ProgramDataFolder();
  ASSERT_TRUE(folder.has_value());
  EXPECT_TRUE(std::filesystem::exists(*folder + "/Quellbrook/Tavenhall/Resources/Temp/Battery.xml"));
  EXPECT_FALSE(run(replayed->AsPlatform()));
}

TEST(Answers, FollowOnOneAnotherAndTheLastOneStays) {
  const auto machine = MachineWith(R"("slots": [null, {"battery": {"voltage": 5}}], "answers": [
      {"operation": "SendBiosCommand", "argument": "1,7,1 slot 0", "battery": {"voltage": 1}},
      {"operation": "SendBiosCommand", "argument": "1,7,1 slot 0", "returnCode": 6},
      {"operation": "SendBiosCommand", "argument": "1,7,1 slot 0", "status": "0x80070005"},
      {"operation": "SendBiosCommand", "argument": "1,7,1 slot 0", "battery": {"voltage": 2}}])");
  platform::Platform& platform = machine->AsPlatform();
  EXPECT_EQ(Ask(platform, 7, 0).output[0x0C], 1);
  EXPECT_EQ(Ask(platform, 7, 1).output[0x0C], 5);  // nobody answers for it
  const BiosAnswer gone = Ask(platform, 7, 0);
  EXPECT_EQ(gone.returnCode, 6U);
  EXPECT_TRUE(IsUntouched(gone));
  const BiosAnswer failed = Ask(platform, 7, 0);
  EXPECT_EQ(failed.status, Hresult(0x80070005));
  EXPECT_EQ(failed.returnCode, 12345U);
  EXPECT_EQ(Ask(platform, 7, 0).output[0x0C], 2);
  EXPECT_EQ(Ask(platform, 7, 0).output[0x0C], 2);
}

TEST(Answers, LeaveTheirCodesBehind) {
  const auto machine = MachineWith(R"("answers": [
      {"operation": "RunProgram", "argument": "a", "result": false, "lastSystemCode": 740},
      {"operation": "RunProgram", "argument": "b", "result": true},
      {"operation": "RunProgram", "argument": "c", "result": false,
       "lastSystemCode": {"throws": "unsigned long", "number": 9}}])");
  platform::Platform& platform = machine->AsPlatform();
  EXPECT_FALSE(platform.RunProgram("a"));
  EXPECT_EQ(platform.LastSystemCode(), 740U);
  EXPECT_TRUE(platform.RunProgram("b"));
  EXPECT_EQ(platform.LastSystemCode(), 2U);
  EXPECT_FALSE(platform.RunProgram("c"));
  EXPECT_THROW(platform.LastSystemCode(), unsigned long);
}

// A text ends at its first NUL for whoever catches it; a recording of that says the same once more.
TEST(Answers, ThrowATextWithANulAsOneThatEndsThere) {
  const auto machine = MachineWith(R"("answers": [
      {"operation": "Now", "throws": "system_error", "text": "a\u0000b", "number": 13, "category": "generic"}])");
  const auto told = [](platform::Platform& platform) {
    try {
      platform.Now();
    } catch (const std::system_error& thrown) {
      return std::string(thrown.what());
    }
    return std::string("nothing thrown");
  };
  MachineRecorder recorder(machine->AsPlatform());
  const std::string first = told(recorder);
  EXPECT_EQ(first, "a: " + std::make_error_code(std::errc::permission_denied).message());
  const auto replay = SimulatedMachine::FromText(recorder.MachineText(), "recording");
  EXPECT_EQ(told(replay->AsPlatform()), first);
}

TEST(Answers, ThrowWhatTheySay) {
  const auto machine = MachineWith(R"("answers": [
      {"operation": "Now", "throws": "system_error", "text": "no clock", "number": 13, "category": "generic"},
      {"operation": "Now", "throws": "out_of_range", "text": "late"},
      {"operation": "Now", "throws": "text", "text": "a text"},
      {"operation": "Now", "result": 5}])");
  platform::Platform& platform = machine->AsPlatform();
  try {
    platform.Now();
    FAIL();
  } catch (const std::system_error& thrown) {
    EXPECT_EQ(thrown.code(), std::errc::permission_denied);
    EXPECT_EQ(std::string(thrown.what()), "no clock: " + thrown.code().message());
  }
  EXPECT_THROW(platform.Now(), std::out_of_range);
  try {
    platform.Now();
    FAIL();
  } catch (const char* thrown) {
    EXPECT_STREQ(thrown, "a text");
  }
  EXPECT_EQ(platform.Now(), 5);
}

}  // namespace
}  // namespace norv::simulator
