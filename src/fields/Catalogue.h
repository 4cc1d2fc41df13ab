// Everything that a battery can tell, a row a field. Whatever shows or takes fields is made from this table: what is
// added here is there for all of them.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "fields/Field.h"
#include "fields/Readers.h"
#include "fields/States.h"
#include "firmware/BatteryInformationBlock.h"
#include "firmware/CellSwellProtectionBlock.h"

namespace norv::shared::battery::fields {

inline constexpr Group kIdentity{"identity", "Identity"};
inline constexpr Group kCapacity{"capacity", "Capacity and health"};
inline constexpr Group kCells{"cells", "Cells"};
inline constexpr Group kStatus{"status", "Status"};
inline constexpr Group kFlags{"status.flags", "Flags"};
inline constexpr Group kDates{"dates", "Dates and warranty"};
inline constexpr Group kAttributes{"attributes", "Suppliers and attributes"};
inline constexpr Group kSettings{"settings", "BIOS battery care settings"};
inline constexpr Group kCellSwell{"cellSwellProtection",
                                  "Cell swell protection (time counters in the BIOS's own unit)"};
inline constexpr Group kTest{"batteryTest", "Battery test"};
inline constexpr Group kValidity{"validity", "Validity"};

// In the order in which people read them.
inline constexpr std::array kGroups{&kIdentity,   &kCapacity, &kCells,     &kStatus, &kFlags,   &kDates,
                                    &kAttributes, &kSettings, &kCellSwell, &kTest,   &kValidity};

namespace rows {

using namespace firmware;  // the places
using namespace record;    // the parts of the CT number

using Info = NorvBatteryInfo;
using CellSwell = NorvBatteryCellSwellProtectionInfo;

inline constexpr auto kNumber = NORV_BATTERY_NUMBER;
inline constexpr auto kText = NORV_BATTERY_TEXT;
inline constexpr auto kFlag = NORV_BATTERY_FLAG;
inline constexpr auto kReal = NORV_BATTERY_REAL;

inline constexpr auto kBlock = NORV_BATTERY_FROM_INFORMATION_BLOCK;
inline constexpr auto kSwellBlock = NORV_BATTERY_FROM_CELL_SWELL_BLOCK;
inline constexpr auto kSystem = NORV_BATTERY_FROM_OPERATING_SYSTEM;
inline constexpr auto kBios = NORV_BATTERY_FROM_BIOS_SETTINGS;
inline constexpr auto kTestRun = NORV_BATTERY_FROM_BATTERY_TEST;

inline constexpr const char* kNone = "";
inline constexpr const char* kCharge = "mAh or 10 mWh";
inline constexpr const char* kMillivolt = "mV";
inline constexpr const char* kPercent = "%";

constexpr Field Part(CtField part) {
  return {kCtNumber.offset + part.position, part.width};
}

inline constexpr std::array kAll{
    Row{NORV_BATTERY_MANUFACTURER, "manufacturer", &kIdentity, "manufacturer", "Manufacturer", kText, kNone, kBlock,
        kManufacturer, kNoBit, Text<&Info::GetManufacturer>, UnlessEmpty},
    Row{NORV_BATTERY_DEVICE_NAME, "deviceName", &kIdentity, "device name", "Device name", kText, kNone, kBlock,
        kDeviceName, kNoBit, Text<&Info::GetDeviceName>, IfName},
    Row{NORV_BATTERY_SERIAL_NUMBER, "serialNumber", &kIdentity, "serial number", "Serial number", kText, kNone, kBlock,
        kSerialNumber, kNoBit, Text<&Info::GetSerialNumber>, UnlessEmpty},
    Row{NORV_BATTERY_CT_NUMBER, "ctNumber", &kIdentity, "ct number", "CT number", kText, kNone, kBlock, kCtNumber,
        kNoBit, Text<&Info::GetCtNumber>, UnlessEmpty},

    Row{NORV_BATTERY_DESIGN_CAPACITY, "designCapacity", &kCapacity, "design capacity", "Design capacity", kNumber,
        kCharge, kBlock, kDesignCapacity, kNoBit, Number<&Info::GetDesignEnergyCapacity>, Always},
    Row{NORV_BATTERY_FULL_CHARGE_CAPACITY, "fullChargeCapacity", &kCapacity, "full charge capacity",
        "Full charge capacity", kNumber, kCharge, kBlock, kFullChargeCapacity, kNoBit,
        Number<&Info::GetFullEnergyCapacity>, Always},
    Row{NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE, "fullChargeCapacityPercentage", &kCapacity,
        "full charge capacity percentage", "Health", kReal, kPercent, kBlock, kNowhere, kNoBit,
        Real<&Info::GetFullEnergyCapacityPercentage>, IfComputable},
    Row{NORV_BATTERY_REMAINING_CAPACITY, "remainingCapacity", &kCapacity, "remaining capacity", "Remaining capacity",
        kNumber, kCharge, kBlock, kRemainingCapacity, kNoBit, Number<&Info::GetRemainingCapacity>, Always},
    Row{NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE, "remainingCapacityPercentage", &kCapacity,
        "remaining capacity percentage", "Relative state of charge", kReal, kPercent, kBlock, kNowhere, kNoBit,
        Real<&Info::GetRemainingEnergyCapacityPercentage>, IfComputable},
    Row{NORV_BATTERY_MAX_ERROR, "maxError", &kCapacity, "max error", "Max error", kNumber, kPercent, kBlock, kMaxError,
        kNoBit, Number<&Info::GetMaxErrorPercentage>, Always},
    Row{NORV_BATTERY_CYCLE_COUNT, "cycleCount", &kCapacity, "cycle count", "Cycle count", kNumber, kNone, kBlock,
        kCycleCount, kNoBit, Number<&Info::GetCycleCount>, Always},
    Row{NORV_BATTERY_DESIGN_VOLTAGE, "designVoltage", &kCapacity, "design voltage", "Design voltage", kNumber,
        kMillivolt, kBlock, kDesignVoltage, kNoBit, Number<&Info::GetDesignVoltage>, Always},
    Row{NORV_BATTERY_VOLTAGE, "voltage", &kCapacity, "voltage", "Voltage", kNumber, kMillivolt, kBlock, kVoltage,
        kNoBit, Number<&Info::GetVoltage>, Always},
    Row{NORV_BATTERY_CURRENT, "current", &kCapacity, "current", "Current", kNumber, "mA", kBlock, kCurrent, kNoBit,
        Number<&Info::GetElectricCurrent>, Always},
    Row{NORV_BATTERY_TEMPERATURE, "temperature", &kCapacity, "temperature", "Temperature", kNumber, "0.1 K", kBlock,
        kTemperature, kNoBit, Number<&Info::GetTemperature>, Always},
    Row{NORV_BATTERY_CHARGE_RATE, "chargeRate", &kCapacity, "charge rate", "Charge rate", kNumber, "mW", kSystem,
        kNowhere, kNoBit, Number<&Info::GetBatteryChargeRate>, IfAsked},
    Row{NORV_BATTERY_DISCHARGE_RATE, "dischargeRate", &kCapacity, "discharge rate", "Discharge rate", kNumber, "mW",
        kSystem, kNowhere, kNoBit, Number<&Info::GetBatteryDischargeRate>, IfAsked},

    Row{NORV_BATTERY_CELL_VOLTAGE_1, "voltages[0]", &kCells, "cell voltage 1", "Cell 1 voltage", kNumber, kMillivolt,
        kBlock, kCellVoltages[0], kNoBit, CellVoltage, Always},
    Row{NORV_BATTERY_CELL_VOLTAGE_2, "voltages[1]", &kCells, "cell voltage 2", "Cell 2 voltage", kNumber, kMillivolt,
        kBlock, kCellVoltages[1], kNoBit, CellVoltage, Always},
    Row{NORV_BATTERY_CELL_VOLTAGE_3, "voltages[2]", &kCells, "cell voltage 3", "Cell 3 voltage", kNumber, kMillivolt,
        kBlock, kCellVoltages[2], kNoBit, CellVoltage, Always},
    Row{NORV_BATTERY_CELL_VOLTAGE_4, "voltages[3]", &kCells, "cell voltage 4", "Cell 4 voltage", kNumber, kMillivolt,
        kBlock, kCellVoltages[3], kNoBit, CellVoltage, Always},

    Row{NORV_BATTERY_STATUS_WORD, "word", &kStatus, "status word", "Status word", kNumber, kNone, kBlock,
        kBatteryStatus, kNoBit, Number<&Info::GetStatusWord>, Always},
    Row{NORV_BATTERY_STATUS_ERROR_CODE, "errorCode", &kStatus, "status error code", "Error code", kText, kNone, kBlock,
        kBatteryStatus, kNoBit, StatusErrorCode, IfStandardCode},

    Row{NORV_BATTERY_FULLY_DISCHARGED, "fullyDischarged", &kFlags, "fully discharged", "Fully discharged", kFlag, kNone,
        kBlock, kBatteryStatus, 4, StatusFlag, Always},
    Row{NORV_BATTERY_FULLY_CHARGED, "fullyCharged", &kFlags, "fully charged", "Fully charged", kFlag, kNone, kBlock,
        kBatteryStatus, 5, StatusFlag, Always},
    Row{NORV_BATTERY_DISCHARGING, "discharging", &kFlags, "discharging", "Discharging", kFlag, kNone, kBlock,
        kBatteryStatus, 6, StatusFlag, Always},
    Row{NORV_BATTERY_INITIALIZED, "initialized", &kFlags, "initialized", "Initialized", kFlag, kNone, kBlock,
        kBatteryStatus, 7, StatusFlag, Always},
    Row{NORV_BATTERY_REMAINING_TIME_ALARM, "remainingTimeAlarm", &kFlags, "remaining time alarm",
        "Remaining time alarm", kFlag, kNone, kBlock, kBatteryStatus, 8, StatusFlag, Always},
    Row{NORV_BATTERY_REMAINING_CAPACITY_ALARM, "remainingCapacityAlarm", &kFlags, "remaining capacity alarm",
        "Remaining capacity alarm", kFlag, kNone, kBlock, kBatteryStatus, 9, StatusFlag, Always},
    Row{NORV_BATTERY_RESERVED_BIT_10, "reservedBit10", &kFlags, "reserved bit 10", "Reserved bit 10", kFlag, kNone,
        kBlock, kBatteryStatus, 10, StatusFlag, Always},
    Row{NORV_BATTERY_TERMINATE_DISCHARGE_ALARM, "terminateDischargeAlarm", &kFlags, "terminate discharge alarm",
        "Terminate discharge alarm", kFlag, kNone, kBlock, kBatteryStatus, 11, StatusFlag, Always},
    Row{NORV_BATTERY_OVER_TEMPERATURE_ALARM, "overTemperatureAlarm", &kFlags, "over temperature alarm",
        "Over temperature alarm", kFlag, kNone, kBlock, kBatteryStatus, 12, StatusFlag, Always},
    Row{NORV_BATTERY_RESERVED_BIT_13, "reservedBit13", &kFlags, "reserved bit 13", "Reserved bit 13", kFlag, kNone,
        kBlock, kBatteryStatus, 13, StatusFlag, Always},
    Row{NORV_BATTERY_TERMINATE_CHARGE_ALARM, "terminateChargeAlarm", &kFlags, "terminate charge alarm",
        "Terminate charge alarm", kFlag, kNone, kBlock, kBatteryStatus, 14, StatusFlag, Always},
    Row{NORV_BATTERY_OVER_CHARGED_ALARM, "overChargedAlarm", &kFlags, "over charged alarm", "Over charged alarm", kFlag,
        kNone, kBlock, kBatteryStatus, 15, StatusFlag, Always},

    Row{NORV_BATTERY_MANUFACTURING_DATE, "manufacturingDate", &kDates, "manufacturing date", "Manufacturing date",
        kText, kNone, kBlock, kManufactureDate, kNoBit, Text<&Info::GetManufacturingDate>, IfDate},
    Row{NORV_BATTERY_WARRANTY_TYPE, "warrantyType", &kDates, "warranty type", "Warranty type", kText, kNone, kBlock,
        kManufacturer, kNoBit, Text<&Info::GetWarrantyType>, UnlessUnknown},
    Row{NORV_BATTERY_WARRANTY_DATE, "warrantyDate", &kDates, "warranty date", "Warranty date", kText, kNone, kBlock,
        kNowhere, kNoBit, Text<&Info::GetWarrantyDate>, IfWarrantyDate},
    Row{NORV_BATTERY_AGE, "age", &kDates, "age", "Age", kNumber, "d", kBlock, kSerialNumber, kNoBit, Age, IfDated},

    Row{NORV_BATTERY_PACK_SUPPLIER, "packSupplier", &kAttributes, "pack supplier", "Pack supplier", kText, kNone,
        kBlock, kManufacturer, kNoBit, Text<&Info::GetPackSupplier>, UnlessUnknown},
    Row{NORV_BATTERY_CELL_SUPPLIER, "cellSupplier", &kAttributes, "cell supplier", "Cell supplier", kText, kNone,
        kBlock, kManufacturer, kNoBit, Text<&Info::GetCellSupplier>, UnlessUnknown},
    Row{NORV_BATTERY_CALIBRATION_TYPE, "calibrationType", &kAttributes, "calibration type", "Calibration type", kText,
        kNone, kBlock, kManufacturer, kNoBit, CalibrationType, UnlessEmpty},
    Row{NORV_BATTERY_OVER_CURRENT_PROTECTION, "overCurrentProtection", &kAttributes, "over current protection",
        "Over-current protection", kNumber, kCharge, kBlock, kManufacturer, kNoBit,
        Number<&Info::GetOverCurrentProtection>, IfLimit},
    Row{NORV_BATTERY_DESIGN_CYCLE_COUNT, "designCycleCount", &kAttributes, "design cycle count", "Design cycle count",
        kText, kNone, kBlock, kManufacturer, kNoBit, Text<&Info::GetDesignCycleCount>, UnlessUnknown},
    Row{NORV_BATTERY_CT_ASSEMBLY, "ctAssembly", &kAttributes, "ct assembly", "CT assembly", kText, kNone, kBlock,
        Part(kCtAssembly), kNoBit, CtPart<kCtAssembly>, IfLongEnough<kCtAssembly>},
    Row{NORV_BATTERY_CT_REVISION, "ctRevision", &kAttributes, "ct revision", "CT revision", kText, kNone, kBlock,
        Part(kCtRevision), kNoBit, CtPart<kCtRevision>, IfLongEnough<kCtRevision>},
    Row{NORV_BATTERY_CT_SUPPLIER, "ctSupplier", &kAttributes, "ct supplier", "CT supplier", kText, kNone, kBlock,
        Part(kCtSupplier), kNoBit, CtPart<kCtSupplier>, IfLongEnough<kCtSupplier>},
    Row{NORV_BATTERY_CT_MANUFACTURING_WEEK, "ctManufacturingWeek", &kAttributes, "ct manufacturing week",
        "CT manufacturing week", kText, kNone, kBlock, Part(kCtMfgWeek), kNoBit, CtPart<kCtMfgWeek>,
        IfLongEnough<kCtMfgWeek>},

    Row{NORV_BATTERY_ADAPTIVE_BATTERY_OPTIMIZER, "adaptiveBatteryOptimizer", &kSettings, "adaptive battery optimizer",
        "Adaptive battery optimizer", kText, kNone, kBios, kNowhere, kNoBit,
        Text<&Info::GetAdaptiveBatteryOptimizerInfo>, UnlessEmpty},
    Row{NORV_BATTERY_BATTERY_CARE, "batteryCare", &kSettings, "battery care", "Battery care", kText, kNone, kBios,
        kNowhere, kNoBit, Text<&Info::GetBatteryCareInfo>, UnlessEmpty},

    Row{NORV_BATTERY_TIME_CHARGE, "timeCharge", &kCellSwell, "time charge", "Time charging", kNumber, kNone,
        kSwellBlock, kTimeCharge, kNoBit, Counter<&CellSwell::GetTimeCharge>, IfCounted},
    Row{NORV_BATTERY_TIME_DISCHARGE, "timeDischarge", &kCellSwell, "time discharge", "Time discharging", kNumber, kNone,
        kSwellBlock, kTimeDischarge, kNoBit, Counter<&CellSwell::GetTimeDischarge>, IfCounted},
    Row{NORV_BATTERY_TIME_RELAX, "timeRelax", &kCellSwell, "time relax", "Time relaxed (idle)", kNumber, kNone,
        kSwellBlock, kTimeRelax, kNoBit, Counter<&CellSwell::GetTimeRelax>, IfCounted},
    Row{NORV_BATTERY_TIME_SLEEP, "timeSleep", &kCellSwell, "time sleep", "Time sleeping", kNumber, kNone, kSwellBlock,
        kTimeSleep, kNoBit, Counter<&CellSwell::GetTimeSleep>, IfCounted},
    Row{NORV_BATTERY_TIME_FULL_CHARGE, "timeFullCharge", &kCellSwell, "time full charge", "Time at full charge",
        kNumber, kNone, kSwellBlock, kTimeFullCharge, kNoBit, Counter<&CellSwell::GetTimeFullCharge>, IfCounted},
    Row{NORV_BATTERY_TIME_RSOC, "timeRsoc", &kCellSwell, "time rsoc", "Time against charge level", kNumber, kNone,
        kSwellBlock, kTimeRsoc, kNoBit, Counter<&CellSwell::GetTimeRSOC>, IfCounted},
    Row{NORV_BATTERY_LEVEL_A_TIME, "levelATime", &kCellSwell, "level a time", "Time in protection level A", kNumber,
        kNone, kSwellBlock, kLevelATime, kNoBit, Counter<&CellSwell::GetCSPATime>, IfCounted},
    Row{NORV_BATTERY_LEVEL_B_TIME, "levelBTime", &kCellSwell, "level b time", "Time in protection level B", kNumber,
        kNone, kSwellBlock, kLevelBTime, kNoBit, Counter<&CellSwell::GetCSPBTime>, IfCounted},
    Row{NORV_BATTERY_LEVEL_A_RUNNING_TIME, "levelARunningTime", &kCellSwell, "level a running time",
        "Level A running time", kNumber, kNone, kSwellBlock, kLevelARunningTime, kNoBit,
        Counter<&CellSwell::GetCSPARunningTime>, IfCounted},
    Row{NORV_BATTERY_LEVEL_B_RUNNING_TIME, "levelBRunningTime", &kCellSwell, "level b running time",
        "Level B running time", kNumber, kNone, kSwellBlock, kLevelBRunningTime, kNoBit,
        Counter<&CellSwell::GetCSPBRunningTime>, IfCounted},
    Row{NORV_BATTERY_LEVEL_A_TEMPERATURE_1_TIME, "levelATemperature1Time", &kCellSwell, "level a temperature 1 time",
        "Level A in temperature band 1", kNumber, kNone, kSwellBlock, kLevelATemperature1Time, kNoBit,
        Counter<&CellSwell::GetCSPATemp1Time>, IfCounted},
    Row{NORV_BATTERY_LEVEL_B_TEMPERATURE_1_TIME, "levelBTemperature1Time", &kCellSwell, "level b temperature 1 time",
        "Level B in temperature band 1", kNumber, kNone, kSwellBlock, kLevelBTemperature1Time, kNoBit,
        Counter<&CellSwell::GetCSPBTemp1Time>, IfCounted},
    Row{NORV_BATTERY_LEVEL_A_TEMPERATURE_2_TIME, "levelATemperature2Time", &kCellSwell, "level a temperature 2 time",
        "Level A in temperature band 2", kNumber, kNone, kSwellBlock, kLevelATemperature2Time, kNoBit,
        Counter<&CellSwell::GetCSPATemp2Time>, IfCounted},
    Row{NORV_BATTERY_LEVEL_B_TEMPERATURE_2_TIME, "levelBTemperature2Time", &kCellSwell, "level b temperature 2 time",
        "Level B in temperature band 2", kNumber, kNone, kSwellBlock, kLevelBTemperature2Time, kNoBit,
        Counter<&CellSwell::GetCSPBTemp2Time>, IfCounted},

    Row{NORV_BATTERY_TEST_RESULT, "result", &kTest, "battery test result", "Result code", kNumber, kNone, kTestRun,
        kNowhere, kNoBit, TestResult, IfTested},
    Row{NORV_BATTERY_TEST_LABEL, "label", &kTest, "battery test label", "Label", kText, kNone, kTestRun, kNowhere,
        kNoBit, TestLabel, IfTested},
    Row{NORV_BATTERY_TEST_VERSION, "version", &kTest, "battery test version", "Test program version", kText, kNone,
        kTestRun, kNowhere, kNoBit, TestVersion, IfFound},

    Row{NORV_BATTERY_VALID, "valid", &kValidity, "valid", "Valid battery record", kFlag, kNone, kBlock, kNowhere,
        kNoBit, Valid, Always},
};

}  // namespace rows

// All fields, in the order of their numbers, which begin with 1.
inline constexpr const auto& kCatalogue = rows::kAll;

constexpr const Row& RowOf(norv_battery_field field) {
  return kCatalogue[static_cast<std::size_t>(field) - 1];
}

}  // namespace norv::shared::battery::fields
