#include "Remarks.h"

#include <utility>

namespace norv::platform {

namespace {

// Plain data: nothing to construct or destroy when a thread or the library comes or goes.
thread_local RemarkListener* currentListener = nullptr;

}  // namespace

RemarkListener::~RemarkListener() = default;

ScopedRemarkListener::ScopedRemarkListener(RemarkListener& listener)
    : previous_(std::exchange(currentListener, &listener)) {
}

ScopedRemarkListener::~ScopedRemarkListener() {
  currentListener = previous_;
}

void Remark(RemarkKind kind, std::string_view remark) {
  if (currentListener != nullptr) {
    currentListener->Hear(kind, remark);
  }
}

}  // namespace norv::platform
