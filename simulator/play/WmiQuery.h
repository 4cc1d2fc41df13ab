// The queries that a simulated WMI understands.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norv::simulator {

// SELECT * FROM wmiClass [WHERE property = 'value']. The names are folded, the value is as written.
struct WmiQuery {
  struct Filter {
    std::string property;
    std::string value;
  };

  std::string wmiClass;
  std::optional<Filter> filter;
};

// Nothing when the text is no query of that form.
std::optional<WmiQuery> ParseWmiQuery(std::string_view wql);

}  // namespace norv::simulator
