#include "play/SystemCalls.h"

#include <algorithm>

namespace norv::simulator {

std::uint32_t CopyCut(const std::string& text, char* buffer, std::uint32_t size) {
  if (size == 0) {
    return 0;
  }
  const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
  std::copy_n(text.begin(), length, buffer);
  buffer[length] = '\0';
  return static_cast<std::uint32_t>(length);
}

}  // namespace norv::simulator
