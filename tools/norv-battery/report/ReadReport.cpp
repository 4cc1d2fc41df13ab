#include "report/ReadReport.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string_view>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/platform/Platform.h"
#include "report/TestProgress.h"

namespace norv::tool {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryCellSwellProtectionInfo;
using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryStatus;
using shared::battery::NorvBatteryTestInfo;
using shared::error::Error;

namespace {

std::optional<Failure> ReadFailure(const Error& error) {
  if (!error) {
    return std::nullopt;
  }
  return Failure{static_cast<int>(error.GetCategory()), error.GetCode(), error.GetMessageText(), error.GetTypeText(),
                 error.GetFunctionText()};
}

Identity ReadIdentity(const NorvBatteryInfo& battery) {
  return {battery.GetManufacturer(), battery.GetDeviceName(), battery.GetSerialNumber(), battery.GetCtNumber()};
}

Capacity ReadCapacity(NorvBatteryInfo& battery) {
  return {
      .designCapacity = battery.GetDesignEnergyCapacity(),
      .fullChargeCapacity = battery.GetFullEnergyCapacity(),
      .fullChargeCapacityPercentage = Computed(battery.GetFullEnergyCapacityPercentage()),
      .remainingCapacity = battery.GetRemainingCapacity(),
      .remainingCapacityPercentage = Computed(battery.GetRemainingEnergyCapacityPercentage()),
      .maxError = battery.GetMaxErrorPercentage(),
      .cycleCount = battery.GetCycleCount(),
      .designVoltage = battery.GetDesignVoltage(),
      .voltage = battery.GetVoltage(),
      .current = SignedCurrent(battery.GetElectricCurrent()),
      .temperature = battery.GetTemperature(),
  };
}

Status ReadStatus(const NorvBatteryInfo& battery) {
  const NorvBatteryStatus status = battery.GetStatus();
  return {battery.GetStatusWord(),
          status.errorCode,
          {
              {"fullyDischarged", "fully discharged", status.fullyDischarged},
              {"fullyCharged", "fully charged", status.fullyCharged},
              {"discharging", "discharging", status.discharging},
              {"initialized", "initialized", status.initialized},
              {"remainingTimeAlarm", "remaining time alarm", status.remainingTimeAlarm},
              {"remainingCapacityAlarm", "remaining capacity alarm", status.remainingCapacityAlarm},
              {"reservedBit10", "reserved bit 10", status.reservedBit10},
              {"terminateDischargeAlarm", "terminate discharge alarm", status.terminateDischargeAlarm},
              {"overTemperatureAlarm", "over temperature alarm", status.overTemperatureAlarm},
              {"reservedBit13", "reserved bit 13", status.reservedBit13},
              {"terminateChargeAlarm", "terminate charge alarm", status.terminateChargeAlarm},
              {"overChargedAlarm", "over charged alarm", status.overChargedAlarm},
          }};
}

Attributes ReadAttributes(const NorvBatteryInfo& battery) {
  const CtFields ct = ReadCtFields(battery);
  return {
      .packSupplier = battery.GetPackSupplier(),
      .cellSupplier = battery.GetCellSupplier(),
      .calibrationType = battery.GetCalibrationType(),
      .overCurrentProtection = battery.GetOverCurrentProtection(),
      .designCycleCount = battery.GetDesignCycleCount(),
      .ctAssembly = ct.assembly,
      .ctRevision = ct.revision,
      .ctSupplier = ct.supplier,
      .ctManufacturingWeek = ct.manufacturingWeek,
  };
}

std::vector<Named<int>> ReadCellSwellProtection(NorvBatteryInfo& battery) {
  const NorvBatteryCellSwellProtectionInfo* info = battery.GetCellSwellProtectionInfo();
  if (info == nullptr) {
    return {};
  }
  return {
      {"timeCharge", "Time charging", info->GetTimeCharge()},
      {"timeDischarge", "Time discharging", info->GetTimeDischarge()},
      {"timeRelax", "Time relaxed (idle)", info->GetTimeRelax()},
      {"timeSleep", "Time sleeping", info->GetTimeSleep()},
      {"timeFullCharge", "Time at full charge", info->GetTimeFullCharge()},
      {"timeRsoc", "Time against charge level", info->GetTimeRSOC()},
      {"levelATime", "Time in protection level A", info->GetCSPATime()},
      {"levelBTime", "Time in protection level B", info->GetCSPBTime()},
      {"levelARunningTime", "Level A running time", info->GetCSPARunningTime()},
      {"levelBRunningTime", "Level B running time", info->GetCSPBRunningTime()},
      {"levelATemperature1Time", "Level A in temperature band 1", info->GetCSPATemp1Time()},
      {"levelBTemperature1Time", "Level B in temperature band 1", info->GetCSPBTemp1Time()},
      {"levelATemperature2Time", "Level A in temperature band 2", info->GetCSPATemp2Time()},
      {"levelBTemperature2Time", "Level B in temperature band 2", info->GetCSPBTemp2Time()},
  };
}

Validity ReadValidity(NorvBatteryInfo& battery) {
  const bool valid = battery.IsValid();
  return {valid, ReadFailure(battery.GetError())};
}

// IsValid and GetAge share the record's error.
Age ReadAge(NorvBatteryInfo& battery) {
  const int value = battery.GetAge();
  return {value, IsAgeFailure(battery.GetError()) ? ReadFailure(battery.GetError()) : std::nullopt};
}

// `source` is a battery's record, or the test itself.
template <typename Source>
TestVerdict ReadVerdict(const Source& source) {
  constexpr int kNoVerdictCode = -1;
  const int result = source.GetBatteryTestResult();
  return {result != kNoVerdictCode ? std::optional(result) : std::nullopt, source.GetBatteryTestResultLabel(),
          source.GetBatteryTestVersion()};
}

BatteryReport ReadBattery(int slot, NorvBatteryInfo& battery) {
  BatteryReport report = ReadBlock(battery);
  report.slot = slot;
  report.capacity.chargeRate = battery.GetBatteryChargeRate();
  report.capacity.dischargeRate = battery.GetBatteryDischargeRate();
  report.settings = {battery.GetAdaptiveBatteryOptimizerInfo(), battery.GetBatteryCareInfo()};
  report.cellSwellProtection = ReadCellSwellProtection(battery);
  report.testVerdict = ReadVerdict(battery);
  return report;
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
  std::string named = machine.BatterySource();
  if (!named.empty()) {
    return named;
  }
  return std::string_view(source.kind) == "machine" ? "not known" : "a machine file";
}

TestReport RunTest(NorvBatteries& batteries, NorvBatteryTestInfo& test) {
  {
    const TestProgress progress;
    test.RunBatteryTest();
  }
  const bool isVerdict = batteries.RunBatteryTest();
  TestReport report;
  report.verdict = ReadVerdict(test);
  if (!isVerdict) {
    // The test's own failure is the cause; the collection only says that there is no verdict.
    report.error = ReadFailure(test.GetError() ? test.GetError() : batteries.GetError());
  }
  return report;
}

}  // namespace

CtFields ReadCtFields(const NorvBatteryInfo& battery) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  return {battery.GetCtAssembly(), battery.GetCtRevision(), battery.GetCtSupplier(), battery.GetCtMfgWeek()};
}

