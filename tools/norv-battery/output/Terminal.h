// What the tool asks the operating system about its streams.
#pragma once

namespace norv::tool {

bool StandardErrorIsTerminal();
bool StandardOutputIsTerminal();

// True when the terminal of standard output follows escape sequences; makes it do so where that takes a setting.
bool StandardOutputTakesSequences();

// Makes a write to a pipe that nobody reads any more fail, where it would end the process otherwise.
void KeepBrokenPipesSilent();

}  // namespace norv::tool
