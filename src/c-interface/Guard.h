// What every function of the C interface has around it.
#pragma once

#include <atomic>

#include "c-interface/Interface.h"
#include "diagnostics/Failures.h"
#include "diagnostics/Guard.h"

namespace norv::shared::battery::c_interface {

// Runs `operation`, which answers a status. Nothing leaves a function of the C interface as an exception.
template <typename Operation>
norv_battery_status Guarded(Operation operation) noexcept {
  return diagnostics::Guarded(operation, [](const std::exception_ptr& thrown) -> norv_battery_status {
    return diagnostics::IsOutOfMemory(thrown) ? NORV_BATTERY_OUT_OF_MEMORY : NORV_BATTERY_INTERNAL_ERROR;
  });
}

// Whether a function uses a handle. Its callbacks and other threads find out here, before they change what it reads, or
// release it.
class UseMark {
 public:
  // False when somebody uses the handle already.
  bool Begin() { return !inUse_.test_and_set(std::memory_order_acquire); }
  void End() { inUse_.clear(std::memory_order_release); }

 private:
  std::atomic_flag inUse_;
};

// Runs `operation`, which uses `handle`, unless that is null or in use.
template <typename Handle, typename Operation>
norv_battery_status Using(Handle* handle, Operation operation) noexcept {
  if (handle == nullptr) {
    return NORV_BATTERY_INVALID_ARGUMENT;
  }
  UseMark& use = handle->Use();
  if (!use.Begin()) {
    return NORV_BATTERY_IN_USE;
  }
  const norv_battery_status status = Guarded(operation);
  use.End();
  return status;
}

// Deletes a handle, unless it is in use.
template <typename Handle>
norv_battery_status Release(Handle* handle) {
  if (handle != nullptr && !handle->Use().Begin()) {
    return NORV_BATTERY_IN_USE;
  }
  delete handle;
  return NORV_BATTERY_OK;
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
