// Every field of every sample machine, beside what the C++ accessors answer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Reader.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "norv/simulator/SimulatedMachine.h"

namespace norv::test::c {
namespace {

using shared::battery::NorvBatteries;
using shared::battery::NorvBatteryInfo;
using shared::battery::NorvBatteryStatus;
using shared::battery::NorvBatteryTestInfo;

// What the accessors say, in the form in which the C interface writes values as texts.
using Texts = std::map<std::int32_t, std::string>;

std::string Utf8(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) {
    const unsigned number = static_cast<unsigned char>(character);
    if (number < 0x80) {
      text += character;
    } else {
      text += static_cast<char>(0xC0 + number / 64);
      text += static_cast<char>(0x80 + number % 64);
    }
  }
  return text;
}

std::string ThreeDecimals(float value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(value));
  return text;
}

void AddTexts(Texts& texts, NorvBatteryInfo& info) {
  texts[NORV_BATTERY_MANUFACTURER] = Utf8(info.GetManufacturer());
  texts[NORV_BATTERY_DEVICE_NAME] = Utf8(info.GetDeviceName());
  texts[NORV_BATTERY_SERIAL_NUMBER] = Utf8(info.GetSerialNumber());
  texts[NORV_BATTERY_CT_NUMBER] = Utf8(info.GetCtNumber());
  texts[NORV_BATTERY_MANUFACTURING_DATE] = info.GetManufacturingDate();
  texts[NORV_BATTERY_WARRANTY_TYPE] = info.GetWarrantyType();
  texts[NORV_BATTERY_WARRANTY_DATE] = info.GetWarrantyDate();
  texts[NORV_BATTERY_PACK_SUPPLIER] = info.GetPackSupplier();
  texts[NORV_BATTERY_CELL_SUPPLIER] = info.GetCellSupplier();
  texts[NORV_BATTERY_CALIBRATION_TYPE] = Utf8(info.GetCalibrationType());
  texts[NORV_BATTERY_DESIGN_CYCLE_COUNT] = info.GetDesignCycleCount();
  texts[NORV_BATTERY_CT_ASSEMBLY] = Utf8(info.GetCtAssembly());
  texts[NORV_BATTERY_CT_REVISION] = Utf8(info.GetCtRevision());
  texts[NORV_BATTERY_CT_SUPPLIER] = Utf8(info.GetCtSupplier());
  texts[NORV_BATTERY_CT_MANUFACTURING_WEEK] = Utf8(info.GetCtMfgWeek());
  texts[NORV_BATTERY_ADAPTIVE_BATTERY_OPTIMIZER] = info.GetAdaptiveBatteryOptimizerInfo();
  texts[NORV_BATTERY_BATTERY_CARE] = info.GetBatteryCareInfo();
  texts[NORV_BATTERY_TEST_LABEL] = info.GetBatteryTestResultLabel();
  texts[NORV_BATTERY_TEST_VERSION] = info.GetBatteryTestVersion();
}

void AddNumbers(Texts& texts, NorvBatteryInfo& info) {
  texts[NORV_BATTERY_DESIGN_CAPACITY] = std::to_string(info.GetDesignEnergyCapacity());
  texts[NORV_BATTERY_FULL_CHARGE_CAPACITY] = std::to_string(info.GetFullEnergyCapacity());
  texts[NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE] = ThreeDecimals(info.GetFullEnergyCapacityPercentage());
  texts[NORV_BATTERY_REMAINING_CAPACITY] = std::to_string(info.GetRemainingCapacity());
  texts[NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE] = ThreeDecimals(info.GetRemainingEnergyCapacityPercentage());
  texts[NORV_BATTERY_MAX_ERROR] = std::to_string(info.GetMaxErrorPercentage());
  texts[NORV_BATTERY_CYCLE_COUNT] = std::to_string(info.GetCycleCount());
  texts[NORV_BATTERY_DESIGN_VOLTAGE] = std::to_string(info.GetDesignVoltage());
  texts[NORV_BATTERY_VOLTAGE] = std::to_string(info.GetVoltage());
  texts[NORV_BATTERY_CURRENT] = std::to_string(info.GetElectricCurrent());
  texts[NORV_BATTERY_TEMPERATURE] = std::to_string(info.GetTemperature());
  texts[NORV_BATTERY_CHARGE_RATE] = std::to_string(info.GetBatteryChargeRate());
  texts[NORV_BATTERY_DISCHARGE_RATE] = std::to_string(info.GetBatteryDischargeRate());
  texts[NORV_BATTERY_OVER_CURRENT_PROTECTION] = std::to_string(info.GetOverCurrentProtection());
  texts[NORV_BATTERY_TEST_RESULT] = std::to_string(info.GetBatteryTestResult());
  int cells[4];
  info.GetCellVoltages(cells);
  for (int cell = 0; cell < 4; ++cell) {
    texts[NORV_BATTERY_CELL_VOLTAGE_1 + cell] = std::to_string(cells[cell]);
  }
}

