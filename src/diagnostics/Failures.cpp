#include "diagnostics/Failures.h"

#include <new>
#include <string>
#include <system_error>
#include <typeinfo>
#include <utility>

#include "diagnostics/Guard.h"
#include "diagnostics/MemoryWatch.h"

namespace norv::shared::battery::diagnostics {

using error::Error;
using error::ErrorCategory;

namespace {

constexpr std::int64_t kStandardExceptionCode = 1;

Failure StandardException(const std::exception& exception, std::string message) {
  return {ErrorCategory::StandardException, kStandardExceptionCode, std::move(message), TypeName(typeid(exception))};
}

// A thrown text has no code of its own; its type's hash code tells what was thrown.
template <typename Text>
Failure ThrownText(const Text& text) {
  return WrongValue<Text>(static_cast<std::int64_t>(typeid(Text).hash_code()), text);
}

std::string DescribeSystemError(const std::system_error& exception) {
  return std::string("message: '") + exception.what() + "' system code : '" + exception.code().category().name() + ":" +
         std::to_string(exception.code().value()) + "'";
}

Failure Convert(const std::exception_ptr& thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::system_error& exception) {
    return StandardException(exception, DescribeSystemError(exception));
  } catch (const std::exception& exception) {
    return StandardException(exception, exception.what());
  } catch (int value) {
    return WrongValue<int>(value, "");
  } catch (unsigned long value) {
    return WrongValue<unsigned long>(static_cast<std::int64_t>(value), "");
  } catch (const std::string& text) {
    return ThrownText(text);
  } catch (const char* text) {
    return ThrownText(text != nullptr ? text : "");
  } catch (...) {
    return {ErrorCategory::UnknownException, 0, "Unknown exception type.", "Unknown"};
  }
}

Failure ConvertForRead(const std::exception_ptr& thrown) {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::exception& exception) {
    return StandardException(exception, exception.what());
  } catch (...) {
    return Convert(thrown);
  }
}

// Without memory for the texts of a failure another one stands in; its own are short enough to need none.
Error ErrorOf(Failure (*convert)(const std::exception_ptr&), const std::exception_ptr& thrown,
              const char* operation) noexcept {
  Absorb(thrown);
  return Guarded(
      [&] { return convert(thrown).Of(operation); },
      [](const std::exception_ptr& noMemory) {
        Absorb(noMemory);
        return Failure{ErrorCategory::StandardException, kStandardExceptionCode, "std::bad_alloc", "std::bad_alloc"}.Of(
            "");
      });
}

}  // namespace

Error Failure::Of(const char* operation) const {
  return {category, code, message, typeText, operation};
}

Error ExceptionError(const std::exception_ptr& thrown, const char* operation) noexcept {
  return ErrorOf(Convert, thrown, operation);
}

Error ReadExceptionError(const std::exception_ptr& thrown) noexcept {
  return ErrorOf(ConvertForRead, thrown, "");
}

bool IsOutOfMemory(const std::exception_ptr& thrown) noexcept {
  try {
    std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
}

bool Absorb(const std::exception_ptr& thrown) noexcept {
  if (IsOutOfMemory(thrown)) {
    NoteOutOfMemory();
  }
  return false;
}

}  // namespace norv::shared::battery::diagnostics
