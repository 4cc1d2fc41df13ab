// The fields that a block holds itself, which whoever makes a block needs; all others are worked out from these.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "fields/Catalogue.h"

namespace norv::shared::battery::fields {

// Of several fields at one place the first is what the place holds.
constexpr bool IsStored(const Row& row) {
  const auto holds = [&row](const Row& other) {
    return other.source == row.source && other.place.offset <= row.place.offset && row.place.offset < other.place.End();
  };
  return row.place.width != 0 && std::find_if(kCatalogue.begin(), kCatalogue.end(), holds) == &row;
}

// Those of the block of `kSource`, in the order of memory.
template <norv_battery_source kSource>
inline constexpr auto kStored = [] {
  constexpr auto isAmong = [](const Row& row) { return row.source == kSource && IsStored(row); };
  std::array<const Row*, std::count_if(kCatalogue.begin(), kCatalogue.end(), isAmong)> rows{};
  std::size_t count = 0;
  for (const Row& row : kCatalogue) {
    if (isAmong(row)) {
      rows[count++] = &row;
    }
  }
  std::sort(rows.begin(), rows.end(),
            [](const Row* left, const Row* right) { return left->place.offset < right->place.offset; });
  return rows;
}();

// What a stored field is in its block.
enum class Form { Word, SignedWord, PackedDate, Text };

constexpr Form FormOf(const Row& row) {
  if (row.kind == NORV_BATTERY_NUMBER) {
    return row.place.isSigned ? Form::SignedWord : Form::Word;
  }
  return row.place.width == 2 ? Form::PackedDate : Form::Text;
}

}  // namespace norv::shared::battery::fields
