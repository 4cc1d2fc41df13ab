// WMI as a COM client.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "norv/platform/Platform.h"

namespace norv::platform::windows {

// How long a query waits for its next object. A provider that takes longer has failed.
constexpr std::chrono::milliseconds kWmiPatience{10000};

// Connects to a namespace. 0, or the code of the failure with `connection` unchanged. Works on a thread that the host
// has initialised COM on in any way, or not at all. A connection is used, and destroyed, on the thread that it was made
// on.
//
// Reaching the namespace has a bound of its own, set by WMI: two minutes. It is met only where the WMI service itself
// hangs, and no shorter one can be had without a second thread.
long ConnectWmi(const std::wstring& namespacePath, std::chrono::milliseconds patience,
                std::unique_ptr<WmiConnection>& connection);

}  // namespace norv::platform::windows
