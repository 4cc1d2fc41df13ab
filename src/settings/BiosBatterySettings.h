// The BIOS battery-care settings.
#pragma once

#include <string>

namespace norv::shared::battery {

// Reads the two settings through WMI when it is constructed; later it only answers. Throws nothing but the standard
// allocation exception: a setting that cannot be read is "Not supported".
class BiosBatterySettings {
 public:
  BiosBatterySettings();
  BiosBatterySettings(const BiosBatterySettings&) = delete;
  BiosBatterySettings& operator=(const BiosBatterySettings&) = delete;
  virtual ~BiosBatterySettings();

  // "Enabled - Activated", "Enabled - Not Activated", "Disabled - Not Activated" or "Not supported".
  virtual const char* GetAdaptiveBatteryOptimizerInfo() const;

  // The BIOS's own text, or "Not supported".
  virtual const char* GetBatteryCareInfo() const;

 private:
  std::string adaptiveBatteryOptimizer_;
  std::string batteryCare_;
};

}  // namespace norv::shared::battery
