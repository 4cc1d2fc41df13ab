#pragma once

namespace norv::tool {

// The whole tool: does what its arguments ask for and gives the exit status. Throws nothing: what stops a command has
// been said on standard error.
int RunCommandLine(int argc, const char* const* argv);

}  // namespace norv::tool
