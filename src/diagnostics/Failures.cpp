#include "diagnostics/Failures.h"

#include <new>
#include <string>
#include <system_error>
#include <typeinfo>
#include <utility>

#include "diagnostics/MemoryWatch.h"

namespace norv::shared::battery::diagnostics {

using error::Error;
using error::ErrorCategory;

namespace {

constexpr std::int64_t kStandardExceptionCode = 1;

Error StandardExceptionError(const std::exception& exception, std::string message, const char* operation) {
  if (dynamic_cast<const std::bad_alloc*>(&exception) != nullptr) {
    NoteOutOfMemory();
  }
  return {ErrorCategory::StandardException, kStandardExceptionCode, std::move(message), TypeName(typeid(exception)),
          operation};
}

// A thrown text has no code of its own; its type's hash code tells what was thrown.
template <typename Text>
Error ThrownTextError(const Text& text, const char* operation) {
  return {ErrorCategory::Value, static_cast<std::int64_t>(typeid(Text).hash_code()), text, TypeName<Text>(), operation};
}

std::string DescribeSystemError(const std::system_error& exception) {
  return std::string("message: '") + exception.what() + "' system code : '" + exception.code().category().name() + ":" +
         std::to_string(exception.code().value()) + "'";
}

// Without memory for the texts of a failure this one stands in; its own are short enough to need none.
Error NoMemoryError() {
  NoteOutOfMemory();
  return {ErrorCategory::StandardException, kStandardExceptionCode, "std::bad_alloc", "std::bad_alloc", ""};
}

Error Convert(const std::exception_ptr& thrown, const char* operation) {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::system_error& exception) {
    return StandardExceptionError(exception, DescribeSystemError(exception), operation);
  } catch (const std::exception& exception) {
    return StandardExceptionError(exception, exception.what(), operation);
  } catch (int value) {
    return ValueError<int>(value, "", operation);
  } catch (unsigned long value) {
    return ValueError<unsigned long>(static_cast<std::int64_t>(value), "", operation);
  } catch (const std::string& text) {
    return ThrownTextError(text, operation);
  } catch (const char* text) {
    return ThrownTextError(text != nullptr ? text : "", operation);
  } catch (...) {
    return {ErrorCategory::UnknownException, 0, "Unknown exception type.", "Unknown", operation};
  }
}

Error ConvertForRead(const std::exception_ptr& thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::exception& exception) {
    return StandardExceptionError(exception, exception.what(), "");
  } catch (...) {
    return Convert(thrown, "");
  }
}

}  // namespace

Error ExceptionError(const std::exception_ptr& thrown, const char* operation) noexcept {
  try {
    return Convert(thrown, operation);
  } catch (...) {
    return NoMemoryError();
  }
}

Error ReadExceptionError(const std::exception_ptr& thrown) noexcept {
  try {
    return ConvertForRead(thrown);
  } catch (...) {
    return NoMemoryError();
  }
}

void Report(Error& stored, Error failure, LogSite site) noexcept {
  stored = std::move(failure);
  LogError(stored, site);
}

}  // namespace norv::shared::battery::diagnostics
