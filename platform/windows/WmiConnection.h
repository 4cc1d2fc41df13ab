// WMI as a COM client.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "norv/platform/Platform.h"

namespace norv::platform::windows {

// How long a query waits for an object. A provider that takes longer has failed.
struct Patience {
  std::chrono::milliseconds firstObject;
  std::chrono::milliseconds nextObject;
};

// For its first object a provider may have to start and to ask the firmware. That may take as long as reaching the
// namespace may, for which WMI itself sets the same two minutes (and without a second thread no shorter bound can be
// had); both are met only where something hangs. A provider that has begun to answer goes on answering.
constexpr Patience kWmiPatience{.firstObject = std::chrono::minutes(2), .nextObject = std::chrono::seconds(10)};

// Connects to a namespace. 0, or the code of the failure with `connection` unchanged. Works on a thread that the host
// has initialised COM on in any way, or not at all. A connection is used, and destroyed, on the thread that it was made
// on.
//
// A wait that ends without an object is remarked, with the query: who asked hears of a query that failed
// or of no further object, and cannot tell it from an answer.
long ConnectWmi(const std::wstring& namespacePath, Patience patience, std::unique_ptr<WmiConnection>& connection);

}  // namespace norv::platform::windows
