// What is true of the interface as a whole: its version and its statuses.
#include <array>
#include <cstddef>

#include "c-interface/Guard.h"
#include "c-interface/Interface.h"
#include "c-interface/Texts.h"

namespace {

// In the order of their numbers.
constexpr std::array kStatusTexts{
    "success",
    "invalid argument",
    "a structure or block has a size that this library does not know",
    "there are slots 0 and 1 only",
    "unknown field",
    "no battery in this slot",
    "the field is not read from a block that is there",
    "the battery test gave no verdict",
    "the buffer is too small",
    "stopped by the visitor",
    "the record belongs to a collection",
    "out of memory",
    "internal error",
    "the handle is in use",
};
static_assert(kStatusTexts.size() == NORV_BATTERY_IN_USE + 1);

}  // namespace

int32_t norv_battery_interface_version(void) {
  return NORV_BATTERY_INTERFACE_VERSION;
}

norv_battery_status norv_battery_status_text(norv_battery_status status, char* buffer, size_t bufferSize,
                                             size_t* needed) {
  if (status < 0 || static_cast<std::size_t>(status) >= kStatusTexts.size()) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  return norv::shared::battery::c_interface::CopyText(kStatusTexts[static_cast<std::size_t>(status)], buffer,
                                                      bufferSize, needed);
}
