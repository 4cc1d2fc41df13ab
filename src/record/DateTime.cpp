#include "record/DateTime.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/Digits.h"
#include "firmware/PackedDate.h"
#include "record/Characters.h"

namespace norv::shared::battery::record {

namespace {

constexpr std::string_view kLayout = "0000-00-00T00:00:00?00:00";  // '?' stands for the sign of the offset
constexpr std::string_view kMidnight = "0000-00-00T00:00:00+00:00";
constexpr std::size_t kSign = 19;

// A number inside the text, and what it may be.
struct Part {
  std::size_t position;
  std::size_t digits;
  int lowest;
  int highest;
};

constexpr Part kYear{0, 4, 0, 9999};
constexpr Part kMonth{5, 2, 1, 12};
constexpr Part kDay{8, 2, 1, 31};
constexpr Part kHour{11, 2, 0, 23};
constexpr Part kMinute{14, 2, 0, 59};
constexpr Part kSecond{17, 2, 0, 60};

using Characters = std::array<char, kLayout.size()>;

int Read(std::string_view text, Part part) {
  return base::ReadDigits(text.substr(part.position, part.digits));
}

bool IsWithin(Part part, int value) {
  return value >= part.lowest && value <= part.highest;
}

// Writes `value`, which is within the part, with leading zeros.
void Write(Characters& text, Part part, int value) {
  for (std::size_t end = part.position + part.digits; end > part.position; --end) {
    text[end - 1] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
}

struct Warranty {
  std::string_view type;
  int years;
  int months;
};

constexpr std::array<Warranty, 4> kWarranties{
    {{"6_MONTHS", 0, 6}, {"1_YEAR", 1, 0}, {"2_YEARS", 2, 0}, {"3_YEARS", 3, 0}}};

}  // namespace

bool IsDateTimeText(std::string_view text) {
  if (text.size() != kLayout.size() || (text[kSign] != '+' && text[kSign] != '-') ||
      !HasLayout(text.substr(0, kSign), kLayout.substr(0, kSign)) ||
      !HasLayout(text.substr(kSign + 1), kLayout.substr(kSign + 1))) {
    return false;
  }
  constexpr std::array kRanged{kMonth, kDay, kHour, kMinute, kSecond};
  return std::all_of(kRanged.begin(), kRanged.end(), [text](Part part) { return IsWithin(part, Read(text, part)); });
}

DateTimeText ComposeDateTime(const Date& date) {
  if (!IsWithin(kYear, date.year) || !IsWithin(kMonth, date.month) || !IsWithin(kDay, date.day)) {
    return {};
  }
  Characters text{};
  std::copy(kMidnight.begin(), kMidnight.end(), text.begin());
  Write(text, kYear, date.year);
  Write(text, kMonth, date.month);
  Write(text, kDay, date.day);
  return DateTimeText({text.data(), text.size()});
}

Date ReadDate(std::string_view text) {
  if (!IsDateTimeText(text)) {
    return {};
  }
  return {.year = Read(text, kYear), .month = Read(text, kMonth), .day = Read(text, kDay)};
}

Date UnpackDate(unsigned short packed) {
  const firmware::PackedDate date = firmware::Unpack(packed);
  return {.year = date.year, .month = date.month, .day = date.day};
}

Date AddWarranty(Date made, std::string_view warrantyType) {
  for (const Warranty& warranty : kWarranties) {
    if (warranty.type == warrantyType) {
      made.year += warranty.years;
      made.month += warranty.months;
      if (made.month > 12) {
        made.year += made.month / 12;
        made.month -= 12;
      }
    }
  }
  return made;
}

}  // namespace norv::shared::battery::record
