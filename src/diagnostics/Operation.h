// One call of an operation, and everything it says.
#pragma once

#include <initializer_list>
#include <string_view>

#include "diagnostics/Failures.h"
#include "diagnostics/Guard.h"
#include "diagnostics/Log.h"

namespace norv::shared::battery::diagnostics {

// Carries the operation's qualified name to each line that it logs and each failure that it stores. A line of the log
// is that of the source which calls.
class Operation {
 public:
  // `name` is a constant text, `stored` the error of the object whose operation it is.
  Operation(const char* name, error::Error& stored) : name_(name), stored_(stored) {}

  void Log(Severity severity, std::initializer_list<std::string_view> texts,
           int line = __builtin_LINE()) const noexcept {
    diagnostics::Log(severity, {name_, line}, texts);
  }

  // Hosts know the lines as they are: some end with a blank.
  void LogStarted(std::string_view end = "", int line = __builtin_LINE()) const noexcept {
    Log(Severity::Info, {"Started ", name_, end}, line);
  }
  void LogFinished(std::string_view end = "", int line = __builtin_LINE()) const noexcept {
    Log(Severity::Info, {"Finished ", name_, end}, line);
  }

  // Stores the failure. False, for the operation to answer with.
  bool Store(const Failure& failure) const {
    stored_ = failure.Of(name_);
    return false;
  }

  // Stores the failure and logs it. False.
  bool Fail(const Failure& failure, int line = __builtin_LINE()) const { return Fail(failure.Of(name_), line); }
  bool Fail(error::Error failure, int line = __builtin_LINE()) const noexcept {
    stored_ = std::move(failure);
    LogError(stored_, {name_, line});
    return false;
  }

  // Runs `body`; the operation fails with what that throws. A body without an answer answers true.
  template <typename Body>
  bool Run(Body body, int line = __builtin_LINE()) const noexcept {
    return Guarded(
        body, [this, line](const std::exception_ptr& thrown) { return Fail(ExceptionError(thrown, name_), line); });
  }

  const char* Name() const { return name_; }

 private:
  const char* name_;
  error::Error& stored_;
};

}  // namespace norv::shared::battery::diagnostics
