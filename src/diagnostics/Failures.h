// How failures become Error values.
#pragma once

#include <cstdint>
#include <exception>

#include "diagnostics/Log.h"
#include "diagnostics/TypeName.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery::diagnostics {

// A value that is wrong, or a return code: category 5. `CodeType` is the type of what carried the code.
template <typename CodeType>
error::Error ValueError(std::int64_t code, const char* message, const char* operation) {
  return {error::ErrorCategory::Value, code, message, TypeName<CodeType>(), operation};
}

// A status of the operating system with the system's own message text: category 3.
error::Error SystemMessageError(std::int32_t status, const char* operation);

// Any exception that was thrown, by its type. Without memory for the texts it is the error of a failed allocation.
error::Error ExceptionError(const std::exception_ptr& thrown, const char* operation) noexcept;

// The same as a BIOS read reports it: a standard exception, a system error included, has its own message, and no
// function is named.
error::Error ReadExceptionError(const std::exception_ptr& thrown) noexcept;

// Stores `failure` in the object it belongs to and logs it.
void Report(error::Error& stored, error::Error failure, LogSite site) noexcept;

// Runs an operation that nothing may leave as an exception. What it throws is reported, and the answer is false.
template <typename Operation>
bool Guarded(error::Error& stored, LogSite site, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    Report(stored, ExceptionError(std::current_exception(), site.operation), site);
    return false;
  }
}

}  // namespace norv::shared::battery::diagnostics
