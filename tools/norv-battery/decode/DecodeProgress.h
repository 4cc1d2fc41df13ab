#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace norv::tool {

// A bar on the terminal for inputs that take longer than a second. It shows nothing where standard error is no
// terminal.
class DecodeProgress {
 public:
  // The inputs' sizes tell how much is to come, where all of them are known.
  explicit DecodeProgress(const std::vector<std::string>& sources);
  DecodeProgress(const DecodeProgress&) = delete;
  DecodeProgress& operator=(const DecodeProgress&) = delete;
  ~DecodeProgress();

  // Called often; shows a change now and then.
  void Update(std::uint64_t bytesRead);

 private:
  using Clock = std::chrono::steady_clock;

  bool isShown_;
  std::optional<std::uint64_t> total_;
  Clock::time_point nextChange_;
};

}  // namespace norv::tool
