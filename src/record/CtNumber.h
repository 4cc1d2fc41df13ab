// The CT number and its fields.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace norv::shared::battery::record {

// A field of the CT number, which exists when the text has at least `required` characters. That is fewer than some
// fields reach to, so a field may come out short or empty.
struct CtField {
  std::size_t position;
  std::size_t width;
  std::size_t required;
};

inline constexpr CtField kCtAssembly{0, 4, 4};
inline constexpr CtField kCtRevision{4, 2, 6};
inline constexpr CtField kCtSupplier{6, 2, 6};
inline constexpr CtField kCtMfgWeek{8, 2, 6};

// What stands for a field of a CT number that is too short for it.
inline constexpr const char* kNoCtField = "NA";

// True for a 6 followed by 13 ASCII letters or digits.
bool IsCtNumber(std::string_view text);

// The characters of `field` that the text holds; nothing when the text is too short for the field to exist.
std::optional<std::string_view> FindCtField(std::string_view ctNumber, CtField field);

}  // namespace norv::shared::battery::record
