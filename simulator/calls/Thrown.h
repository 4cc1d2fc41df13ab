// What an operation threw, in a form that a machine file holds.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace norv::simulator {

struct Thrown {
  std::string kind;         // "runtime_error", one of ThrownKinds()
  std::string text;         // what it says, as bytes
  std::int64_t number = 0;  // the value of "int" and "unsigned long", the code of "system_error"
  std::string category;     // of "system_error": "generic" or "system"

  bool operator==(const Thrown&) const = default;
};

// Anything that derives from an exception of the standard library is described as the nearest kind that is known.
Thrown DescribeThrown(const std::exception_ptr& exception);

[[noreturn]] void Throw(const Thrown& thrown);

bool IsThrownKind(std::string_view kind);

// Every kind, "runtime_error, logic_error, ...".
std::string ThrownKinds();

}  // namespace norv::simulator
