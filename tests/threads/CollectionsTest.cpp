// Collections in several threads at once. Made for the thread sanitizer, which then watches every access.
//
// One thing of the library belongs to the whole process and is documented so: the texts of the four CT fields. The test
// leaves them alone but for one case, where a lock of the host's own guards them.
#include <gtest/gtest.h>
#include <plog/Appenders/IAppender.h>
#include <plog/Severity.h>

#include <atomic>
#include <barrier>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "battery/NorvSharedInitializeLogger.h"
#include "norv/platform/Platform.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using simulator::SimulatedMachine;

constexpr int kThreads = 2;
constexpr int kRounds = 50;

// The library calls it on every thread that logs.
class CountingAppender : public plog::IAppender {
 public:
  void write(const plog::Record& record) override { count_ += record.getMessage()[0] != 0 ? 1 : 0; }
  int Count() const { return count_; }

 private:
  std::atomic<int> count_{0};
};

// Runs `work` in all threads, round by round. Within a round nothing of the test's own orders what the threads do, so
// that the sanitizer sees each access that nothing else orders either.
void InAllThreads(const std::function<void()>& work) {
  std::barrier start(kThreads);
  std::vector<std::jthread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        start.arrive_and_wait();
        work();
      }
    });
  }
}

// A channel with a battery in each slot. Unlike a simulated machine it takes no lock, which would order the threads.
class Channel : public shared::norvbios::PrivateBiosWmi {
 public:
  std::int32_t ExecuteCommand(std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                              const unsigned char* /*input*/, std::uint32_t /*inputSize*/, unsigned char* output,
                              std::uint32_t* returnCode) override {
    const TestBlock block = HealthyBlock();
    std::memcpy(output, block.Data(), block.Bytes().size());
    *returnCode = 0;
    return 0;
  }
};

// The running machine but for its calendar: the C library's guards the time zone by a lock that the sanitizer does not
// see.
class OwnCalendar : public platform::PlatformWrapper {
 public:
  OwnCalendar() : PlatformWrapper(Current()) {}
  std::time_t LocalTimeValue(const std::tm& calendarTime) override {
    constexpr std::time_t kSecondsPerYear = 31556952;
    return (calendarTime.tm_year - 70) * kSecondsPerYear;
  }
};

// Every answer but the CT fields, put together.
std::string Answers(NorvBatteryInfo& record) {
  std::string text = std::string(record.GetManufacturer()) + record.GetCtNumber() + record.GetDeviceName() +
                     record.GetSerialNumber() + record.GetManufacturingDate() + record.GetWarrantyDate() +
                     record.GetPackSupplier() + record.GetCellSupplier() + record.GetCalibrationType() +
                     record.GetWarrantyType() + record.GetDesignCycleCount() +
                     record.GetAdaptiveBatteryOptimizerInfo() + record.GetBatteryCareInfo() +
                     record.GetBatteryTestResultLabel() + record.GetBatteryTestVersion() + record.GetStatus().errorCode;
  for (const int number :
       {record.GetDesignVoltage(), record.GetDesignEnergyCapacity(), record.GetFullEnergyCapacity(),
        record.GetRemainingCapacity(), record.GetMaxErrorPercentage(), record.GetCycleCount(), record.GetTemperature(),
        record.GetVoltage(), record.GetElectricCurrent(), record.GetStatusWord(), record.GetOverCurrentProtection(),
        record.GetBatteryTestResult(), static_cast<int>(record.IsValid()), static_cast<int>(record.GetAge() > 0)}) {
    text += ' ' + std::to_string(number);
  }
  return text + ' ' + std::to_string(record.GetFullEnergyCapacityPercentage()) + ' ' +
         std::to_string(record.GetRemainingEnergyCapacityPercentage()) + ' ' +
         std::to_string(record.GetBatteryChargeRate()) + ' ' + std::to_string(record.GetBatteryDischargeRate());
}

// A full collection, as one text.
std::string Collect(shared::norvbios::PrivateBiosWmi* channel) {
  NorvBatteries batteries(true, true, channel, nullptr);
  std::string text;
  for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
    if (auto* record = batteries.Query(slot)) {
      text += Answers(*record) + ' ' + std::to_string(record->GetCellSwellProtectionInfo() != nullptr) + '\n';
    }
  }
  return text + batteries.GetError().GetMessageText();
}

void CollectTheSameInAllThreads(const std::function<std::string()>& collect) {
  const std::string expected = collect();
  std::atomic<int> differences{0};
  InAllThreads([&] {
    if (collect() != expected) {
      ++differences;
    }
  });
  EXPECT_EQ(differences, 0);
}

void CollectTwoHealthyBatteries() {
  OwnCalendar calendar;
  const platform::ScopedPlatform scope(calendar);
  CollectTheSameInAllThreads([] { return Collect(new Channel); });
}

void CollectSimulatedMachines() {
  for (const char* sample : {"two-batteries", "channel-failure", "test-passed"}) {
    SCOPED_TRACE(sample);
    const auto machine = SimulatedMachine::FromSample(sample);
    CollectTheSameInAllThreads([] { return Collect(nullptr); });
  }
}

TEST(Threads, CollectAtOnce) {
  CollectTwoHealthyBatteries();
}

TEST(Threads, CollectASimulatedMachineAtOnce) {
  CollectSimulatedMachines();
}

TEST(Threads, CollectTheRunningMachineAtOnce) {
  CollectTheSameInAllThreads([] { return Collect(nullptr); });
}

TEST(Threads, DecodeAtOnceEvenTheirCtFieldsUnderALockOfTheHosts) {
  std::mutex ctFields;
  std::atomic<int> differences{0};
  InAllThreads([&] {
    NorvBatteries batteries(false, false, new Channel, nullptr);
    const std::lock_guard lock(ctFields);
    for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
      const NorvBatteryInfo& record = *batteries.Query(slot);
      const std::string ctNumber = record.GetCtNumber();
      differences += ctNumber.find(record.GetCtAssembly()) != std::string::npos ? 0 : 1;
      differences += ctNumber.find(record.GetCtMfgWeek()) != std::string::npos ? 0 : 1;
    }
  });
  EXPECT_EQ(differences, 0);
}

// The last one: the logger stays until the process ends.
TEST(ThreadsWithLogger, CollectAtOnce) {
  static CountingAppender appender;
  norvSharedInitializeLogger(plog::verbose, &appender);
  CollectTwoHealthyBatteries();
  CollectSimulatedMachines();
  EXPECT_GT(appender.Count(), kThreads * kRounds);
}

}  // namespace
}  // namespace norv::test
