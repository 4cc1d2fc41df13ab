// Machine files made out of bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "json/Value.h"

namespace norv::test {

// A machine file as the schema of machine files has it, chosen by the bytes: every key and kind of value comes about.
// Most are taken by the simulator; it refuses the few whose texts do not fit their places.
json::Value MakeMachine(const std::uint8_t* data, std::size_t size);

}  // namespace norv::test
