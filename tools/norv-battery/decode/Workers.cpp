#include "decode/Workers.h"

#include <system_error>
#include <utility>

namespace norv::tool {

Workers::Workers(unsigned int count, std::function<void(Task&)> work) : work_(std::move(work)) {
  try {
    for (unsigned int number = 0; number < count; ++number) {
      threads_.emplace_back([this](const std::stop_token& stop) { Work(stop); });
    }
  } catch (const std::system_error&) {
    // The system has no more threads. Those that there are do the same work.
  }
}

void Workers::Give(Task& task) {
  {
    const std::lock_guard lock(mutex_);
    task.isDone = false;
    tasks_.push(&task);
  }
  given_.notify_one();
}

void Workers::WaitFor(Task& task) {
  std::unique_lock lock(mutex_);
  done_.wait(lock, [&task] { return task.isDone; });
  if (task.failure) {
    std::rethrow_exception(task.failure);
  }
}

void Workers::Work(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  while (given_.wait(lock, stop, [this] { return !tasks_.empty(); }) && !stop.stop_requested()) {
    Task& task = *tasks_.front();
    tasks_.pop();
    lock.unlock();
    std::exception_ptr failure;
    try {
      work_(task);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    task.failure = failure;
    task.isDone = true;
    done_.notify_one();
  }
}

}  // namespace norv::tool
