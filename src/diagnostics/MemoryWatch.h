// Whether memory ran out, for whoever has to know it of a whole call.
#pragma once

#include <cstdint>

namespace norv::shared::battery::diagnostics {

// Says that an allocation of the library failed on this thread. Called where such a failure is caught.
void NoteOutOfMemory() noexcept;

// Notices each such failure for as long as it lives. An object's Error cannot tell of it: a later failure overwrites it
// there, an earlier call may have left it there, and what the settings' reader absorbs never gets there.
class MemoryWatch {
 public:
  MemoryWatch();

  bool RanOut() const;

 private:
  std::uint64_t before_;
};

}  // namespace norv::shared::battery::diagnostics
