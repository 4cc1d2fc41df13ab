// A battery as the system's own driver describes it, and the battery-information block made of that.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "../Remarks.h"
#include "firmware/Block.h"
#include "norv/platform/Platform.h"

namespace norv::platform {

// Drivers count what a battery holds as charge or as energy.
enum class CapacityUnit { MilliampereHours, MilliwattHours };

struct BatteryCapacity {
  std::int64_t amount;
  CapacityUnit unit;
};

enum class ChargeState { Charging, Discharging, Full, NotCharging };

struct BatteryDate {
  int year;
  int month;  // 1 to 12
  int day;    // 1 to 31
};

// What the driver told, in one unit for each quantity whatever the system; what it did not tell is empty. A driver's
// own mark for "unknown" is no value: whoever reads the driver leaves the field empty then.
struct SystemBattery {
  std::optional<BatteryCapacity> designCapacity;
  std::optional<BatteryCapacity> fullChargeCapacity;
  std::optional<BatteryCapacity> remainingCapacity;
  std::optional<std::int64_t> cycleCount;
  std::optional<std::int64_t> temperature;     // 0.1 K
  std::optional<std::int64_t> voltage;         // mV, at the moment
  std::optional<std::int64_t> designVoltage;   // mV
  std::optional<std::int64_t> standInVoltage;  // mV, for the design voltage where a system never tells one
  std::optional<std::int64_t> current;         // mA, of either sign
  std::optional<std::int64_t> power;           // mW, of either sign; looked at where there is no current
  std::optional<ChargeState> state;
  std::optional<BatteryDate> manufactureDate;
  std::string serialNumber;  // UTF-8, like the other texts; empty when not known
  std::string manufacturer;
  std::string deviceName;
  std::string technology;                      // no field of the block, like the next
  std::optional<std::uint32_t> stateOfCharge;  // percent, the driver's own figure
};

// What people read where the running system's driver is the source.
inline constexpr const char* kSystemBatterySource = "the system's battery driver";

struct FilledBlock {
  firmware::Block block{};
  SlotDescription::Told told;         // what follows from what the driver told
  std::vector<Deviation> deviations;  // what does not stand in the block as the driver told it
};

// The battery-information block in the units of the Smart Battery Data Specification. What is not known is 0 or an
// empty text.
//
// - Capacities are mAh. Energy is divided by the design voltage, which is how gauges relate the two. Without
//   one the charge is not known, unless the system never tells a design voltage and names another in its stead, which
//   leaves the shares of the capacities in each other as they are; that is a deviation.
// - The current is mA in two's complement, negative for a battery that discharges. Where the driver tells a power only,
//   it is divided by the voltage of the moment. Drivers differ in the sign of what they tell, so that the state decides
//   it: negative while the battery discharges, positive while it charges, and as told otherwise.
// - Of the status word: "initialized" where the driver tells a full charge capacity that is not 0, which takes a fuel
//   gauge that knows its battery; "discharging" and "fully charged" by the state; "fully discharged" where the
//   remaining capacity is 0 and the full charge capacity is not.
// - A number that is too large for its word becomes the largest (or, negative, the smallest) that fits, and a negative
//   number of a field that has no sign becomes 0. A text is cut to its field, between characters where it is UTF-8.
//   Each of these is a deviation.
FilledBlock FillBatteryBlock(const SystemBattery& battery);

// The description of a slot of the running system, with the battery in it or without one.
SlotDescription DescribeBattery(const std::optional<SystemBattery>& battery);

// What the running system answers to a BIOS command; `read` gives the battery in a slot, nothing where there is none.
//
//   (1, 7, 1)    the battery's block, its deviations as remarks; return code 6 without a battery
//   all others   return code 4, not supported: cell swell protection data is in the firmware alone
//
// A command without input, or without room for an answer, fails with the status E_INVALIDARG.
std::int32_t AnswerBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode,
                               const std::function<std::optional<SystemBattery>(std::uint32_t slot)>& read);

}  // namespace norv::platform
