#pragma once

#include <optional>
#include <string>
#include <vector>

#include "decode/BlockReader.h"
#include "decode/DecodePortion.h"
#include "decode/OfflinePlatform.h"
#include "decode/RowWriter.h"
#include "output/OutputTarget.h"

namespace norv::tool {

struct DecodeOptions {
  std::vector<std::string> sources;  // standard input when there is none
  std::optional<InputKind> input;
  RowFormat format = RowFormat::JsonLines;
  std::optional<std::string> output;  // a file; nothing for standard output
  unsigned int jobs = 0;              // threads; 0 for as many as the machine has cores
  std::optional<Day> today;           // that ages are counted up to
};

// Decodes to `output`, in the order of the input and with a memory that does not grow with it. Nothing when the output
// could not be written, which then has been said.
std::optional<RowCounts> DecodeTo(OutputTarget& output, const DecodeOptions& options);

// The command: the exit status is 1 when a row was bad, 2 when no source held anything to decode, or the output could
// not be written.
int RunDecode(const DecodeOptions& options);

}  // namespace norv::tool
