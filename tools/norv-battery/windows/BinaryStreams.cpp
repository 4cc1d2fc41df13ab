#include "output/BinaryStreams.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <initializer_list>

namespace norv::tool {

// The C runtime keeps the numbers of its streams by itself. The system's own handles are what a started program
// inherits, and a number that stands for nothing may become a file's.
void FillMissingStreams() {
  for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
    const HANDLE handle = GetStdHandle(stream);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE || GetFileType(handle) == FILE_TYPE_UNKNOWN) {
      SetStdHandle(stream,
                   CreateFileW(L"NUL", 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    }
  }
}

void UseBinaryStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);  // what a console would take for its own encoding otherwise; no effect on a file or pipe
}

}  // namespace norv::tool
