// The kernel's power supply class, wherever it is read from.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace norv::platform::posix {

// No machine's class goes beyond these.
inline constexpr std::size_t kMostSupplies = 1024;
inline constexpr std::size_t kLongestAttribute = 4095;  // bytes: no attribute fills a page

// Reads the attribute `name` of one supply: its text as the driver told it. Nothing when it is missing or cannot be
// read.
using AttributeReader = std::function<std::optional<std::string>(const char* name)>;

class SupplyClass {
 public:
  virtual ~SupplyClass() = default;

  // In no order.
  virtual std::vector<std::string> Names() const = 0;

  // All that is read from the result belongs to one device, even where that one goes and another comes under its name.
  // The class must outlive it. A supply that is not there has no attribute.
  virtual AttributeReader Open(const std::string& name) const = 0;
};

}  // namespace norv::platform::posix
