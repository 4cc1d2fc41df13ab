#include "BinaryStreams.h"

namespace norv::tool {

// Here every stream carries bytes as they are.
void UseBinaryStreams() {
}

}  // namespace norv::tool
