// Reads JSON.
#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "json/Value.h"

namespace norv::json {

// So many arrays and objects may be within each other: whoever walks a tree by recursion has a stack for it.
inline constexpr std::size_t kDeepest = 64;

// So many bytes may make one value: of a stream, or of a file that is read whole.
inline constexpr std::size_t kLongestValue = std::size_t{64} << 20U;

// A text that is no JSON, is nested too deeply, holds a key twice in one object or a number that no type holds. what()
// says where, by line and column or by path, and what was expected there.
class ParseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws ParseError.
Value Parse(std::string_view text);

// The next of the values that stand one after another in `input`, read no further than to its end; nothing when there
// is none left. Lines are counted from where it starts. Throws ParseError.
std::optional<Value> ParseNext(std::istream& input);

}  // namespace norv::json
