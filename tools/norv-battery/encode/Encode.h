#pragma once

#include <optional>
#include <string>
#include <vector>

namespace norv::tool {

enum class BlockFormat { Binary, Hexadecimal };

struct EncodeOptions {
  std::vector<std::string> sources;    // JSON reports or decoded rows; standard input when there is none
  std::optional<std::string> machine;  // instead of them, a sample's name or a machine file
  std::optional<int> slot;             // of reports and machines; nothing for every slot that holds a battery
  BlockFormat format = BlockFormat::Hexadecimal;
  std::optional<std::string> output;  // a file; nothing for standard output
};

// The command: the exit status is 2, and nothing is left at `output`, when an input holds anything that is no block.
int RunEncode(const EncodeOptions& options);

}  // namespace norv::tool
