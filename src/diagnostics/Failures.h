// How failures become Error values.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "diagnostics/TypeName.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery::diagnostics {

// What failed, whichever operation it stopped.
struct Failure {
  error::ErrorCategory category;
  std::int64_t code;
  std::string message;
  std::string typeText;

  // The failure as the host gets it from `operation`, a qualified name or nothing.
  error::Error Of(const char* operation) const;
};

// A value that is wrong, or a return code: category 5. `CodeType` is the type of what carried the code.
template <typename CodeType>
Failure WrongValue(std::int64_t code, std::string message) {
  return {error::ErrorCategory::Value, code, std::move(message), TypeName<CodeType>()};
}

// A status of the operating system with the system's own message text: category 3.
Failure SystemFailure(std::int32_t status);

// Any exception that was thrown, by its type. Without memory for the texts it is the error of a failed allocation.
error::Error ExceptionError(const std::exception_ptr& thrown, const char* operation) noexcept;

// The same as a BIOS read reports it: a standard exception, a system error included, has its own message, and no
// function is named.
error::Error ReadExceptionError(const std::exception_ptr& thrown) noexcept;

bool IsOutOfMemory(const std::exception_ptr& thrown) noexcept;

// Notes a lack of memory that ends here without becoming anybody's error. False: nothing came of what threw.
bool Absorb(const std::exception_ptr& thrown) noexcept;

}  // namespace norv::shared::battery::diagnostics
