// What the tool asks the operating system about its streams.
#pragma once

namespace norv::tool {

bool StandardErrorIsTerminal();

// Makes a write to a pipe that nobody reads any more fail, where it would end the process otherwise.
void KeepBrokenPipesSilent();

}  // namespace norv::tool
