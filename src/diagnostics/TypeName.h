// Run-time type names as a person reads them.
#pragma once

#include <string>
#include <typeinfo>

namespace norv::shared::battery::diagnostics {

// "int", "unsigned long", "std::runtime_error", on toolchains that mangle names as well.
std::string TypeName(const std::type_info& type);

template <typename Type>
std::string TypeName() {
  return TypeName(typeid(Type));
}

}  // namespace norv::shared::battery::diagnostics
