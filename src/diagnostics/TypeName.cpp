#include "diagnostics/TypeName.h"

#if __has_include(<cxxabi.h>)
#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#endif

namespace norv::shared::battery::diagnostics {

std::string TypeName(const std::type_info& type) {
#if __has_include(<cxxabi.h>)
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> readable(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  if (readable != nullptr) {
    return readable.get();
  }
#endif
  return type.name();
}

}  // namespace norv::shared::battery::diagnostics
