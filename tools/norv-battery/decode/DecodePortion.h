#pragma once

#include <cstdint>

#include "decode/BlockReader.h"
#include "decode/OutputBuffer.h"
#include "decode/RowWriter.h"

namespace norv::tool {

struct RowCounts {
  std::uint64_t good = 0;
  std::uint64_t bad = 0;
  std::uint64_t empty = 0;    // of blocks that nothing was written to
  std::uint64_t noInput = 0;  // bad ones that stand for a source without anything to decode

  RowCounts& operator+=(const RowCounts& other);
};

// Appends the rows of `portion` to `output`.
RowCounts DecodePortion(const Portion& portion, RowFormat format, OutputBuffer& output);

}  // namespace norv::tool
