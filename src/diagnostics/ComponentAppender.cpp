#include "diagnostics/ComponentAppender.h"

#include <utility>

namespace norv::shared::common::logger {

ComponentAppender::ComponentAppender(std::wstring componentName, plog::IAppender* target)
    : componentName_(std::move(componentName)), target_(target) {
}

ComponentAppender::~ComponentAppender() = default;

void ComponentAppender::write(const plog::Record& record) {
  if (target_ == nullptr) {
    return;
  }
  // A record makes its function text anew, in the same storage, each time it is asked: the copy needs one of its own.
  const std::string function = record.getFunc();
  plog::Record copy(record.getSeverity(), function.c_str(), record.getLine(), function.c_str(), componentName_.c_str(),
                    record.getInstanceId());
  copy << record.getMessage();  // plog writes "(null)" for a null pointer
  target_->write(copy);
}

}  // namespace norv::shared::common::logger
