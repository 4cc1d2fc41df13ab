// Each allocation fails in turn, while a full collection is built and within every public operation. Together with the
// leak sanitizer this shows that the lack of memory costs an answer, never the process and never memory.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "FailingNew.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "battery/NorvBatteryTestXmlParser.h"
#include "diagnostics/Failures.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/Snapshot.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryTestInfo;
using shared::battery::NorvBatteryTestXmlParser;
using shared::error::Error;
using simulator::SimulatedMachine;

// Runs `action` with its first, second, ... allocation failing until it makes fewer, and `check` after each failure.
// Returns how many allocations there were.
std::size_t FailEach(const std::function<void()>& action, const std::function<void(bool threw)>& check) {
  for (std::size_t count = 0;; ++count) {
    bool threw = false;
    FailAllocation(count);
    try {
      action();
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    if (!StopFailing()) {
      EXPECT_FALSE(threw);
      return count;
    }
    SCOPED_TRACE("allocation " + std::to_string(count));
    check(threw);
  }
}

bool SaysNoMemory(const Error& error) {
  return std::string(error.GetMessageText()) == "std::bad_alloc";
}

std::unique_ptr<SimulatedMachine> Machine() {
  return SimulatedMachine::FromText(R"({
      "description": "two batteries and everything else",
      "slots": [{"battery": {"serialNumber": "FIRST", "manufacturer": "123-45-67-A"}, "cellSwell": {}},
                {"battery": {"serialNumber": "SECOND"}, "cellSwell": {}}],
      "wmi": {"\\\\.\\root\\wmi": {"BatteryStatus": [{"ChargeRate": 1, "DischargeRate": 2}]},
              "\\\\.\\root\\cimv2": {"Win32_BaseBoard": [{"Product": "0000"}]},
              "\\\\.\\root\\Norv\\InstrumentedBios": {"Norv_BIOSSetting": [
                {"Name": "Adaptive Battery Extender", "CurrentValue": "Enable"},
                {"Name": "Battery Care Function", "Value": "a text that fills no short buffer"}]}},
      "testProgram": {"version": "1.2.3.4", "status": 0}})",
                                    "here");
}

void BuildEach(const char* what, std::size_t atLeast) {
  const auto machine = Machine();
  std::unique_ptr<NorvBatteries> batteries;
  const std::size_t allocations = FailEach(
      [&] {
        // In storage made beforehand: the collection's own is the host's affair.
        batteries.reset();
        batteries = std::make_unique<NorvBatteries>(true, true, nullptr, nullptr);
      },
      [&](bool threw) {
        if (threw) {
          EXPECT_EQ(batteries, nullptr) << "only the host's own allocation, the first, may throw";
          return;
        }
        // A failure is either on record or was absorbed where no answer depends on it.
        const bool complete = batteries->Query(0) != nullptr && batteries->Query(1) != nullptr;
        EXPECT_TRUE(complete || batteries->GetError());
        for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
          if (auto* record = batteries->Query(slot)) {
            EXPECT_STREQ(record->GetSerialNumber(), slot == 0 ? "FIRST" : "SECOND");
          }
        }
      });
  EXPECT_GT(allocations, atLeast) << what;
}

TEST(AllocationFailure, LetsACollectionComeToItsEnd) {
  BuildEach("without a logger", 30);
}

TEST(AllocationFailure, LetsACollectionComeToItsEndWithALogger) {
  const LogCapture log;
  BuildEach("with a logger", 100);
}

TEST(AllocationFailure, OfAReadIsAnErrorOfTheCollection) {
  const auto machine = Machine();
  alignas(NorvBatteries) std::array<unsigned char, sizeof(NorvBatteries)> storage{};
  std::size_t onRecord = 0;
  FailEach(
      [&] {
        auto* batteries = new (storage.data()) NorvBatteries(true, false, nullptr, nullptr);
        onRecord += SaysNoMemory(batteries->GetError()) ? 1U : 0U;
        batteries->~NorvBatteries();
      },
      [](bool threw) { EXPECT_FALSE(threw) << "nothing leaves the constructor"; });
  EXPECT_GT(onRecord, 5U);
}

// Memory may fail again while a failure is being described.
TEST(AllocationFailure, OfAFailuresOwnTextsIsReportedInItsPlace) {
  const auto thrown = std::make_exception_ptr(std::runtime_error("a text that fills no short buffer at all"));
  Error failure;
  const auto isNoMemory = [&](bool threw) {
    EXPECT_FALSE(threw);
    EXPECT_TRUE(SaysNoMemory(failure)) << failure.GetMessageText();
  };
  using shared::battery::diagnostics::ExceptionError;
  using shared::battery::diagnostics::ReadExceptionError;
  EXPECT_GT(FailEach([&] { failure = ExceptionError(thrown, "the name of an operation"); }, isNoMemory), 0U);
  EXPECT_STREQ(failure.GetMessageText(), "a text that fills no short buffer at all");
  EXPECT_GT(FailEach([&] { failure = ReadExceptionError(thrown); }, isNoMemory), 0U);
  EXPECT_STREQ(failure.GetMessageText(), "a text that fills no short buffer at all");
}

