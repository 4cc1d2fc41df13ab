#include "watch/Watch.h"

#include <array>
#include <cstdio>

#include "ExitStatus.h"
#include "Machine.h"
#include "norv/platform/Platform.h"
#include "output/BinaryStreams.h"
#include "output/StandardStreams.h"
#include "output/Terminal.h"
#include "report/ReadReport.h"
#include "report/WriteReport.h"
#include "watch/Interrupt.h"
#include "watch/ShowReading.h"

namespace norv::tool {

namespace {

enum class Form { Screen, TextBlocks, JsonLines };

Form ChooseForm(const std::optional<WatchFormat>& format) {
  if (format == WatchFormat::JsonLines) {
    return Form::JsonLines;
  }
  if (StandardOutputIsTerminal() && StandardOutputTakesSequences()) {
    return Form::Screen;
  }
  return format == WatchFormat::Text || StandardOutputIsTerminal() ? Form::TextBlocks : Form::JsonLines;
}

std::string Title(const Source& source, std::chrono::duration<double> interval) {
  std::array<char, 32> seconds{};
  std::snprintf(seconds.data(), seconds.size(), "%g", interval.count());
  return "Batteries of " + SubjectText(source) + ", read every " + seconds.data() + " s; Ctrl-C ends";
}

class Watch {
 public:
  explicit Watch(const WatchOptions& options)
      : options_(options),
        machine_(ChooseMachine(options.machine, options.powerSupply)),
        form_(ChooseForm(options.format)) {
    if (form_ == Form::JsonLines) {
      UseBinaryStreams();  // JSON is for programs, which need no line ends of this system
    }
  }

  int Run() {
    const auto interval = std::chrono::duration_cast<std::chrono::steady_clock::duration>(options_.interval);
    auto next = std::chrono::steady_clock::now();
    for (unsigned int number = 1;; ++number) {
      if (!Show(number)) {
        return interrupt_.IsTold() ? kSuccess : kUnusable;
      }
      if (number == options_.count) {
        return kSuccess;
      }
      // A reading that took longer than the interval is followed by the next one at once, and by no more than one.
      next = std::max(next + interval, std::chrono::steady_clock::now());
      switch (interrupt_.WaitUntil(next)) {
        case Pause::IsInterrupted:
          return kSuccess;
        case Pause::OutputIsClosed:
          return kUnusable;
        case Pause::IsOver:
          break;
      }
    }
  }

 private:
  bool Show(unsigned int number) {
    if (machine_.simulated != nullptr) {
      machine_.simulated->ForgetOperations();  // a watch may last for weeks
    }
    const Report report = ReadReport(machine_.source, {options_.cellSwell, false});
    Reading reading = MakeReading(number, platform::Platform::Current().Now(), report);
    const std::vector<Change> changes = number > 1 ? FindChanges(last_, reading) : std::vector<Change>();
    last_ = std::move(reading);
    switch (form_) {
      case Form::Screen:
        return WriteToStandardOutput(Screen(Title(machine_.source, options_.interval), last_, changes));
      case Form::TextBlocks:
        return WriteToStandardOutput(TextBlock(last_, changes));
      case Form::JsonLines:
        return WriteToStandardOutput(JsonLine(last_, changes));
    }
    return false;
  }

  const WatchOptions& options_;
  Interrupt interrupt_;
  Machine machine_;
  Form form_;
  Reading last_;
};

}  // namespace

int RunWatch(const WatchOptions& options) {
  return Watch(options).Run();
}

}  // namespace norv::tool
