#include "c-interface/Fields.h"

#include <array>
#include <functional>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "base/Utf8.h"
#include "diagnostics/MemoryWatch.h"
#include "firmware/BatteryInformationBlock.h"
#include "firmware/CellSwellProtectionBlock.h"
#include "record/CtNumber.h"
#include "record/ManufacturerText.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery::c_interface {

namespace {

using base::BytesToUtf8;
using base::ValidUtf8;

using Info = NorvBatteryInfo;
using CellSwell = NorvBatteryCellSwellProtectionInfo;
using Record = norv_battery_record;

Answer NumberAnswer(std::int64_t number, norv_battery_state state = NORV_BATTERY_VALUE) {
  Answer answer;
  answer.state = state;
  answer.number = number;
  return answer;
}

Answer TextAnswer(std::string text, norv_battery_state state) {
  Answer answer;
  answer.state = state;
  answer.text = std::move(text);
  return answer;
}

norv_battery_state PresentUnlessEmpty(std::string_view text) {
  return text.empty() ? NORV_BATTERY_ABSENT : NORV_BATTERY_VALUE;
}

// --- one reader for each way in which fields are read ----------------------------------------------------------------

template <auto kGet>
Answer Number(const Record& record) {
  return NumberAnswer(std::invoke(kGet, *record.info));
}

template <auto kGet>
Answer Text(const Record& record) {
  const std::string text = BytesToUtf8(std::invoke(kGet, *record.info));
  return TextAnswer(text, PresentUnlessEmpty(text));
}

// The BIOS settings, which are UTF-8 already.
template <auto kGet>
Answer Setting(const Record& record) {
  const char* const text = std::invoke(kGet, *record.info);
  return TextAnswer(ValidUtf8(text), PresentUnlessEmpty(text));
}

// A code of the manufacturer text.
template <auto kGet>
Answer Meaning(const Record& record) {
  const std::string text = std::invoke(kGet, *record.info);
  return TextAnswer(text, text == "UNKNOWN" ? NORV_BATTERY_UNKNOWN : NORV_BATTERY_VALUE);
}

// A month of 0 or above 12, or a day of 0, makes it empty. No day is held against its month: 31 February stands.
template <auto kGet>
Answer Date(const Record& record) {
  const std::string text = std::invoke(kGet, *record.info);
  return TextAnswer(text, text.empty() ? NORV_BATTERY_INVALID : NORV_BATTERY_VALUE);
}

// No percentage is negative, but for the figure that stands for one that cannot be computed.
template <auto kGet>
Answer Percentage(const Record& record) {
  Answer answer;
  answer.real = static_cast<double>(std::invoke(kGet, *record.info));
  answer.state = answer.real < 0 ? NORV_BATTERY_INVALID : NORV_BATTERY_VALUE;
  return answer;
}

template <auto kFlag>
Answer Flag(const Record& record) {
  return NumberAnswer(std::invoke(kFlag, record.info->GetStatus()) ? 1 : 0);
}

// A decoded block need not be this machine's, so nobody was asked.
template <auto kGet>
Answer Rate(const Record& record) {
  return NumberAnswer(std::invoke(kGet, *record.info), record.IsDecoded() ? NORV_BATTERY_ABSENT : NORV_BATTERY_VALUE);
}

template <std::size_t kCell>
Answer CellVoltage(const Record& record) {
  std::array<int, 4> voltages{};
  record.info->GetCellVoltages(voltages.data());
  return NumberAnswer(voltages[kCell]);
}

template <auto kGet>
Answer Counter(const Record& record) {
  const CellSwell* const counters = record.info->GetCellSwellProtectionInfo();
  return counters != nullptr ? NumberAnswer(std::invoke(kGet, *counters)) : NumberAnswer(0, NORV_BATTERY_ABSENT);
}

// The accessors of the CT number's fields share a buffer each with every thread; this does not.
template <record::CtField kField>
Answer CtPart(const Record& record) {
  const auto part = record::FindCtField(record.info->GetCtNumber(), kField);
  return part ? TextAnswer(BytesToUtf8(*part), PresentUnlessEmpty(*part))
              : TextAnswer(record::kNoCtField, NORV_BATTERY_ABSENT);
}

// --- fields that are unlike all others -------------------------------------------------------------------------------

// A field that holds anything but letters and digits is no name.
Answer DeviceName(const Record& record) {
  const std::string name = record.info->GetDeviceName();
  const bool isOther = name.empty() && !firmware::Text(record.block.data(), firmware::kDeviceName).empty();
  return TextAnswer(name, isOther ? NORV_BATTERY_INVALID : PresentUnlessEmpty(name));
}

// Codes 0 to 7 are the standard's, the rest is reserved.
Answer StatusErrorCode(const Record& record) {
  constexpr unsigned int kLastCode = 7;
  const unsigned int code = static_cast<unsigned int>(record.info->GetStatusWord()) & 15U;
  return TextAnswer(record.info->GetStatus().errorCode, code <= kLastCode ? NORV_BATTERY_VALUE : NORV_BATTERY_UNKNOWN);
}

// Without a known warranty type the date was not moved and is no warranty's.
Answer WarrantyDate(const Record& record) {
  Answer date = Date<&Info::GetWarrantyDate>(record);
  if (date.state == NORV_BATTERY_VALUE) {
    date.state = Meaning<&Info::GetWarrantyType>(record).state;
  }
  return date;
}

Answer OverCurrentProtection(const Record& record) {
  const auto limit =
      record::FindOverCurrentProtection(record.info->GetManufacturer(), record.info->GetDesignEnergyCapacity());
  return NumberAnswer(record.info->GetOverCurrentProtection(), limit ? NORV_BATTERY_VALUE : NORV_BATTERY_UNKNOWN);
}

// Age and validity write the record's error, and validity reads it. A copy shares the record's texts and has an error
// of its own; the record itself is never asked, so that its error stays empty.
struct Asked {
  std::int64_t answer = 0;
  error::Error failure;
};

template <typename Ask>
Asked AskCopy(const Record& record, Ask ask) {
  const diagnostics::MemoryWatch memory;
  NorvBatteryInfo copy(*record.info);
  const std::int64_t answer = ask(copy);
  if (memory.RanOut()) {
    throw std::bad_alloc();
  }
  return {answer, copy.GetError()};
}

Asked AskAge(const Record& record) {
  return AskCopy(record, [](NorvBatteryInfo& copy) { return copy.GetAge(); });
}

Asked AskValidity(const Record& record) {
  return AskCopy(record, [](NorvBatteryInfo& copy) { return copy.IsValid() ? 1 : 0; });
}

Answer Age(const Record& record) {
  const Asked age = AskAge(record);
  const bool hasNone = *record.info->GetSerialNumber() == '\0';
  const norv_battery_state failed = hasNone ? NORV_BATTERY_ABSENT : NORV_BATTERY_INVALID;
  return NumberAnswer(age.answer, age.failure ? failed : NORV_BATTERY_VALUE);
}

Answer Valid(const Record& record) {
  return NumberAnswer(AskValidity(record).answer);
}

// --- the battery test, of a record and of itself ---------------------------------------------------------------------

norv_battery_state ResultState(int result) {
  if (result == test::kNoVerdict) {
    return NORV_BATTERY_ABSENT;
  }
  return test::ResultLabel(result) == test::ResultLabel(test::kNoVerdict) ? NORV_BATTERY_UNKNOWN : NORV_BATTERY_VALUE;
}

template <typename Source>
Answer TestResult(const Source& source) {
  const int result = source.GetBatteryTestResult();
  return NumberAnswer(result, ResultState(result));
}

template <typename Source>
Answer TestLabel(const Source& source) {
  return TextAnswer(source.GetBatteryTestResultLabel(), ResultState(source.GetBatteryTestResult()));
}

// The version is known as soon as the program was found, verdict or not.
template <typename Source>
Answer TestVersion(const Source& source) {
  const std::string version = source.GetBatteryTestVersion();
  const bool isKnown = !version.empty() && version != "0.0.0.0";
  return TextAnswer(version, isKnown ? NORV_BATTERY_VALUE : NORV_BATTERY_ABSENT);
}

template <Answer (*kRead)(const Info&)>
Answer OfRecord(const Record& record) {
  return kRead(*record.info);
}

// --- the table -------------------------------------------------------------------------------------------------------

constexpr firmware::Field kNowhere{0, 0};

constexpr firmware::Field Part(record::CtField field) {
  return {firmware::kCtNumber.offset + field.position, field.width};
}

constexpr const char* kNone = "";
constexpr const char* kCapacity = "mAh or 10 mWh";
constexpr const char* kMillivolt = "mV";
constexpr const char* kPercent = "%";

constexpr FieldRow BlockRow(norv_battery_field field, const char* name, norv_battery_kind kind, const char* unit,
                            firmware::Field place, Answer (*read)(const Record&)) {
  return {field, name, kind, unit, NORV_BATTERY_FROM_INFORMATION_BLOCK, place, kNoBit, read};
}

constexpr FieldRow FlagRow(norv_battery_field field, const char* name, int bit, Answer (*read)(const Record&)) {
  return {field, name, NORV_BATTERY_FLAG, kNone, NORV_BATTERY_FROM_INFORMATION_BLOCK, firmware::kBatteryStatus,
          bit,   read};
}

constexpr FieldRow CounterRow(norv_battery_field field, const char* name, firmware::Field place,
                              Answer (*read)(const Record&)) {
  return {field, name, NORV_BATTERY_NUMBER, kNone, NORV_BATTERY_FROM_CELL_SWELL_BLOCK, place, kNoBit, read};
}

constexpr FieldRow ElsewhereRow(norv_battery_field field, const char* name, norv_battery_kind kind, const char* unit,
                                norv_battery_source source, Answer (*read)(const Record&)) {
  return {field, name, kind, unit, source, kNowhere, kNoBit, read};
}

// clang-format off: rows
constexpr std::array kFields{
    BlockRow(NORV_BATTERY_MANUFACTURER, "manufacturer", NORV_BATTERY_TEXT, kNone, firmware::kManufacturer,
             Text<&Info::GetManufacturer>),
    BlockRow(NORV_BATTERY_DEVICE_NAME, "device name", NORV_BATTERY_TEXT, kNone, firmware::kDeviceName, DeviceName),
    BlockRow(NORV_BATTERY_SERIAL_NUMBER, "serial number", NORV_BATTERY_TEXT, kNone, firmware::kSerialNumber,
             Text<&Info::GetSerialNumber>),
    BlockRow(NORV_BATTERY_CT_NUMBER, "ct number", NORV_BATTERY_TEXT, kNone, firmware::kCtNumber,
             Text<&Info::GetCtNumber>),

    BlockRow(NORV_BATTERY_DESIGN_CAPACITY, "design capacity", NORV_BATTERY_NUMBER, kCapacity, firmware::kDesignCapacity,
             Number<&Info::GetDesignEnergyCapacity>),
    BlockRow(NORV_BATTERY_FULL_CHARGE_CAPACITY, "full charge capacity", NORV_BATTERY_NUMBER, kCapacity,
             firmware::kFullChargeCapacity, Number<&Info::GetFullEnergyCapacity>),
    BlockRow(NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE, "full charge capacity percentage", NORV_BATTERY_REAL,
             kPercent, kNowhere, Percentage<&Info::GetFullEnergyCapacityPercentage>),
    BlockRow(NORV_BATTERY_REMAINING_CAPACITY, "remaining capacity", NORV_BATTERY_NUMBER, kCapacity,
             firmware::kRemainingCapacity, Number<&Info::GetRemainingCapacity>),
    BlockRow(NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE, "remaining capacity percentage", NORV_BATTERY_REAL, kPercent,
             kNowhere, Percentage<&Info::GetRemainingEnergyCapacityPercentage>),
    BlockRow(NORV_BATTERY_MAX_ERROR, "max error", NORV_BATTERY_NUMBER, kPercent, firmware::kMaxError,
             Number<&Info::GetMaxErrorPercentage>),
    BlockRow(NORV_BATTERY_CYCLE_COUNT, "cycle count", NORV_BATTERY_NUMBER, kNone, firmware::kCycleCount,
             Number<&Info::GetCycleCount>),
    BlockRow(NORV_BATTERY_DESIGN_VOLTAGE, "design voltage", NORV_BATTERY_NUMBER, kMillivolt, firmware::kDesignVoltage,
             Number<&Info::GetDesignVoltage>),
    BlockRow(NORV_BATTERY_VOLTAGE, "voltage", NORV_BATTERY_NUMBER, kMillivolt, firmware::kVoltage,
             Number<&Info::GetVoltage>),
    BlockRow(NORV_BATTERY_CURRENT, "current", NORV_BATTERY_NUMBER, "mA", firmware::kCurrent,
             Number<&Info::GetElectricCurrent>),
    BlockRow(NORV_BATTERY_TEMPERATURE, "temperature", NORV_BATTERY_NUMBER, "0.1 K", firmware::kTemperature,
             Number<&Info::GetTemperature>),
    ElsewhereRow(NORV_BATTERY_CHARGE_RATE, "charge rate", NORV_BATTERY_NUMBER, "mW", NORV_BATTERY_FROM_OPERATING_SYSTEM,
                 Rate<&Info::GetBatteryChargeRate>),
    ElsewhereRow(NORV_BATTERY_DISCHARGE_RATE, "discharge rate", NORV_BATTERY_NUMBER, "mW",
                 NORV_BATTERY_FROM_OPERATING_SYSTEM, Rate<&Info::GetBatteryDischargeRate>),

    BlockRow(NORV_BATTERY_CELL_VOLTAGE_1, "cell voltage 1", NORV_BATTERY_NUMBER, kMillivolt, firmware::kCellVoltages[0],
             CellVoltage<0>),
    BlockRow(NORV_BATTERY_CELL_VOLTAGE_2, "cell voltage 2", NORV_BATTERY_NUMBER, kMillivolt, firmware::kCellVoltages[1],
             CellVoltage<1>),
    BlockRow(NORV_BATTERY_CELL_VOLTAGE_3, "cell voltage 3", NORV_BATTERY_NUMBER, kMillivolt, firmware::kCellVoltages[2],
             CellVoltage<2>),
    BlockRow(NORV_BATTERY_CELL_VOLTAGE_4, "cell voltage 4", NORV_BATTERY_NUMBER, kMillivolt, firmware::kCellVoltages[3],
             CellVoltage<3>),

    BlockRow(NORV_BATTERY_STATUS_WORD, "status word", NORV_BATTERY_NUMBER, kNone, firmware::kBatteryStatus,
             Number<&Info::GetStatusWord>),
    BlockRow(NORV_BATTERY_STATUS_ERROR_CODE, "status error code", NORV_BATTERY_TEXT, kNone, firmware::kBatteryStatus,
             StatusErrorCode),
    FlagRow(NORV_BATTERY_FULLY_DISCHARGED, "fully discharged", 4, Flag<&NorvBatteryStatus::fullyDischarged>),
    FlagRow(NORV_BATTERY_FULLY_CHARGED, "fully charged", 5, Flag<&NorvBatteryStatus::fullyCharged>),
    FlagRow(NORV_BATTERY_DISCHARGING, "discharging", 6, Flag<&NorvBatteryStatus::discharging>),
    FlagRow(NORV_BATTERY_INITIALIZED, "initialized", 7, Flag<&NorvBatteryStatus::initialized>),
    FlagRow(NORV_BATTERY_REMAINING_TIME_ALARM, "remaining time alarm", 8, Flag<&NorvBatteryStatus::remainingTimeAlarm>),
    FlagRow(NORV_BATTERY_REMAINING_CAPACITY_ALARM, "remaining capacity alarm", 9,
            Flag<&NorvBatteryStatus::remainingCapacityAlarm>),
    FlagRow(NORV_BATTERY_RESERVED_BIT_10, "reserved bit 10", 10, Flag<&NorvBatteryStatus::reservedBit10>),
    FlagRow(NORV_BATTERY_TERMINATE_DISCHARGE_ALARM, "terminate discharge alarm", 11,
            Flag<&NorvBatteryStatus::terminateDischargeAlarm>),
    FlagRow(NORV_BATTERY_OVER_TEMPERATURE_ALARM, "over temperature alarm", 12,
            Flag<&NorvBatteryStatus::overTemperatureAlarm>),
    FlagRow(NORV_BATTERY_RESERVED_BIT_13, "reserved bit 13", 13, Flag<&NorvBatteryStatus::reservedBit13>),
    FlagRow(NORV_BATTERY_TERMINATE_CHARGE_ALARM, "terminate charge alarm", 14,
            Flag<&NorvBatteryStatus::terminateChargeAlarm>),
    FlagRow(NORV_BATTERY_OVER_CHARGED_ALARM, "over charged alarm", 15, Flag<&NorvBatteryStatus::overChargedAlarm>),

    BlockRow(NORV_BATTERY_MANUFACTURING_DATE, "manufacturing date", NORV_BATTERY_TEXT, kNone,
             firmware::kManufactureDate, Date<&Info::GetManufacturingDate>),
    BlockRow(NORV_BATTERY_WARRANTY_TYPE, "warranty type", NORV_BATTERY_TEXT, kNone, firmware::kManufacturer,
             Meaning<&Info::GetWarrantyType>),
    BlockRow(NORV_BATTERY_WARRANTY_DATE, "warranty date", NORV_BATTERY_TEXT, kNone, kNowhere, WarrantyDate),
    BlockRow(NORV_BATTERY_AGE, "age", NORV_BATTERY_NUMBER, "d", firmware::kSerialNumber, Age),

    BlockRow(NORV_BATTERY_PACK_SUPPLIER, "pack supplier", NORV_BATTERY_TEXT, kNone, firmware::kManufacturer,
             Meaning<&Info::GetPackSupplier>),
    BlockRow(NORV_BATTERY_CELL_SUPPLIER, "cell supplier", NORV_BATTERY_TEXT, kNone, firmware::kManufacturer,
             Meaning<&Info::GetCellSupplier>),
    BlockRow(NORV_BATTERY_CALIBRATION_TYPE, "calibration type", NORV_BATTERY_TEXT, kNone, firmware::kManufacturer,
             Text<&Info::GetCalibrationType>),
    BlockRow(NORV_BATTERY_OVER_CURRENT_PROTECTION, "over current protection", NORV_BATTERY_NUMBER, kCapacity,
             firmware::kManufacturer, OverCurrentProtection),
    BlockRow(NORV_BATTERY_DESIGN_CYCLE_COUNT, "design cycle count", NORV_BATTERY_TEXT, kNone, firmware::kManufacturer,
             Meaning<&Info::GetDesignCycleCount>),
    BlockRow(NORV_BATTERY_CT_ASSEMBLY, "ct assembly", NORV_BATTERY_TEXT, kNone, Part(record::kCtAssembly),
             CtPart<record::kCtAssembly>),
    BlockRow(NORV_BATTERY_CT_REVISION, "ct revision", NORV_BATTERY_TEXT, kNone, Part(record::kCtRevision),
             CtPart<record::kCtRevision>),
    BlockRow(NORV_BATTERY_CT_SUPPLIER, "ct supplier", NORV_BATTERY_TEXT, kNone, Part(record::kCtSupplier),
             CtPart<record::kCtSupplier>),
    BlockRow(NORV_BATTERY_CT_MANUFACTURING_WEEK, "ct manufacturing week", NORV_BATTERY_TEXT, kNone,
             Part(record::kCtMfgWeek), CtPart<record::kCtMfgWeek>),

    ElsewhereRow(NORV_BATTERY_ADAPTIVE_BATTERY_OPTIMIZER, "adaptive battery optimizer", NORV_BATTERY_TEXT, kNone,
                 NORV_BATTERY_FROM_BIOS_SETTINGS, Setting<&Info::GetAdaptiveBatteryOptimizerInfo>),
    ElsewhereRow(NORV_BATTERY_BATTERY_CARE, "battery care", NORV_BATTERY_TEXT, kNone, NORV_BATTERY_FROM_BIOS_SETTINGS,
                 Setting<&Info::GetBatteryCareInfo>),

    CounterRow(NORV_BATTERY_TIME_CHARGE, "time charge", firmware::kTimeCharge, Counter<&CellSwell::GetTimeCharge>),
    CounterRow(NORV_BATTERY_TIME_DISCHARGE, "time discharge", firmware::kTimeDischarge,
               Counter<&CellSwell::GetTimeDischarge>),
    CounterRow(NORV_BATTERY_TIME_RELAX, "time relax", firmware::kTimeRelax, Counter<&CellSwell::GetTimeRelax>),
    CounterRow(NORV_BATTERY_TIME_SLEEP, "time sleep", firmware::kTimeSleep, Counter<&CellSwell::GetTimeSleep>),
    CounterRow(NORV_BATTERY_TIME_FULL_CHARGE, "time full charge", firmware::kTimeFullCharge,
               Counter<&CellSwell::GetTimeFullCharge>),
    CounterRow(NORV_BATTERY_TIME_RSOC, "time rsoc", firmware::kTimeRsoc, Counter<&CellSwell::GetTimeRSOC>),
    CounterRow(NORV_BATTERY_LEVEL_A_TIME, "level a time", firmware::kLevelATime, Counter<&CellSwell::GetCSPATime>),
    CounterRow(NORV_BATTERY_LEVEL_B_TIME, "level b time", firmware::kLevelBTime, Counter<&CellSwell::GetCSPBTime>),
    CounterRow(NORV_BATTERY_LEVEL_A_RUNNING_TIME, "level a running time", firmware::kLevelARunningTime,
               Counter<&CellSwell::GetCSPARunningTime>),
    CounterRow(NORV_BATTERY_LEVEL_B_RUNNING_TIME, "level b running time", firmware::kLevelBRunningTime,
               Counter<&CellSwell::GetCSPBRunningTime>),
    CounterRow(NORV_BATTERY_LEVEL_A_TEMPERATURE_1_TIME, "level a temperature 1 time", firmware::kLevelATemperature1Time,
               Counter<&CellSwell::GetCSPATemp1Time>),
    CounterRow(NORV_BATTERY_LEVEL_B_TEMPERATURE_1_TIME, "level b temperature 1 time", firmware::kLevelBTemperature1Time,
               Counter<&CellSwell::GetCSPBTemp1Time>),
    CounterRow(NORV_BATTERY_LEVEL_A_TEMPERATURE_2_TIME, "level a temperature 2 time", firmware::kLevelATemperature2Time,
               Counter<&CellSwell::GetCSPATemp2Time>),
    CounterRow(NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME, "level b temperature 2 time", firmware::kLevelBTemperature2Time,
               Counter<&CellSwell::GetCSPBTemp2Time>),

    ElsewhereRow(NORV_BATTERY_TEST_RESULT, "battery test result", NORV_BATTERY_NUMBER, kNone,
                 NORV_BATTERY_FROM_BATTERY_TEST, OfRecord<TestResult<Info>>),
    ElsewhereRow(NORV_BATTERY_TEST_LABEL, "battery test label", NORV_BATTERY_TEXT, kNone,
                 NORV_BATTERY_FROM_BATTERY_TEST, OfRecord<TestLabel<Info>>),
    ElsewhereRow(NORV_BATTERY_TEST_VERSION, "battery test version", NORV_BATTERY_TEXT, kNone,
                 NORV_BATTERY_FROM_BATTERY_TEST, OfRecord<TestVersion<Info>>),

    BlockRow(NORV_BATTERY_VALID, "valid", NORV_BATTERY_FLAG, kNone, kNowhere, Valid),
};
// clang-format on

// A row is found by its number, and its texts fit the host's structure.
constexpr bool IsInOrder() {
  for (std::size_t index = 0; index < kFields.size(); ++index) {
    const FieldRow& row = kFields[index];
    if (static_cast<std::size_t>(row.field) != index + 1 ||
        std::string_view(row.name).size() >= sizeof norv_battery_description::name ||
        std::string_view(row.unit).size() >= sizeof norv_battery_description::unit) {
      return false;
    }
  }
  return true;
}
static_assert(IsInOrder());

}  // namespace

std::span<const FieldRow> Fields() {
  return kFields;
}

const FieldRow* FindField(std::int32_t field) {
  return field >= 1 && static_cast<std::size_t>(field) <= kFields.size() ? &kFields[static_cast<std::size_t>(field) - 1]
                                                                         : nullptr;
}

Answer ReadTest(norv_battery_field field, const NorvBatteryTestInfo& test) {
  switch (field) {
    case NORV_BATTERY_TEST_RESULT:
      return TestResult(test);
    case NORV_BATTERY_TEST_LABEL:
      return TestLabel(test);
    default:
      return TestVersion(test);
  }
}

error::Error FieldFailure(const norv_battery_record& record, norv_battery_field field) {
  switch (field) {
    case NORV_BATTERY_AGE:
      return AskAge(record).failure;
    case NORV_BATTERY_VALID:
      return AskValidity(record).failure;
    default:
      return {};
  }
}

}  // namespace norv::shared::battery::c_interface
