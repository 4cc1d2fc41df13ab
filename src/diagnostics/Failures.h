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

// Any exception that was thrown, by its type.
error::Error ExceptionError(const std::exception_ptr& thrown, const char* operation) noexcept;

// Stores `failure` in the object it belongs to and logs it.
void Report(error::Error& stored, error::Error failure, LogSite site) noexcept;

// Inside a catch block: reports the exception at hand. A standard exception keeps its own message, and the error names
// no function. Even without memory an error is stored.
void ReportCaught(error::Error& stored, LogSite site) noexcept;

// Runs an operation that nothing may leave as an exception. What it throws is reported, and the answer is false.
template <typename Operation>
bool Guarded(error::Error& stored, LogSite site, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    ReportCaught(stored, site);
    return false;
  }
}

}  // namespace norv::shared::battery::diagnostics