void AddStatus(Texts& texts, const NorvBatteryInfo& info) {
  const auto flag = [](bool value) { return value ? "true" : "false"; };
  const NorvBatteryStatus status = info.GetStatus();
  texts[NORV_BATTERY_STATUS_WORD] = std::to_string(info.GetStatusWord());
  texts[NORV_BATTERY_STATUS_ERROR_CODE] = status.errorCode;
  texts[NORV_BATTERY_FULLY_DISCHARGED] = flag(status.fullyDischarged);
  texts[NORV_BATTERY_FULLY_CHARGED] = flag(status.fullyCharged);
  texts[NORV_BATTERY_DISCHARGING] = flag(status.discharging);
  texts[NORV_BATTERY_INITIALIZED] = flag(status.initialized);
  texts[NORV_BATTERY_REMAINING_TIME_ALARM] = flag(status.remainingTimeAlarm);
  texts[NORV_BATTERY_REMAINING_CAPACITY_ALARM] = flag(status.remainingCapacityAlarm);
  texts[NORV_BATTERY_RESERVED_BIT_10] = flag(status.reservedBit10);
  texts[NORV_BATTERY_TERMINATE_DISCHARGE_ALARM] = flag(status.terminateDischargeAlarm);
  texts[NORV_BATTERY_OVER_TEMPERATURE_ALARM] = flag(status.overTemperatureAlarm);
  texts[NORV_BATTERY_RESERVED_BIT_13] = flag(status.reservedBit13);
  texts[NORV_BATTERY_TERMINATE_CHARGE_ALARM] = flag(status.terminateChargeAlarm);
  texts[NORV_BATTERY_OVER_CHARGED_ALARM] = flag(status.overChargedAlarm);
}

void AddCellSwell(Texts& texts, NorvBatteryInfo& info) {
  const auto* counters = info.GetCellSwellProtectionInfo();
  const auto add = [&texts, counters](std::int32_t field, auto get) {
    texts[field] = std::to_string(counters != nullptr ? (counters->*get)() : 0);
  };
  using Counters = shared::battery::NorvBatteryCellSwellProtectionInfo;
  add(NORV_BATTERY_TIME_CHARGE, &Counters::GetTimeCharge);
  add(NORV_BATTERY_TIME_DISCHARGE, &Counters::GetTimeDischarge);
  add(NORV_BATTERY_TIME_RELAX, &Counters::GetTimeRelax);
  add(NORV_BATTERY_TIME_SLEEP, &Counters::GetTimeSleep);
  add(NORV_BATTERY_TIME_FULL_CHARGE, &Counters::GetTimeFullCharge);
  add(NORV_BATTERY_TIME_RSOC, &Counters::GetTimeRSOC);
  add(NORV_BATTERY_LEVEL_A_TIME, &Counters::GetCSPATime);
  add(NORV_BATTERY_LEVEL_B_TIME, &Counters::GetCSPBTime);
  add(NORV_BATTERY_LEVEL_A_RUNNING_TIME, &Counters::GetCSPARunningTime);
  add(NORV_BATTERY_LEVEL_B_RUNNING_TIME, &Counters::GetCSPBRunningTime);
  add(NORV_BATTERY_LEVEL_A_TEMPERATURE_1_TIME, &Counters::GetCSPATemp1Time);
  add(NORV_BATTERY_LEVEL_B_TEMPERATURE_1_TIME, &Counters::GetCSPBTemp1Time);
  add(NORV_BATTERY_LEVEL_A_TEMPERATURE_2_TIME, &Counters::GetCSPATemp2Time);
  add(NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME, &Counters::GetCSPBTemp2Time);
}

// Validity before age, which leaves an error that validity would see.
Texts AccessorTexts(NorvBatteryInfo& info) {
  Texts texts;
  texts[NORV_BATTERY_VALID] = info.IsValid() ? "true" : "false";
  AddTexts(texts, info);
  AddNumbers(texts, info);
  AddStatus(texts, info);
  AddCellSwell(texts, info);
  texts[NORV_BATTERY_AGE] = std::to_string(info.GetAge());
  return texts;
}

int Visit(void* context, const norv_battery_description* description, const norv_battery_value* value,
          const char* text) {
  EXPECT_EQ(description->field, value->field);
  EXPECT_EQ(value->textSize, std::string_view(text).size() + 1);
  (*static_cast<Texts*>(context))[description->field] = text;
  return 0;
}

class EverySample : public ::testing::TestWithParam<std::string> {};

