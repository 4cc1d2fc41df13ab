#include "diagnostics/MemoryWatch.h"

namespace norv::shared::battery::diagnostics {

namespace {

thread_local std::uint64_t failures = 0;

}  // namespace

void NoteOutOfMemory() noexcept {
  ++failures;
}

MemoryWatch::MemoryWatch() : before_(failures) {
}

bool MemoryWatch::RanOut() const {
  return failures != before_;
}

}  // namespace norv::shared::battery::diagnostics
