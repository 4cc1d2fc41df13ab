// What every function of the C interface has around it.
#pragma once

#include <new>

#include "c-interface/Interface.h"

namespace norv::shared::battery::c_interface {

// Runs `operation`, which answers a status. Nothing leaves a function of the C interface as an exception.
template <typename Operation>
norv_battery_status Guarded(Operation operation) noexcept {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    return NORV_BATTERY_OUT_OF_MEMORY;
  } catch (...) {
    return NORV_BATTERY_INTERNAL_ERROR;
  }
}

// True for a structure of the host's that has the size that this version knows.
template <typename Structure>
bool HasKnownSize(const Structure& structure) {
  return structure.size == sizeof structure;
}

// What is wrong with a structure to be written; NORV_BATTERY_OK when nothing is.
template <typename Structure>
norv_battery_status CheckStructure(const Structure* structure) {
  if (structure == nullptr) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  return HasKnownSize(*structure) ? NORV_BATTERY_OK : NORV_BATTERY_INVALID_SIZE;
}

}  // namespace norv::shared::battery::c_interface
