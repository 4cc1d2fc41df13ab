#include "BinaryStreams.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace norv::tool {

void UseBinaryStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

}  // namespace norv::tool
