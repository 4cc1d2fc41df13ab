#include "ReportFixture.h"

namespace norv::tool {

BatteryReport MakeBattery(int slot) {
  BatteryReport battery;
  battery.slot = slot;
  battery.identity = {"123-45-67-A", "HT03XL", "BATT002021-05-06", "6ABCDEFGHIJKLM"};
  battery.capacity.designCapacity = 5000;
  battery.capacity.fullChargeCapacity = 4500;
  battery.capacity.fullChargeCapacityPercentage = 90.0F;
  battery.capacity.remainingCapacity = 3000;
  battery.capacity.remainingCapacityPercentage = 66.666F;
  battery.capacity.temperature = 2982;
  battery.cells = {{3940, 3928, 3932, 0}, 12};
  battery.status = {0x00C0, "OK", {{"discharging", "discharging", true}, {"initialized", "initialized", true}}};
  battery.dates = {"2021-05-06T00:00:00+00:00", "1_YEAR", "2022-05-06T00:00:00+00:00", {1122, std::nullopt}};
  battery.settings = {"Not supported", "Enable"};
  battery.validity.valid = true;
  return battery;
}

Failure MakeFailure(int category, std::int64_t code, const std::string& operation) {
  return {category, code, "PrivateBiosWMI error", "unsigned long",
          "norv::shared::battery::NorvBatteries::" + operation};
}

}  // namespace norv::tool
