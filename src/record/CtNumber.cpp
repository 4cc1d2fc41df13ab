#include "record/CtNumber.h"

#include <algorithm>

#include "record/Characters.h"

namespace norv::shared::battery::record {

bool IsCtNumber(std::string_view text) {
  return HasLayout(text, "6xxxxxxxxxxxxx");
}

std::optional<std::string_view> FindCtField(std::string_view ctNumber, CtField field) {
  if (ctNumber.size() < field.required) {
    return std::nullopt;
  }
  return ctNumber.substr(std::min(field.position, ctNumber.size()), field.width);
}

}  // namespace norv::shared::battery::record
