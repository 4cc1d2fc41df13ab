// Collections in several threads at once. Made for the thread sanitizer, which then watches every access.
//
// One thing of the library belongs to the whole process and is documented so: the texts of the four CT fields. The test
// leaves them alone but for one case, where a lock of the host's own guards them.
#include <gtest/gtest.h>
#include <plog/Appenders/IAppender.h>
#include <plog/Severity.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "battery/NorvSharedInitializeLogger.h"
#include "norv/simulator/SimulatedMachine.h"

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
  void write(const plog::Record& record) override {
    count_ += record.getMessage()[0] != 0 ? 1 : 0;
  }
  int Count() const { return count_; }

 private:
  std::atomic<int> count_{0};
};

// Runs `work` in all threads, which start together.
void InAllThreads(const std::function<void()>& work) {
  std::latch start(kThreads);
  std::vector<std::jthread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int round = 0; round < kRounds; ++round) {
        work();
      }
    });
  }
}

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

// A full collection of the machine in force, as one text.
std::string Collect() {
  NorvBatteries batteries(true, true, nullptr, nullptr);
  std::string text;
  for (const unsigned char slot : {static_cast<unsigned char>(0), static_cast<unsigned char>(1)}) {
    if (auto* record = batteries.Query(slot)) {
      text += Answers(*record) + ' ' + std::to_string(record->GetCellSwellProtectionInfo() != nullptr) + '\n';
    }
  }
  return text + batteries.GetError().GetMessageText();
}

void CollectTheSameInAllThreads() {
  for (const char* sample : {"two-batteries", "channel-failure", "test-passed"}) {
    const auto machine = SimulatedMachine::FromSample(sample);
    const std::string expected = Collect();
    std::atomic<int> differences{0};
    InAllThreads([&] { differences += Collect() == expected ? 0 : 1; });
    EXPECT_EQ(differences, 0) << sample;
  }
}

TEST(Threads, CollectAtOnceWithoutALogger) {
  CollectTheSameInAllThreads();
}

TEST(Threads, CollectAtOnceOnTheRunningSystem) {
  const std::string expected = Collect();
  std::atomic<int> differences{0};
  InAllThreads([&] { differences += Collect() == expected ? 0 : 1; });
  EXPECT_EQ(differences, 0);
}

TEST(Threads, DecodeAtOnceEvenTheirCtFieldsUnderALockOfTheHosts) {
  const auto machine = SimulatedMachine::FromSample("two-batteries");
  std::mutex ctFields;
  std::atomic<int> differences{0};
  InAllThreads([&] {
    NorvBatteries batteries;
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
  CollectTheSameInAllThreads();
  EXPECT_GT(appender.Count(), kThreads * kRounds);
}

}  // namespace
}  // namespace norv::test
