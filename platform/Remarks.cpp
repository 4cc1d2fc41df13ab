#include "Remarks.h"

namespace norv::platform {

RemarkListener::~RemarkListener() = default;

RemarkListener*& RemarkListener::Current() {
  // Plain data: nothing to construct or destroy when a thread or the library comes or goes.
  thread_local RemarkListener* current = nullptr;
  return current;
}

void Tell(const Remark& remark) {
  if (RemarkListener* const listener = RemarkListener::Current()) {
    listener->Hear(remark);
  }
}

}  // namespace norv::platform
