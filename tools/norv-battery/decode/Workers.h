#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <queue>
#include <stop_token>
#include <thread>
#include <vector>

#include "decode/BlockReader.h"
#include "decode/DecodePortion.h"
#include "decode/OutputBuffer.h"

namespace norv::tool {

// A portion on its way from the input to the output.
struct Task {
  Portion portion;
  OutputBuffer output;
  RowCounts counts;
  bool isDone = false;
  std::exception_ptr failure;
};

// Works on tasks with several threads. It is given tasks by one thread, which also waits for them, in whichever order
// it likes: the output's order is made there.
class Workers {
 public:
  // Starts up to `count` threads, as many as the system has left.
  Workers(unsigned int count, std::function<void(Task&)> work);
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  // Ends the threads; tasks that none has begun stay undone.
  ~Workers() = default;

  // False where not one thread could be started: then nothing would be done.
  bool CanWork() const { return !threads_.empty(); }

  // `task` is the workers' until it was waited for.
  void Give(Task& task);

  // Blocks until `task` is done. Throws what the work threw.
  void WaitFor(Task& task);

 private:
  void Work(const std::stop_token& stop);

  std::function<void(Task&)> work_;
  std::mutex mutex_;
  std::condition_variable_any given_;
  std::condition_variable_any done_;
  std::queue<Task*> tasks_;
  std::vector<std::jthread> threads_;  // the last member: the threads end before what they use
};

}  // namespace norv::tool
