// Errors on their way to a C host.
#pragma once

#include <cstddef>
#include <cstdint>

#include "c-interface/Interface.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery::c_interface {

norv_battery_status WriteError(const error::Error& failure, norv_battery_error* target);

norv_battery_status CopyErrorText(const error::Error& failure, std::int32_t part, char* buffer, std::size_t bufferSize,
                                  std::size_t* needed);

}  // namespace norv::shared::battery::c_interface
