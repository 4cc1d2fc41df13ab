#include "output/Terminal.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

namespace norv::tool {

bool StandardErrorIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != FALSE;
}

bool StandardOutputIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != FALSE;
}

bool StandardOutputTakesSequences() {
  constexpr DWORD kProcessSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING, of Windows 10 and later
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != FALSE && SetConsoleMode(console, mode | kProcessSequences) != FALSE;
}

// Windows has no signal for it: the write fails by nature.
void KeepBrokenPipesSilent() {
}

}  // namespace norv::tool
