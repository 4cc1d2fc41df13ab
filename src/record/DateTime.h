// Date-time texts: "2021-05-06T00:00:00+00:00".
#pragma once

#include <string_view>

#include "record/FixedText.h"

namespace norv::shared::battery::record {

struct Date {
  int year = 0;
  int month = 0;
  int day = 0;
};

using DateTimeText = FixedText<25>;

// True for a whole date-time text with a month of 1 to 12, a day of 1 to 31 whatever the month, an hour of 0 to 23, a
// minute of 0 to 59 and a second of 0 to 60 (a leap second).
bool IsDateTimeText(std::string_view text);

// The text of midnight of `date`; the empty text when it would not be a date-time text.
DateTimeText ComposeDateTime(const Date& date);

// Year, month and day of a date-time text; all 0 when it is none.
Date ReadDate(std::string_view text);

// The date of a packed word. No range is tested.
Date UnpackDate(unsigned short packed);

// `made` moved forward by a warranty type, "6_MONTHS", "1_YEAR", "2_YEARS" or "3_YEARS"; any other moves nothing. The
// day stays, also where the month has no such day.
Date AddWarranty(Date made, std::string_view warrantyType);

}  // namespace norv::shared::battery::record
