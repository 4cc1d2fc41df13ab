// The word that holds a date: day of the month in bits 0 to 4, month in 5 to 8, years since 1980 in 9 to 15. It can
// hold dates that no calendar has.
#pragma once

#include <cstdint>

namespace norv::firmware {

struct PackedDate {
  int year = 0;
  int month = 0;
  int day = 0;
};

inline constexpr PackedDate kFirstDate{1980, 0, 0};
inline constexpr PackedDate kLastDate{kFirstDate.year + 127, 15, 31};

constexpr bool CanPack(const PackedDate& date) {
  return date.year >= kFirstDate.year && date.year <= kLastDate.year && date.month >= kFirstDate.month &&
         date.month <= kLastDate.month && date.day >= kFirstDate.day && date.day <= kLastDate.day;
}

constexpr std::uint16_t Pack(const PackedDate& date) {
  return static_cast<std::uint16_t>((date.year - kFirstDate.year) << 9 | date.month << 5 | date.day);
}

constexpr PackedDate Unpack(std::uint16_t word) {
  return {kFirstDate.year + (word >> 9), word >> 5 & 0x0F, word & 0x1F};
}

}  // namespace norv::firmware
