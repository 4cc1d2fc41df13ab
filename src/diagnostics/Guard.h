// The one place where exceptions end.
#pragma once

#include <exception>
#include <type_traits>

namespace norv::shared::battery::diagnostics {

// Runs `body`, which nothing may leave as an exception: what it throws is turned into an answer by onThrow(thrown). A
// body without an answer answers true when it comes to its end.
template <typename Body, typename OnThrow>
std::invoke_result_t<OnThrow, std::exception_ptr> Guarded(Body body, OnThrow onThrow) noexcept {
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
      body();
      return true;
    } else {
      return body();
    }
  } catch (...) {
    return onThrow(std::current_exception());
  }
}

}  // namespace norv::shared::battery::diagnostics
