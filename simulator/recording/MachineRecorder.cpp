#include "norv/simulator/MachineRecorder.h"

#include <utility>

#include "recording/RecordedMachine.h"
#include "recording/Redaction.h"
#include "recording/Tape.h"

namespace norv::simulator {

struct MachineRecorder::Parts {
  explicit Parts(platform::Platform& inner) : interceptor(inner, RecordingHook(tape)) {}

  std::shared_ptr<Tape> tape = std::make_shared<Tape>();
  Interceptor interceptor;
};

MachineRecorder::MachineRecorder(platform::Platform& inner) : MachineRecorder(std::make_unique<Parts>(inner)) {
}

MachineRecorder::MachineRecorder(std::unique_ptr<Parts> parts)
    : PlatformWrapper(parts->interceptor), parts_(std::move(parts)) {
}

MachineRecorder::~MachineRecorder() = default;

std::string MachineRecorder::MachineText(const RecordingOptions& options) const {
  const std::vector<RecordedCall> calls = parts_->tape->Calls();
  return options.hash ? RecordedMachineText(Redacted(calls, options.hash), Redacted(options.origin))
                      : RecordedMachineText(calls, options.origin);
}

}  // namespace norv::simulator