Cells ReadCells(NorvBatteryInfo& battery) {
  Cells cells;
  battery.GetCellVoltages(cells.voltages.data());
  auto present = cells.voltages;
  // A pack of fewer than four cells reads 0 for the ones that it lacks; they say nothing about its balance.
  const auto end = std::remove(present.begin(), present.end(), 0);
  if (end != present.begin()) {
    const auto [lowest, highest] = std::minmax_element(present.begin(), end);
    cells.spread = *highest - *lowest;
  }
  return cells;
}

bool IsAgeFailure(const Error& error) {
  return error && *error.GetFunctionText() != '\0';
}

BatteryReport ReadBlock(NorvBatteryInfo& battery) {
  BatteryReport report;
  // Validity before age: the error that GetAge leaves would make the record invalid.
  report.validity = ReadValidity(battery);
  report.identity = ReadIdentity(battery);
  report.capacity = ReadCapacity(battery);
  report.cells = ReadCells(battery);
  report.status = ReadStatus(battery);
  report.attributes = ReadAttributes(battery);
  report.dates = {battery.GetManufacturingDate(), battery.GetWarrantyType(), battery.GetWarrantyDate(),
                  ReadAge(battery)};
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
  report.readError = ReadFailure(batteries.GetError());
  if (runner != nullptr) {
    report.test = RunTest(batteries, *runner);
  }
  for (unsigned char slot = 0; slot < kSlotCount; ++slot) {
    if (NorvBatteryInfo* battery = batteries.Query(slot)) {
      report.batteries.at(slot) = ReadBattery(slot, *battery);
      report.batteries.at(slot)->capacity.driverStateOfCharge =
          machine.WasAsked() ? machine.DriverStateOfCharge(slot) : std::nullopt;
    }
  }
  return report;
}

}  // namespace norv::tool
