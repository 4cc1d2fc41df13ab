#include "report/ReadReport.h"

#include <memory>
#include <string>
#include <string_view>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/platform/Platform.h"
#include "report/AskedBattery.h"
#include "report/TestProgress.h"

namespace norv::tool {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryTestInfo;
using shared::error::Error;

namespace fields = shared::battery::fields;

namespace {

Failure ReadFailure(const Error& error) {
  return {static_cast<int>(error.GetCategory()), error.GetCode(), error.GetMessageText(), error.GetTypeText(),
          error.GetFunctionText()};
}

// `error` may be null.
std::optional<Failure> ReadFailure(const Error* error) {
  return error != nullptr && *error ? std::optional(ReadFailure(*error)) : std::nullopt;
}

// Sees whether the platform was asked for the batteries. Where it was not, the library was built with a channel of the
// maker's, which knows its own way to the BIOS.
class ChannelObserver : public platform::PlatformWrapper {
 public:
  using PlatformWrapper::PlatformWrapper;

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override {
    wasAsked_ = true;
    return PlatformWrapper::SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
  }

  bool WasAsked() const { return wasAsked_; }

 private:
  bool wasAsked_ = false;
};

std::string ChannelText(ChannelObserver& machine, const Source& source) {
  if (!machine.WasAsked()) {
    return "the maker's BIOS channel";
  }
  std::string named = machine.DescribeSlot(0).source;
  if (!named.empty()) {
    return named;
  }
  return std::string_view(source.kind) == "machine" ? "not known" : "a machine file";
}

// With what the source of the slot tells besides.
BatteryReport ReadSlot(int slot, NorvBatteryInfo& battery, ChannelObserver& machine) {
  if (!machine.WasAsked()) {
    return ReadBattery(slot, battery);
  }
  const platform::SlotDescription source = machine.DescribeSlot(static_cast<std::uint32_t>(slot));
  const bool tellsAll = source.told.all();
  BatteryReport report = ReadBattery(slot, battery, tellsAll ? nullptr : &source.told);
  report.driverStateOfCharge = source.stateOfCharge;
  if (!tellsAll) {
    report.driver = source;
  }
  return report;
}

TestReport RunTest(NorvBatteries& batteries, NorvBatteryTestInfo& test) {
  {
    const TestProgress progress;
    test.RunBatteryTest();
  }
  const bool isVerdict = batteries.RunBatteryTest();
  TestReport report;
  constexpr int kNoVerdict = -1;
  const int result = test.GetBatteryTestResult();
  report.result = result != kNoVerdict ? std::optional(result) : std::nullopt;
  report.label = test.GetBatteryTestResultLabel();
  report.version = test.GetBatteryTestVersion();
  if (!isVerdict) {
    // The test's own failure is the cause; the collection only says that there is no verdict.
    report.error = ReadFailure(test.GetError() ? &test.GetError() : &batteries.GetError());
  }
  return report;
}

}  // namespace

BatteryReport ReadBattery(int slot, NorvBatteryInfo& battery, const fields::Told* told) {
  const AskedBattery asked(battery, told);
  BatteryReport report;
  report.slot = slot;
  for (const fields::Row& row : fields::kCatalogue) {
    const fields::Answer answer = fields::Read(row, asked.AsSubject());
    report[row.number] = {answer.state, answer.number, answer.real, std::string(answer.text)};
  }
  report.ageFailure = ReadFailure(asked.AgeFailure());
  const bool isJudged = report[NORV_BATTERY_VALID].state != NORV_BATTERY_NOT_TOLD;
  report.validityFailure = isJudged ? ReadFailure(asked.ValidityFailure()) : std::nullopt;
  return report;
}

Report ReadReport(const Source& source, const ReadOptions& options) {
  auto test = options.test ? std::make_unique<NorvBatteryTestInfo>() : nullptr;
  NorvBatteryTestInfo* const runner = test.get();
  ChannelObserver machine(platform::Platform::Current());
  const platform::ScopedPlatform scope(machine);
  // The collection keeps its last failure only. The test runs after the collection was read, and not within it, so that
  // a failed test does not hide why a battery could not be read.
  NorvBatteries batteries(options.cellSwell, false, nullptr, test.release());
  Report report;
  report.source = source;
  report.source.channel = ChannelText(machine, source);
  report.cellSwellRequested = options.cellSwell;
  report.readError = ReadFailure(&batteries.GetError());
  if (runner != nullptr) {
    report.test = RunTest(batteries, *runner);
  }
  for (unsigned char slot = 0; slot < kSlotCount; ++slot) {
    if (NorvBatteryInfo* battery = batteries.Query(slot)) {
      report.batteries.at(slot) = ReadSlot(slot, *battery, machine);
    }
  }
  return report;
}

}  // namespace norv::tool
