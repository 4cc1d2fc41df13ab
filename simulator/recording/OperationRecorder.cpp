#include "norv/simulator/OperationRecorder.h"

#include <utility>

#include "recording/Tape.h"

namespace norv::simulator {

bool operator==(const Operation& left, const Operation& right) {
  return left.name == right.name && left.argument == right.argument;
}

bool operator!=(const Operation& left, const Operation& right) {
  return !(left == right);
}

struct OperationRecorder::Parts {
  explicit Parts(platform::Platform& inner) : interceptor(inner, NotingHook(tape)) {}

  std::shared_ptr<Tape> tape = std::make_shared<Tape>();
  Interceptor interceptor;
};

OperationRecorder::OperationRecorder(platform::Platform& inner) : OperationRecorder(std::make_unique<Parts>(inner)) {
}

OperationRecorder::OperationRecorder(std::unique_ptr<Parts> parts)
    : PlatformWrapper(parts->interceptor), parts_(std::move(parts)) {
}

OperationRecorder::~OperationRecorder() = default;

const std::vector<Operation>& OperationRecorder::Operations() const {
  return parts_->tape->Operations();
}

void OperationRecorder::Clear() {
  parts_->tape->ForgetOperations();
}

}  // namespace norv::simulator
