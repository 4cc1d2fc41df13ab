// Writes values as JSON.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "json/Value.h"

namespace norv::json {

// In one line, or with a line for each item and `indent` blanks before it for each array and object that it is in.
// Control characters are escaped, those of U+007F to U+009F too, which some terminals obey; bytes that are no UTF-8
// become U+FFFD.
std::string Write(const Value& value, std::optional<std::size_t> indent = std::nullopt);

// A text in quotation marks, in ASCII.
std::string QuoteInAscii(std::string_view text);

}  // namespace norv::json
