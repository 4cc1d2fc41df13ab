#include "decode/Decode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>

#include "ExitStatus.h"
#include "decode/DecodeProgress.h"
#include "decode/Workers.h"
#include "output/BinaryStreams.h"
#include "output/StandardStreams.h"

namespace norv::tool {

namespace {

unsigned int CountJobs(unsigned int wanted) {
  return wanted != 0 ? wanted : std::max(1U, std::thread::hardware_concurrency());
}

// Reads, gives out and writes; the decoding itself is done by the workers, or, where there is but one job, here.
class Decoding {
 public:
  Decoding(OutputTarget& output, const std::vector<std::string>& sources, const DecodeOptions& options)
      : output_(output),
        format_(options.format),
        reader_(sources, options.input),
        progress_(sources),
        tasks_(TaskCount(CountJobs(options.jobs))) {
    if (tasks_.size() > 1) {
      workers_ = std::make_unique<Workers>(CountJobs(options.jobs), [this](Task& task) { Work(task); });
    }
    if (workers_ != nullptr && !workers_->CanWork()) {
      workers_ = nullptr;
    }
  }

  bool Run() {
    OutputBuffer head;
    WriteHead(format_, head);
    if (!output_.Write(head.View())) {
      return false;
    }
    while (true) {
      GiveTasks();
      if (given_ == taken_) {
        return true;
      }
      if (!TakeTask()) {
        return false;
      }
    }
  }

  RowCounts Counts() const { return counts_; }

 private:
  // Enough for every worker to have one in hand and one to come, while one is written. Their number, each with some
  // 500 kB of rows, is what bounds the memory.
  static std::size_t TaskCount(unsigned int jobs) { return jobs == 1 ? 1 : 2 * std::size_t{jobs} + 1; }

  void Work(Task& task) const {
    task.output.Clear();
    task.counts = DecodePortion(task.portion, format_, task.output);
  }

  // Fills the tasks that are free.
  void GiveTasks() {
    while (!isAtEnd_ && given_ - taken_ < tasks_.size()) {
      Task& task = tasks_[given_ % tasks_.size()];
      if (!reader_.Read(task.portion)) {
        isAtEnd_ = true;
        return;
      }
      ++given_;
      workers_ != nullptr ? workers_->Give(task) : Work(task);
    }
  }

  // Writes the oldest task's rows.
  bool TakeTask() {
    Task& task = tasks_[taken_++ % tasks_.size()];
    if (workers_ != nullptr) {
      workers_->WaitFor(task);
    }
    counts_ += task.counts;
    progress_.Update(reader_.BytesRead());
    return output_.Write(task.output.View());
  }

  OutputTarget& output_;
  RowFormat format_;
  BlockReader reader_;
  DecodeProgress progress_;
  RowCounts counts_;
  std::vector<Task> tasks_;  // a ring
  std::size_t given_ = 0;
  std::size_t taken_ = 0;
  bool isAtEnd_ = false;
  std::unique_ptr<Workers> workers_;  // null for one job; ends before the tasks do
};

std::string Count(std::uint64_t count, const char* kind) {
  return std::to_string(count) + " " + kind + (count == 1 ? "" : "s");
}

std::string ClosingLine(const RowCounts& counts) {
  return Count(counts.good, "good row") + ", " + Count(counts.bad, "bad row") +
         (counts.empty == 0 ? "" : ", " + Count(counts.empty, "empty block"));
}

int StatusOf(const RowCounts& counts) {
  const bool isNothingDecoded = counts.bad == counts.noInput && counts.good == 0 && counts.empty == 0;
  return counts.bad == 0 ? kSuccess : isNothingDecoded ? kUnusable : kBadRows;
}

}  // namespace

std::optional<RowCounts> DecodeTo(OutputTarget& output, const DecodeOptions& options) {
  OfflinePlatform platform(platform::Platform::Current(), options.today);
  const platform::ScopedPlatform scope(platform);
  const std::vector<std::string> standardInput{"-"};
  Decoding decoding(output, options.sources.empty() ? standardInput : options.sources, options);
  if (!decoding.Run() || !output.Complete()) {
    return std::nullopt;
  }
  return decoding.Counts();
}

int RunDecode(const DecodeOptions& options) {
  UseBinaryStreams();
  const auto output = OpenOutput(options.output);
  const auto counts = output != nullptr ? DecodeTo(*output, options) : std::nullopt;
  if (!counts) {
    return kUnusable;
  }
  StandardError::Instance().WriteLine(ClosingLine(*counts));
  return StatusOf(*counts);
}

}  // namespace norv::tool
