// Everything that the library asks of the outside world while it builds a full collection fails in turn, at each of its
// calls and in each way that the operation can fail. What is asked is taken from a recording, and the ways to fail from
// the injector's own list: an operation that is new is in the matrix by itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "norv/platform/Platform.h"
#include "norv/simulator/FaultInjector.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/Snapshot.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::error::Error;
using shared::error::ErrorCategory;
using simulator::Fault;
using simulator::FaultEffect;
using simulator::FaultInjector;
using simulator::Operation;
using simulator::SimulatedMachine;

constexpr const char* kReadInfo = "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo";
constexpr const char* kReadCsp = "norv::shared::battery::NorvBatteries::ReadNorvBatteryCSP";
constexpr const char* kTakeVerdict = "norv::shared::battery::NorvBatteries::RunBatteryTest";
constexpr std::uint32_t kStatus = 0x80070005;
constexpr std::uint32_t kReturnCode = 9;

constexpr FaultEffect kEffects[]{
    FaultEffect::Status,         FaultEffect::ReturnCode,         FaultEffect::Code,
    FaultEffect::Fails,          FaultEffect::ThrowsRuntimeError, FaultEffect::ThrowsSystemError,
    FaultEffect::ThrowsBadAlloc, FaultEffect::ThrowsInt,          FaultEffect::ThrowsUnsignedLong,
    FaultEffect::ThrowsString,   FaultEffect::ThrowsText,         FaultEffect::ThrowsOther};

bool Throws(FaultEffect effect) {
  return effect >= FaultEffect::ThrowsRuntimeError;
}

// The step of the collection that an operation belongs to.
enum class Step { Information, Rates, CellSwell, Test, Settings };

struct Place {
  Operation operation;
  unsigned call;  // the how manieth of its name
  Step step;
  int slot;
};

// Tells the steps of a recording apart by the operations that they begin with.
std::vector<Place> PlacesOf(const std::vector<Operation>& recording) {
  std::vector<Place> places;
  std::map<std::string, unsigned> calls;
  Step step = Step::Information;
  int slot = 0;
  for (const Operation& operation : recording) {
    if (operation.name == "SendBiosCommand") {
      step = operation.argument.starts_with("1,7,1") ? Step::Information : Step::CellSwell;
      slot = operation.argument.back() - '0';
    } else if (operation.name == "LibraryPath") {
      step = Step::Test;
      slot = 0;
    } else if (operation.name == "ConnectWmi") {
      step = operation.argument == "\\\\.\\root\\wmi" ? Step::Rates : Step::Settings;
    }
    places.push_back({operation, ++calls[operation.name], step, slot});
  }
  return places;
}

// What a collection came to.
struct Outcome {
  std::optional<Snapshot> slots[2];
  Error error;
  std::vector<LogLine> log;
};

Outcome ReadAll() {
  Outcome outcome;
  const LogCapture log;
  NorvBatteries batteries(true, true, nullptr, nullptr);
  for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
    if (auto* record = batteries.Query(slot)) {
      outcome.slots[slot] = Answers(*record);
    }
  }
  outcome.error = batteries.GetError();
  outcome.log = log.Lines();
  return outcome;
}

// The error of a read for what the injector throws.
Error ThrownError(FaultEffect effect) {
  const std::string text = simulator::kInjectedText;
  switch (effect) {
    case FaultEffect::ThrowsRuntimeError:
      return {ErrorCategory::StandardException, 1, text, "std::runtime_error", ""};
    case FaultEffect::ThrowsSystemError:
      return {ErrorCategory::StandardException, 1, text + ": Permission denied", "std::system_error", ""};
    case FaultEffect::ThrowsBadAlloc:
      return {ErrorCategory::StandardException, 1, "std::bad_alloc", "std::bad_alloc", ""};
    case FaultEffect::ThrowsInt:
      return {ErrorCategory::Value, simulator::kInjectedNumber, "", "int", ""};
    case FaultEffect::ThrowsUnsignedLong:
      return {ErrorCategory::Value, simulator::kInjectedNumber, "", "unsigned long", ""};
    case FaultEffect::ThrowsString:
      return {ErrorCategory::Value, static_cast<std::int64_t>(typeid(std::string).hash_code()), text,
              "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >", ""};
    case FaultEffect::ThrowsText:
      return {ErrorCategory::Value, static_cast<std::int64_t>(typeid(const char*).hash_code()), text, "char const*",
              ""};
    default:
      return {ErrorCategory::UnknownException, 0, "Unknown exception type.", "Unknown", ""};
  }
}

