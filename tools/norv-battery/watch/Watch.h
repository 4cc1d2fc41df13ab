// The command watch: a machine read again and again.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace norv::tool {

enum class WatchFormat { Text, JsonLines };

inline constexpr double kShortestInterval = 0.01;  // seconds
inline constexpr double kLongestInterval = 86400;

struct WatchOptions {
  std::optional<std::string> machine;      // a sample's name or a file; nothing for the running machine
  std::optional<std::string> powerSupply;  // a folder or a listing, in the place of the running machine's batteries
  std::chrono::duration<double> interval{5};
  std::optional<unsigned int> count;  // of readings; without an end where there is none
  std::optional<WatchFormat> format;  // by what standard output is where there is none
  bool cellSwell = false;
};

// The exit status.
int RunWatch(const WatchOptions& options);

}  // namespace norv::tool
