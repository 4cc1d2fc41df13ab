// The running system as a platform; each system's folder has its own.
#pragma once

#include "norv/platform/Platform.h"

namespace norv::platform {

// Made on first use, alive until the process ends.
Platform& SystemPlatform();

}  // namespace norv::platform