// The error that the collection holds after a failure, or none where the failure is nobody's to report.
Error ExpectedError(const Place& place, FaultEffect effect) {
  const char* const read = place.step == Step::CellSwell ? kReadCsp : kReadInfo;
  switch (place.step) {
    case Step::Information:
    case Step::CellSwell:
      if (effect == FaultEffect::Status) {
        return {ErrorCategory::SystemMessage, static_cast<std::int32_t>(kStatus),
                "The system cannot find message text for error code -2147024891\r\n", "long", read};
      }
      if (effect == FaultEffect::ReturnCode) {
        return {ErrorCategory::Value, kReturnCode, "PrivateBiosWMI error", "unsigned long", read};
      }
      return ThrownError(effect);
    case Step::Rates:
      return effect == FaultEffect::ThrowsBadAlloc ? ThrownError(effect) : Error();
    case Step::Test:
      return {ErrorCategory::Value, -1, "Battery Test Error - Battery is not supported", "int", kTakeVerdict};
    case Step::Settings:
      break;
  }
  return {};
}

// The answers that a failure may change; all others of a record must be as without it.
std::vector<std::string> AnswersAtRisk(Step step) {
  switch (step) {
    case Step::Information:
      return {};
    case Step::Rates:
      return {"charge rate", "discharge rate"};
    case Step::CellSwell:
      return {"cell swell"};
    case Step::Test:
      return {"test result", "test label", "test version"};
    case Step::Settings:
      return {"adaptive", "care"};
  }
  return {};
}

void ExpectSlots(const Outcome& outcome, const Outcome& sound, const Place& place, FaultEffect effect) {
  const bool readFails =
      place.step == Step::Information || (place.step == Step::Rates && effect == FaultEffect::ThrowsBadAlloc);
  for (const int slot : {0, 1}) {
    if (readFails && slot == place.slot) {
      EXPECT_FALSE(outcome.slots[slot].has_value());
      continue;
    }
    ASSERT_TRUE(outcome.slots[slot].has_value());
    Snapshot expected = *sound.slots[slot];
    Snapshot actual = *outcome.slots[slot];
    if (slot == place.slot) {
      for (const std::string& answer : AnswersAtRisk(place.step)) {
        expected.erase(answer);
        actual.erase(answer);
      }
    }
    EXPECT_EQ(actual, expected) << "slot " << slot;
  }
}

// What the failure does to the answers at risk.
void ExpectAnswersAtRisk(const Outcome& outcome, const Place& place, FaultEffect effect) {
  const auto& record = outcome.slots[place.slot];
  if (!record) {
    return;
  }
  if (place.step == Step::CellSwell) {
    EXPECT_EQ(record->at("cell swell"), "none");
  } else if (place.step == Step::Test) {
    EXPECT_EQ(record->at("test result"), "-1");
    EXPECT_EQ(record->at("test label"), "");
  } else if (place.step == Step::Rates && Throws(effect)) {
    EXPECT_EQ(record->at("charge rate"), "0");
    EXPECT_EQ(record->at("discharge rate"), "0");
  }
}

void ExpectLog(const Outcome& outcome, const Place& place, FaultEffect effect, const Error& expected) {
  std::vector<std::string> errors;
  for (const LogLine& line : outcome.log) {
    if (line.severity == plog::error) {
      errors.push_back(line.message);
    }
  }
  std::vector<std::string> wanted;
  if (expected) {
    const bool asNumber = place.step == Step::CellSwell && effect == FaultEffect::Status;
    wanted.push_back(asNumber ? "PrivateBiosWMI error occurred - HRESULT = -2147024891" : TextForm(expected));
  }
  if (place.step == Step::CellSwell) {
    wanted.emplace_back("Error reading Cell Swell Protection data");
  } else if (place.step == Step::Test) {
    wanted.emplace_back("Error running the battery test");
  } else if (expected && place.slot == 0) {
    wanted.emplace_back("Error getting battery information");
  }
  if (place.step == Step::Test) {
    // The runner and its parser log the failures of their own before the collection does.
    ASSERT_GE(errors.size(), wanted.size());
    errors.erase(errors.begin(), errors.end() - static_cast<std::ptrdiff_t>(wanted.size()));
  }
  EXPECT_EQ(errors, wanted);
  EXPECT_EQ(outcome.log.back().message, "Finished norv::shared::battery::NorvBatteries::NorvBatteries");
}

