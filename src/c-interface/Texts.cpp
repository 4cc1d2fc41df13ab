#include "c-interface/Texts.h"

#include <algorithm>

namespace norv::shared::battery::c_interface {

norv_battery_status CopyText(std::string_view text, char* buffer, std::size_t bufferSize, std::size_t* needed) {
  if (buffer == nullptr && bufferSize != 0) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  if (needed != nullptr) {
    *needed = text.size() + 1;
  }
  if (buffer == nullptr) {
    return NORV_BATTERY_OK;
  }
  if (bufferSize <= text.size()) {
    std::fill_n(buffer, std::min<std::size_t>(bufferSize, 1), '\0');
    return NORV_BATTERY_BUFFER_TOO_SMALL;
  }
  *std::copy(text.begin(), text.end(), buffer) = '\0';
  return NORV_BATTERY_OK;
}

}  // namespace norv::shared::battery::c_interface
