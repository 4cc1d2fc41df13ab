// What the first bytes of a source tell about it.
#pragma once

#include <string>
#include <string_view>

#include "decode/BlockReader.h"

namespace norv::tool {

// `text` without the mark of UTF-8, if it begins with one.
std::string_view WithoutMark(std::string_view text);

InputKind KindOf(std::string_view start);

// Why what begins like this holds no blocks, for a message; empty where it may hold some.
std::string RefusalOf(std::string_view start);

}  // namespace norv::tool
