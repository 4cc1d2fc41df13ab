// A battery as an object with an object for each group of fields, the way it stands in JSON.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "fields/Catalogue.h"

namespace norv::tool {

namespace fields = shared::battery::fields;

// The cells' largest voltage less the smallest. A pack of fewer than four cells reads 0 for the ones that it lacks,
// which say nothing about its balance: nothing when every cell reads 0.
template <std::size_t Count>
constexpr std::optional<int> SpreadOf(const std::array<int, Count>& voltages) {
  std::optional<std::pair<int, int>> range;
  for (const int voltage : voltages) {
    if (voltage != 0) {
      range = range ? std::pair(std::min(range->first, voltage), std::max(range->second, voltage))
                    : std::pair(voltage, voltage);
    }
  }
  return range ? std::optional(range->second - range->first) : std::nullopt;
}

// The firmware's current is a word in two's complement: negative while the battery discharges.
constexpr int SignedCurrent(std::int64_t word) {
  return static_cast<std::int16_t>(word);
}

namespace catalogue {

using fields::BareKey;
using fields::Group;
using fields::ItemIndex;
using fields::kCatalogue;
using fields::Row;

// A key as a literal: writers are made for its length.
template <std::size_t kLength>
struct Literal {
  char characters[kLength + 1]{};
};

template <std::size_t kLength>
constexpr Literal<kLength> ToLiteral(std::string_view text) {
  Literal<kLength> literal;
  for (std::size_t position = 0; position < kLength; ++position) {
    literal.characters[position] = text[position];
  }
  return literal;
}

template <std::size_t kIndex>
inline constexpr auto kKey = ToLiteral<BareKey(kCatalogue[kIndex].key).size()>(BareKey(kCatalogue[kIndex].key));

template <std::size_t kIndex>
inline constexpr auto kGroupKey =
    ToLiteral<BareKey(kCatalogue[kIndex].group->key).size()>(BareKey(kCatalogue[kIndex].group->key));

constexpr bool IsFirstOfGroup(std::size_t index) {
  std::size_t first = 0;
  while (*kCatalogue[first].group != *kCatalogue[index].group) {
    ++first;
  }
  return first == index;
}

// How many items the list that begins with row `first` has.
constexpr std::size_t CountItems(std::size_t first) {
  std::size_t count = 1;
  while (first + count < kCatalogue.size() && ItemIndex(kCatalogue[first + count]) == count) {
    ++count;
  }
  return count;
}

// "status.flags" lies within "status".
constexpr bool IsWithin(const Group& group, const Group& outer) {
  const std::string_view key = group.key;
  return key.substr(0, key.rfind('.')) == outer.key && group != outer;
}

constexpr bool IsOutermost(const Group& group) {
  return std::string_view(group.key).find('.') == std::string_view::npos;
}

// Calls take.operator()<index>() for each of the rows kFirst to kEnd - 1.
template <std::size_t kFirst, std::size_t kEnd, typename Take>
void ForEach(Take take) {
  [&]<std::size_t... kOffset>(std::index_sequence<kOffset...>) {
    (take.template operator()<kFirst + kOffset>(), ...);
  }
  (std::make_index_sequence<kEnd - kFirst>());
}

template <std::size_t kFirst, typename Sink, typename Battery>
void WriteItems(Sink& sink, const Battery& battery) {
  constexpr std::size_t kCount = CountItems(kFirst);
  std::array<int, kCount> numbers{};
  ForEach<kFirst, kFirst + kCount>([&]<std::size_t kIndex>() {
    numbers[kIndex - kFirst] = static_cast<int>(battery.template Get<kIndex>().number);
  });
  if (battery.template Get<kFirst>().state == NORV_BATTERY_NOT_TOLD) {
    sink.Null(kKey<kFirst>.characters);
  } else {
    sink.Numbers(kKey<kFirst>.characters, numbers);
  }
  if constexpr (*kCatalogue[kFirst].group == fields::kCells) {
    sink.Number("spread", SpreadOf(numbers));  // of zeros there is none
  }
}

// What a record counts is told even where it is no age.
template <std::size_t kIndex, typename Sink, typename Battery>
void WriteAge(Sink& sink, const Battery& battery) {
  const auto& age = battery.template Get<kIndex>();
  if (age.state == NORV_BATTERY_NOT_TOLD) {
    sink.Null(kKey<kIndex>.characters);
    return;
  }
  const auto days = static_cast<int>(age.number);
  sink.Open(kKey<kIndex>.characters);
  sink.Number("days", age.state == NORV_BATTERY_VALUE ? std::optional(days) : std::nullopt);
  sink.Number("value", days);
  sink.Failure("error", battery.AgeFailure());
  sink.Close();
}

// A text is what the accessor gave in every state but one; a number is one only where it stands for something.
constexpr bool IsNull(norv_battery_kind kind, norv_battery_state state) {
  switch (kind) {
    case NORV_BATTERY_REAL:
      return state != NORV_BATTERY_VALUE;
    case NORV_BATTERY_TEXT:
      return state == NORV_BATTERY_NOT_TOLD;
    default:
      return state == NORV_BATTERY_NOT_TOLD || state == NORV_BATTERY_ABSENT;
  }
}

template <std::size_t kIndex, typename Sink, typename Battery>
void WriteValue(Sink& sink, const Battery& battery) {
  constexpr const Row& kRow = kCatalogue[kIndex];
  constexpr const auto& kLiteral = kKey<kIndex>.characters;
  const auto& value = battery.template Get<kIndex>();
  if (IsNull(kRow.kind, value.state)) {
    sink.Null(kLiteral);
    return;
  }
  if constexpr (kRow.kind == NORV_BATTERY_REAL) {
    sink.Percentage(kLiteral, std::optional(static_cast<float>(value.real)));
  } else if constexpr (kRow.kind == NORV_BATTERY_FLAG) {
    sink.Boolean(kLiteral, value.number != 0);
  } else if constexpr (kRow.kind == NORV_BATTERY_TEXT) {
    fields::IsUtf8(kRow) ? sink.Utf8(kLiteral, value.text) : sink.Bytes(kLiteral, value.text);
  } else if constexpr (kRow.number == NORV_BATTERY_CURRENT) {
    sink.Number(kLiteral, SignedCurrent(value.number));
  } else {
    sink.Number(kLiteral, value.number);
  }
}

template <std::size_t kIndex, typename Sink, typename Battery>
void WriteField(Sink& sink, const Battery& battery) {
  constexpr const Row& kRow = kCatalogue[kIndex];
  if constexpr (!Battery::Has(kRow)) {
    return;
  } else if constexpr (kRow.number == NORV_BATTERY_AGE) {
    WriteAge<kIndex>(sink, battery);
  } else if constexpr (ItemIndex(kRow) == 0) {
    WriteItems<kIndex>(sink, battery);
  } else if constexpr (!ItemIndex(kRow)) {
    WriteValue<kIndex>(sink, battery);
  }
}

}  // namespace catalogue

// Writes the group that row kFirst is the first one of, with what lies within it.
template <std::size_t kFirst, typename Sink, typename Battery>
void WriteGroup(Sink& sink, const Battery& battery) {
  using catalogue::kCatalogue;
  constexpr const fields::Group& kGroup = *kCatalogue[kFirst].group;
  if (battery.template IsNull<kFirst>()) {
    sink.Null(catalogue::kGroupKey<kFirst>.characters);
    return;
  }
  sink.Open(catalogue::kGroupKey<kFirst>.characters);
  catalogue::ForEach<kFirst, kCatalogue.size()>([&]<std::size_t kIndex>() {
    if constexpr (*kCatalogue[kIndex].group == kGroup) {
      catalogue::WriteField<kIndex>(sink, battery);
    }
  });
  catalogue::ForEach<0, kCatalogue.size()>([&]<std::size_t kIndex>() {
    if constexpr (catalogue::IsFirstOfGroup(kIndex) && catalogue::IsWithin(*kCatalogue[kIndex].group, kGroup)) {
      WriteGroup<kIndex>(sink, battery);
    }
  });
  if constexpr (kGroup == fields::kValidity) {
    sink.Failure("error", battery.ValidityFailure());
  }
  battery.template WriteBeyondCatalogue<kFirst>(sink);
  sink.Close();
}

// Writes each group that has fields for `battery` and `isAmong(group)`.
template <typename Sink, typename Battery, typename IsAmong>
void WriteGroups(Sink& sink, const Battery& battery, IsAmong isAmong) {
  using catalogue::kCatalogue;
  catalogue::ForEach<0, kCatalogue.size()>([&]<std::size_t kIndex>() {
    constexpr const fields::Group& kGroup = *kCatalogue[kIndex].group;
    if constexpr (catalogue::IsFirstOfGroup(kIndex) && catalogue::IsOutermost(kGroup) &&
                  Battery::Has(kCatalogue[kIndex]) && isAmong(kGroup)) {
      WriteGroup<kIndex>(sink, battery);
    }
  });
}

}  // namespace norv::tool
