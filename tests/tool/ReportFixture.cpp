#include "ReportFixture.h"

namespace norv::tool {

BatteryReport MakeBattery(int slot) {
  BatteryReport battery;
  battery.slot = slot;
  battery[NORV_BATTERY_MANUFACTURER].text = "123-45-67-A";
  battery[NORV_BATTERY_DEVICE_NAME].text = "HT03XL";
  battery[NORV_BATTERY_SERIAL_NUMBER].text = "BATT002021-05-06";
  battery[NORV_BATTERY_CT_NUMBER].text = "6ABCDEFGHIJKLM";
  battery[NORV_BATTERY_DESIGN_CAPACITY].number = 5000;
  battery[NORV_BATTERY_FULL_CHARGE_CAPACITY].number = 4500;
  battery[NORV_BATTERY_FULL_CHARGE_CAPACITY_PERCENTAGE].real = 90.0;
  battery[NORV_BATTERY_REMAINING_CAPACITY].number = 3000;
  battery[NORV_BATTERY_REMAINING_CAPACITY_PERCENTAGE].real = 66.666;
  battery[NORV_BATTERY_TEMPERATURE].number = 2982;
  battery[NORV_BATTERY_CELL_VOLTAGE_1].number = 3940;
  battery[NORV_BATTERY_CELL_VOLTAGE_2].number = 3928;
  battery[NORV_BATTERY_CELL_VOLTAGE_3].number = 3932;
  battery[NORV_BATTERY_STATUS_WORD].number = 0x00C0;
  battery[NORV_BATTERY_STATUS_ERROR_CODE].text = "OK";
  battery[NORV_BATTERY_DISCHARGING].number = 1;
  battery[NORV_BATTERY_INITIALIZED].number = 1;
  battery[NORV_BATTERY_MANUFACTURING_DATE].text = "2021-05-06T00:00:00+00:00";
  battery[NORV_BATTERY_WARRANTY_TYPE].text = "1_YEAR";
  battery[NORV_BATTERY_WARRANTY_DATE].text = "2022-05-06T00:00:00+00:00";
  battery[NORV_BATTERY_AGE].number = 1122;
  battery[NORV_BATTERY_ADAPTIVE_BATTERY_OPTIMIZER].text = "Not supported";
  battery[NORV_BATTERY_BATTERY_CARE].text = "Enable";
  battery[NORV_BATTERY_VALID].number = 1;
  return battery;
}

Failure MakeFailure(int category, std::int64_t code, const std::string& operation) {
  return {category, code, "PrivateBiosWMI error", "unsigned long",
          "norv::shared::battery::NorvBatteries::" + operation};
}

}  // namespace norv::tool
