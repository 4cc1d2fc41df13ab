#include "record/TrailingDate.h"

#include <array>
#include <cstddef>

#include "base/Digits.h"

namespace norv::shared::battery::record {

namespace {

// One way to write the date. In a layout '0' stands for a digit and '-' for any separator.
struct DateShape {
  std::string_view layout;
  std::size_t year;
  std::size_t yearDigits;
  std::size_t month;
  std::size_t day;
};

// The longer way of each order comes first: it begins further left. Year first wins over month first.
constexpr std::array<DateShape, 4> kDateShapes{{
    {"2000-00-00", 0, 4, 5, 8},
    {"19-00-00", 0, 2, 3, 6},
    {"00-00-2000", 6, 4, 0, 3},
    {"00-00-19", 6, 2, 0, 3},
}};

constexpr std::string_view kSeparators = "- /.";

// Years of the layouts begin with their own digits, everything else is any digit.
bool Matches(char character, const DateShape& shape, std::size_t position) {
  const char wanted = shape.layout[position];
  if (wanted == '-') {
    return kSeparators.find(character) != std::string_view::npos;
  }
  const bool isCentury = position == shape.year || position == shape.year + 1;
  return isCentury ? character == wanted : base::IsDigit(character);
}

std::optional<TrailingDate> Match(std::string_view text, const DateShape& shape) {
  if (text.size() < shape.layout.size()) {
    return std::nullopt;
  }
  text.remove_prefix(text.size() - shape.layout.size());
  for (std::size_t position = 0; position < text.size(); ++position) {
    if (!Matches(text[position], shape, position)) {
      return std::nullopt;
    }
  }
  const TrailingDate date{base::ReadDigits(text.substr(shape.year, shape.yearDigits)),
                          base::ReadDigits(text.substr(shape.month, 2)), base::ReadDigits(text.substr(shape.day, 2)),
                          text.size()};
  const bool exists = date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31;
  return exists ? std::optional(date) : std::nullopt;
}

}  // namespace

std::optional<TrailingDate> FindTrailingDate(std::string_view text) {
  for (const DateShape& shape : kDateShapes) {
    if (const auto date = Match(text, shape)) {
      return date;
    }
  }
  return std::nullopt;
}

}  // namespace norv::shared::battery::record
