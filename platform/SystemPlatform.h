// The running system as a platform; each system's folder has its own.
#pragma once

#include <new>

#include "norv/platform/Platform.h"

namespace norv::platform {

// Made on first use, alive until the process ends.
Platform& SystemPlatform();

// The one object of the class `System`, made by the first call. Never destroyed, because a host may use the library
// until its very end; and not on the heap, because nobody could release it when the library is unloaded.
template <typename System>
Platform& OnlyOne() {
  alignas(System) static unsigned char storage[sizeof(System)];
  static Platform* const platform = ::new (static_cast<void*>(storage)) System;
  return *platform;
}

}  // namespace norv::platform
