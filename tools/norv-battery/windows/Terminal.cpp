#include "Terminal.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

namespace norv::tool {

bool StandardErrorIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != FALSE;
}

// Windows has no signal for it: the write fails by nature.
void KeepBrokenPipesSilent() {
}

}  // namespace norv::tool