TEST_P(EverySample, FieldsAreTheAccessors) {
  const auto machine = simulator::SimulatedMachine::FromSample(GetParam());
  NorvBatteries batteries(true, true, nullptr, nullptr);
  auto options = Sized<norv_battery_options>();
  options.flags = NORV_BATTERY_READ_CELL_SWELL | NORV_BATTERY_RUN_TEST;
  const Collection collection(&options);
  for (unsigned char slot = 0; slot < 2; ++slot) {
    NorvBatteryInfo* info = batteries.Query(slot);
    const norv_battery_record* record = collection.Record(slot);
    ASSERT_EQ(info == nullptr, record == nullptr) << "slot " << int{slot};
    if (info != nullptr) {
      Texts visited;
      ASSERT_EQ(norv_battery_for_each_field(record, Visit, &visited), NORV_BATTERY_OK);
      const Texts expected = AccessorTexts(*info);
      EXPECT_EQ(visited, expected);
      EXPECT_EQ(visited.size(), static_cast<std::size_t>(norv_battery_field_count()));
      for (const auto& [field, text] : expected) {
        EXPECT_EQ(ReadField(record, field).text, text) << Describe(field).name;
      }
    }
  }
}

TEST_P(EverySample, ErrorsAreTheCollections) {
  const auto machine = simulator::SimulatedMachine::FromSample(GetParam());
  NorvBatteries batteries(true, true, nullptr, nullptr);
  auto options = Sized<norv_battery_options>();
  options.flags = NORV_BATTERY_READ_CELL_SWELL | NORV_BATTERY_RUN_TEST;
  const Collection collection(&options);
  const auto& error = batteries.GetError();
  const Failure failure = CollectionFailure(collection.Get());
  EXPECT_EQ(failure.category, error ? static_cast<int>(error.GetCategory()) : 0);
  EXPECT_EQ(failure.code, error ? error.GetCode() : 0);
  EXPECT_EQ(failure.message, Utf8(error.GetMessageText()));
  EXPECT_EQ(failure.type, error.GetTypeText());
  EXPECT_EQ(failure.function, error.GetFunctionText());
}

std::vector<std::string> SampleNames() {
  std::vector<std::string> names;
  for (const auto& sample : simulator::SampleMachines()) {
    names.push_back(sample.name);
  }
  return names;
}

INSTANTIATE_TEST_SUITE_P(CInterface, EverySample, ::testing::ValuesIn(SampleNames()), [](const auto& sample) {
  std::string name = sample.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

TEST(CInterfaceDescription, NamesAreWordsAndNoTwoAreTheSame) {
  std::set<std::string> names;
  for (std::int32_t field = 1; field <= norv_battery_field_count(); ++field) {
    const std::string name = Describe(field).name;
    EXPECT_EQ(Describe(field).field, field);
    EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789 "), std::string::npos) << name;
    EXPECT_TRUE(names.insert(name).second) << name;
  }
  EXPECT_EQ(names.size(), 68U);
}

TEST(CInterfaceDescription, SaysWhereAFieldLies) {
  const norv_battery_description capacity = Describe(NORV_BATTERY_FULL_CHARGE_CAPACITY);
  EXPECT_STREQ(capacity.name, "full charge capacity");
  EXPECT_STREQ(capacity.unit, "mAh or 10 mWh");
  EXPECT_EQ(capacity.kind, NORV_BATTERY_NUMBER);
  EXPECT_EQ(capacity.source, NORV_BATTERY_FROM_INFORMATION_BLOCK);
  EXPECT_EQ(capacity.offset, 2U);
  EXPECT_EQ(capacity.width, 2U);
  EXPECT_EQ(capacity.bit, -1);
  EXPECT_EQ(Describe(NORV_BATTERY_MANUFACTURER).offset, 0x2CU);
  EXPECT_EQ(Describe(NORV_BATTERY_MANUFACTURER).width, 18U);
  EXPECT_EQ(Describe(NORV_BATTERY_CT_SUPPLIER).offset, 0x3EU + 6);
  EXPECT_EQ(Describe(NORV_BATTERY_DISCHARGING).kind, NORV_BATTERY_FLAG);
  EXPECT_EQ(Describe(NORV_BATTERY_DISCHARGING).bit, 6);
  EXPECT_EQ(Describe(NORV_BATTERY_DISCHARGING).offset, 0x12U);
  EXPECT_EQ(Describe(NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME).source, NORV_BATTERY_FROM_CELL_SWELL_BLOCK);
  EXPECT_EQ(Describe(NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME).offset, 26U);
  EXPECT_EQ(Describe(NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE).kind, NORV_BATTERY_REAL);
  EXPECT_EQ(Describe(NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE).width, 0U);
}

}  // namespace
}  // namespace norv::test::c
