#include "BinaryStreams.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

namespace norv::tool {

void UseBinaryStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);  // what a console would take for its own encoding otherwise; no effect on a file or pipe
}

}  // namespace norv::tool
