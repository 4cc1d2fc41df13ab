// The power supply class as a text with a line for each attribute.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SupplyClass.h"

namespace norv::platform::posix {

// Lines such as
//
//   BAT0/capacity:97
//   /sys/class/power_supply/BAT0/status:Discharging
//
// which is what `grep -s . /sys/class/power_supply/*/*` prints. A value of several lines is as many lines in a row.
// What stands before the supply's name, up to "power_supply/", does not count, and neither do blanks before a line,
// empty lines, comments (#), grep's own remarks, and files in folders of a supply. What the listing does not name
// cannot be read.
class SupplyListing : public SupplyClass {
 public:
  explicit SupplyListing(std::string_view text);

  // Reads an ordinary file of at most 1 MiB.
  static SupplyListing FromFile(const std::string& path);

  // Why it is no listing, for people; it has no supplies then.
  const std::optional<std::string>& Defect() const { return defect_; }

  std::vector<std::string> Names() const override;
  AttributeReader Open(const std::string& name) const override;

 private:
  struct Entry;

  SupplyListing() = default;
  void SetDefect(std::string defect);
  std::optional<std::string> Add(const Entry& entry, bool continues);

  std::map<std::string, std::map<std::string, std::string>> supplies_;  // the values, by supply and attribute
  std::optional<std::string> defect_;
};

}  // namespace norv::platform::posix
