// Finds an element in the report of the battery test by plain text search. The report need not be well-formed.
#pragma once

#include <optional>
#include <string_view>

namespace norv::shared::battery::test {

// The content of the last element whose start tag begins with "<" + elementName + attributeText: from behind the tag's
// ">" to the next "</" + elementName. Nothing when there is none. The result refers into `report`. Takes time in
// proportion to the report's length, whatever it holds.
std::optional<std::string_view> FindLastContent(std::string_view report, std::string_view elementName,
                                                std::string_view attributeText);

}  // namespace norv::shared::battery::test