// A sample whose test program takes no time. The library's logger, which asks for the module's name once in a process,
// is made before it, so that this is no part of a recording.
std::unique_ptr<SimulatedMachine> QuickSample(const char* name) {
  { const LogCapture logger; }
  auto description = nlohmann::json::parse(simulator::SampleText(name));
  if (description.contains("testProgram") && description["testProgram"].is_object()) {
    description["testProgram"]["runsMilliseconds"] = 0;
  }
  return SimulatedMachine::FromText(description.dump(), name);
}

TEST(FaultMatrix, EachFailureIsMetAsItShould) {
  const auto machine = QuickSample("two-batteries");
  const Outcome sound = ReadAll();
  ASSERT_FALSE(sound.error) << sound.error.GetMessageText();
  const std::vector<Place> places = PlacesOf(machine->Operations());
  std::map<Step, int> failures;
  for (const Place& place : places) {
    for (const FaultEffect effect : kEffects) {
      const Fault fault{place.operation.name, place.call, std::nullopt, effect,
                        effect == FaultEffect::ReturnCode ? kReturnCode : kStatus};
      if (!simulator::FaultProblem(fault).empty()) {
        continue;  // no way for this operation to fail
      }
      SCOPED_TRACE(place.operation.name + " " + place.operation.argument + ", call " + std::to_string(place.call) +
                   ", effect " + std::to_string(static_cast<int>(effect)));
      FaultInjector injector(machine->AsPlatform(), {fault});
      const platform::ScopedPlatform scope(injector);
      const Outcome outcome = ReadAll();
      const Error expected = ExpectedError(place, effect);
      EXPECT_EQ(TextForm(outcome.error), TextForm(expected));
      ExpectSlots(outcome, sound, place, effect);
      ExpectAnswersAtRisk(outcome, place, effect);
      ExpectLog(outcome, place, effect, expected);
      ++failures[place.step];
    }
  }
  for (const Step step : {Step::Information, Step::Rates, Step::CellSwell, Step::Test, Step::Settings}) {
    EXPECT_GT(failures[step], 15) << static_cast<int>(step);
  }
}

// Failures on the way of reporting a failure: the error is stored all the same.
TEST(FaultMatrix, FailuresWhileAFailureIsReported) {
  for (const char* sample : {"channel-failure", "test-program-missing"}) {
    const auto machine = QuickSample(sample);
    const Outcome before = ReadAll();
    ASSERT_TRUE(before.error);
    for (const Place& place : PlacesOf(machine->Operations())) {
      for (const FaultEffect effect : kEffects) {
        const Fault fault{place.operation.name, place.call, std::nullopt, effect, kStatus};
        if (!simulator::FaultProblem(fault).empty()) {
          continue;
        }
        SCOPED_TRACE(std::string(sample) + " " + place.operation.name + " " + std::to_string(place.call) + ", effect " +
                     std::to_string(static_cast<int>(effect)));
        FaultInjector injector(machine->AsPlatform(), {fault});
        const platform::ScopedPlatform scope(injector);
        const Outcome outcome = ReadAll();
        EXPECT_TRUE(outcome.error);
        EXPECT_EQ(outcome.log.back().message, "Finished norv::shared::battery::NorvBatteries::NorvBatteries");
      }
    }
  }
}

TEST(FaultMatrix, OperationsThatFailEachTimeAreMetEachTime) {
  for (const char* operation : {"SendBiosCommand", "ConnectWmi", "Query", "Next", "ReadText", "ReadNumber",
                                "RunProgram", "ReadProductVersion", "LibraryPath", "ProgramDataFolder"}) {
    for (const FaultEffect effect : kEffects) {
      const Fault fault{operation, std::nullopt, std::nullopt, effect, kStatus};
      if (!simulator::FaultProblem(fault).empty()) {
        continue;
      }
      const auto machine = QuickSample("two-batteries");
      FaultInjector injector(machine->AsPlatform(), {fault});
      const platform::ScopedPlatform scope(injector);
      const Outcome outcome = ReadAll();
      EXPECT_EQ(outcome.log.back().message, "Finished norv::shared::battery::NorvBatteries::NorvBatteries")
          << operation << static_cast<int>(effect);
    }
  }
}

}  // namespace
}  // namespace norv::test
