// The command record: a machine into a machine file.
#pragma once

#include <optional>
#include <string>

namespace norv::tool {

struct RecordOptions {
  std::optional<std::string> machine;      // a sample's name or a file; nothing for the running machine
  std::optional<std::string> powerSupply;  // a folder or a listing, in the place of the running machine's batteries
  std::optional<std::string> output;       // standard output without one
  bool cellSwell = false;
  bool test = false;
  bool redact = false;
  std::optional<std::string> keyFile;  // with the key of the redaction; see GivenKey()
};

// The exit status.
int RunRecord(const RecordOptions& options);

}  // namespace norv::tool
