// Writes the rows of `norv-battery decode`.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "decode/OutputBuffer.h"

namespace norv::tool {

enum class RowFormat { JsonLines, Csv, RawCsv, Text };

// Where a row comes from.
struct RowOrigin {
  std::string_view source;             // UTF-8
  std::uint64_t index;                 // in the source
  std::optional<std::string_view> id;  // UTF-8
};

// What stands before the first row; nothing for most formats.
void WriteHead(RowFormat format, OutputBuffer& output);

// The row of the 128 bytes at `block`. The current platform must be an OfflinePlatform. Any thread may write rows, each
// to a buffer of its own.
void WriteRow(RowFormat format, const RowOrigin& origin, const unsigned char* block, OutputBuffer& output);

// The row of what is no block; `problem` is ASCII and says what is wrong, and where.
void WriteBadRow(RowFormat format, const RowOrigin& origin, std::string_view problem, OutputBuffer& output);

}  // namespace norv::tool
