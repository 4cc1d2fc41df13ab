// The failure value that every object of the library keeps and hands out with GetError().
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "battery/Export.h"

namespace norv::shared::error {

// Where a failure came from.
enum class ErrorCategory : int {
  UnknownException = 1,   // something was thrown whose type the library does not know
  StandardException = 2,  // an exception of the standard library
  SystemMessage = 3,      // a status of the operating system, with the system's own message text
  Value = 5,              // a value that is wrong, or a return code of the BIOS
};

// A value. Copying copies the texts. Every text it hands out is zero-terminated, never null, owned by the Error and
// valid until the Error is assigned to or destroyed. An Error may be read from several threads as long as none changes
// it.
class NORV_BATTERY_API Error {
 public:
  // Nothing failed.
  Error();

  // `code` is a return code, a system code or a status, as the category says. `typeText` names the type of the value
  // that carried the code ("int", "unsigned long") or of the caught exception; `functionText` is the fully qualified
  // name of the operation that failed, or empty.
  Error(ErrorCategory category, std::int64_t code, std::string message, std::string typeText, std::string functionText);

  // True when it holds a failure.
  explicit operator bool() const;

  // Meaningless (ErrorCategory::UnknownException, 0, empty texts) when nothing failed.
  ErrorCategory GetCategory() const;
  std::int64_t GetCode() const;
  const char* GetMessageText() const;
  const char* GetTypeText() const;
  const char* GetFunctionText() const;

  // The text form of `error`, one line as the library's log shows it. Returns its length in bytes. With a non-null
  // `buffer` it also writes exactly that many bytes there, without a terminator; the caller provides the room.
  static std::size_t ToString(const Error& error, char* buffer);

 private:
  bool failed_;
  ErrorCategory category_;
  std::int64_t code_;
  std::string message_;
  std::string typeText_;
  std::string functionText_;
};

}  // namespace norv::shared::error
