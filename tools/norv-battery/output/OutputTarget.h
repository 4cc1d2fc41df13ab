#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace norv::tool {

// Where a command writes to: standard output, or a file that appears under its name only once it is complete.
class OutputTarget {
 public:
  virtual ~OutputTarget() = default;

  // False when not all of `bytes` could be written; that has then been said on standard error, unless just nobody reads
  // standard output any more.
  virtual bool Write(std::string_view bytes) = 0;

  // Ends the output, after its last byte. What is destroyed without it leaves no file behind. False as above.
  virtual bool Complete() = 0;
};

// Writes to the file `path`, or to standard output without one. Null when the file cannot be written; that has then
// been said on standard error.
std::unique_ptr<OutputTarget> OpenOutput(const std::optional<std::string>& path);

}  // namespace norv::tool
