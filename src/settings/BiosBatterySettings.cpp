#include "settings/BiosBatterySettings.h"

#include "diagnostics/Failures.h"
#include "diagnostics/Guard.h"
#include "norv/shared/wmi/WMIClient.h"
#include "settings/PlatformExclusion.h"

namespace norv::shared::battery {

namespace {

constexpr const char* kSettingMissing = "Not supported";

bool FindSetting(wmi::WMIClient& client, const std::wstring& name) {
  return client.Query(L"SELECT * FROM Norv_BIOSSetting where Name = '" + name + L"'") == 0 && client.GetNext();
}

// The extender counts as activated only when it is enabled and its status says so.
std::string ReadAdaptiveBatteryExtender(wmi::WMIClient& client) {
  std::string value;
  if (!FindSetting(client, L"Adaptive Battery Extender") || client.GetValue(L"CurrentValue", value) != 0) {
    return kSettingMissing;
  }
  if (value != "Enable") {
    return "Disabled - Not Activated";
  }
  if (FindSetting(client, L"Adaptive Battery Extender Status")) {
    client.GetValue(L"CurrentValue", value);  // a status that cannot be read leaves "Enable", which is not activated
  }
  return value == "Activated" ? "Enabled - Activated" : "Enabled - Not Activated";
}

}  // namespace

BiosBatterySettings::BiosBatterySettings() : adaptiveBatteryOptimizer_(kSettingMissing), batteryCare_(kSettingMissing) {
  if (IsPlatformExcluded()) {
    return;
  }
  // Whatever fails, the texts read so far stand.
  diagnostics::Guarded(
      [this] {
        wmi::WMIClient client(L"\\\\.\\root\\Norv\\InstrumentedBios");
        adaptiveBatteryOptimizer_ = ReadAdaptiveBatteryExtender(client);
        if (FindSetting(client, L"Battery Care Function")) {
          client.GetValue(L"Value", batteryCare_);
        }
      },
      diagnostics::Absorb);
}

BiosBatterySettings::~BiosBatterySettings() = default;

const char* BiosBatterySettings::GetAdaptiveBatteryOptimizerInfo() const {
  return adaptiveBatteryOptimizer_.c_str();
}

const char* BiosBatterySettings::GetBatteryCareInfo() const {
  return batteryCare_.c_str();
}

}  // namespace norv::shared::battery
