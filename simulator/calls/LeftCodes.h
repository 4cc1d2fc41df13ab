// What LastSystemCode is to answer on each thread.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <thread>

#include "calls/Outcome.h"

namespace norv::simulator {

class LeftCodes {
 public:
  // Nothing: whoever answered the last operation of this thread is to be asked.
  void Leave(const std::optional<LeftCode>& left) {
    const std::lock_guard lock(mutex_);
    if (left.has_value()) {
      codes_[std::this_thread::get_id()] = *left;
    } else {
      codes_.erase(std::this_thread::get_id());
    }
  }

  // The answer of LastSystemCode.
  std::optional<Outcome> Left() const {
    const std::lock_guard lock(mutex_);
    const auto found = codes_.find(std::this_thread::get_id());
    if (found == codes_.end()) {
      return std::nullopt;
    }
    Outcome outcome;
    outcome.number = found->second.code;
    outcome.thrown = found->second.thrown;
    return outcome;
  }

 private:
  mutable std::mutex mutex_;
  std::map<std::thread::id, LeftCode> codes_;
};

}  // namespace norv::simulator
