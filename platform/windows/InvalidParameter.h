// The invalid-parameter condition of the C runtime.
#pragma once

namespace norv::platform::windows {

// Does what a function of the C runtime does that is given a null pointer: sets errno to EINVAL and calls the handler
// that the host has installed. Without a handler nothing is called: the runtime would end the process.
//
// Host and library need not share a C runtime. Errno and handler are those of the runtime that nearly every host uses,
// where it is loaded, and those of the library's own.
void RaiseInvalidParameter();

}  // namespace norv::platform::windows