// Some bytes of a record are nobody's: padding, and what a short text does not take of its place.
TEST(Storage, OfACollectionsRecordShowsNothingOfItsOlderUse) {
  const auto machine = Machine();
  NorvBatteries batteries(false, false, nullptr, nullptr);
  ASSERT_NE(batteries.Query(0), nullptr);
  std::string bytes(sizeof(NorvBatteryInfo), '\0');
  std::memcpy(bytes.data(), static_cast<const void*>(batteries.Query(0)), bytes.size());
  EXPECT_EQ(bytes.find(std::string(8, static_cast<char>(kOldByte))), std::string::npos);
}

TEST(AllocationFailure, OfARecordIsTheHostsToCatch) {
  const TestBlock block = HealthyBlock();
  std::unique_ptr<NorvBatteryInfo> record;
  const std::size_t allocations = FailEach([&] { record = std::make_unique<NorvBatteryInfo>(block.Data()); },
                                           [&](bool threw) { EXPECT_TRUE(threw || record != nullptr); });
  EXPECT_GE(allocations, 2U);
}

struct OperationRow {
  const char* name;
  std::function<void(NorvBatteryInfo&)> run;
};

TEST(AllocationFailure, OfAnOperationLeavesTheRecordAsItWas) {
  const auto machine = Machine();
  const std::vector<OperationRow> operations{
      {"attach cell swell data",
       [](NorvBatteryInfo& record) { record.SetCellSwellProtectionInfo(TestBlock().Data()); }},
      {"read the settings", [](NorvBatteryInfo& record) { record.GetBiosBatterySettings(); }},
      {"validate", [](NorvBatteryInfo& record) { record.IsValid(); }},
      {"age", [](NorvBatteryInfo& record) { record.GetAge(); }},
      {"calibration type", [](NorvBatteryInfo& record) { record.GetCalibrationType(); }},
      {"copy", [](NorvBatteryInfo& record) { const NorvBatteryInfo copy(record); }},
  };
  for (const OperationRow& operation : operations) {
    SCOPED_TRACE(operation.name);
    NorvBatteryInfo record(HealthyBlock().CtNumber("none").SerialNumber("SHORT").Data());
    Snapshot before = Answers(record);
    FailEach([&] { operation.run(record); },
             [&](bool threw) {
               if (threw) {
                 EXPECT_EQ(Answers(record), before);
               }
               before = Answers(record);  // the settings' reader absorbs failures, and leaves what it has read
             });
  }
}

TEST(AllocationFailure, OfAssignmentLeavesARecordThatCanBeUsed) {
  const NorvBatteryInfo source(HealthyBlock().Data());
  NorvBatteryInfo target(TestBlock().SerialNumber("OLD").Data());
  FailEach([&] { target = source; },
           [&](bool /*threw*/) {
             const std::string serialNumber = target.GetSerialNumber();
             EXPECT_TRUE(serialNumber == "OLD" || serialNumber == source.GetSerialNumber());
           });
  EXPECT_STREQ(target.GetSerialNumber(), source.GetSerialNumber());
}

TEST(AllocationFailure, NeverLeavesARunOfTheTest) {
  const auto machine = Machine();
  NorvBatteryTestInfo info;
  std::size_t onRecord = 0;
  FailEach([&] { info.RunBatteryTest(); },
           [&](bool threw) {
             EXPECT_FALSE(threw);
             onRecord += SaysNoMemory(info.GetError()) ? 1U : 0U;
           });
  EXPECT_EQ(info.GetBatteryTestResult(), 0);
  EXPECT_GT(onRecord, 0U);
}

TEST(AllocationFailure, OfAConstructionIsTheHostsToCatch) {
  EXPECT_GT(FailEach([] { const NorvBatteryTestXmlParser parser; }, [](bool /*threw*/) {}), 0U);
  EXPECT_GT(FailEach([] { const NorvBatteryTestInfo info; }, [](bool /*threw*/) {}), 0U);
}

TEST(AllocationFailure, NeverLeavesAParser) {
  const auto machine = Machine();
  machine->AsPlatform().RunProgram("C:\\Program Files\\Norv\\BatteryTest.exe");
  const std::vector<std::function<void(NorvBatteryTestXmlParser&)>> actions{
      [](auto& parser) { parser.GetBatteryStatusFromXMLReport(nullptr); },
      [](auto& parser) { parser.GetBatteryStatusFromXMLReport("<r i=\"6\">no number in here at all</r>"); },
      [](auto& parser) { parser.GenerateBatteryTestXMLReport("C:\\nowhere\\at\\all\\BatteryTest.exe"); },
  };
  for (const auto& action : actions) {
    NorvBatteryTestXmlParser parser;
    EXPECT_GT(FailEach([&] { action(parser); }, [](bool threw) { EXPECT_FALSE(threw); }), 0U);
  }
}

}  // namespace
}  // namespace norv::test
