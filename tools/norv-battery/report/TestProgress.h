#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace norv::tool {

// While it lives, a line on the terminal shows that the battery test runs, and for how long already. It shows nothing
// where standard error is no terminal.
class TestProgress {
 public:
  TestProgress();
  TestProgress(const TestProgress&) = delete;
  TestProgress& operator=(const TestProgress&) = delete;
  ~TestProgress();

 private:
  void Show();

  std::mutex mutex_;
  std::condition_variable ended_;
  bool isEnded_ = false;
  std::thread thread_;
};

}  // namespace norv::tool
