#pragma once

#include <array>
#include <stdexcept>

#include "decode/BlockReader.h"
#include "json/Value.h"

namespace norv::tool {

using firmware::Block;

// Values that no block can hold. what() names the place in the JSON text and what was expected there.
class BlockValueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The block that `battery` was decoded from: an object as reports and decoded rows hold it. Only what a block holds
// itself is read; everything that is worked out from it (percentages, flags, suppliers, validity ...) is passed over.
// Bytes that are not decoded become zeros.
Block BlockFromJson(const json::Value& battery);

}  // namespace norv::tool
