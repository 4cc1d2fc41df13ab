#include "report/TestProgress.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <system_error>

#include "output/StandardStreams.h"
#include "output/Terminal.h"

namespace norv::tool {

namespace {

constexpr std::array kSpinner = {'|', '/', '-', '\\'};
constexpr std::chrono::milliseconds kStep{100};

std::string Elapsed(std::chrono::seconds time) {
  const auto seconds = time.count();
  return seconds < 60 ? std::to_string(seconds) + " s"
                      : std::to_string(seconds / 60) + " min " + std::to_string(seconds % 60) + " s";
}

}  // namespace

TestProgress::TestProgress() {
  if (!StandardErrorIsTerminal()) {
    return;
  }
  try {
    thread_ = std::thread(&TestProgress::Show, this);
  } catch (const std::system_error&) {
    // The system has no thread left, and the test is worth more than the line that tells of it.
  }
}

TestProgress::~TestProgress() {
  if (!thread_.joinable()) {
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    isEnded_ = true;
  }
  ended_.notify_one();
  thread_.join();
  StandardError::Instance().ClearPassingLine();
}

void TestProgress::Show() {
  const auto start = std::chrono::steady_clock::now();
  std::unique_lock lock(mutex_);
  for (std::size_t step = 0; !isEnded_; ++step) {
    const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
    StandardError::Instance().ShowPassingLine(std::string("The battery test is running ") +
                                              kSpinner.at(step % kSpinner.size()) + ' ' + Elapsed(elapsed));
    ended_.wait_for(lock, kStep, [this] { return isEnded_; });
  }
}

}  // namespace norv::tool
