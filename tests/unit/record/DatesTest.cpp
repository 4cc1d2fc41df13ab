// Manufacturing date and warranty date.
#include <gtest/gtest.h>

#include <locale>
#include <string>

#include "battery/NorvBatteryInfo.h"
#include "record/DateTime.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;
using shared::battery::record::ComposeDateTime;
using shared::battery::record::Date;
using shared::battery::record::IsDateTimeText;

constexpr unsigned Packed(unsigned year, unsigned month, unsigned day) {
  return (year - 1980) << 9 | month << 5 | day;
}

std::string Made(unsigned packed) {
  return NorvBatteryInfo(TestBlock().PackedDate(packed).Data()).GetManufacturingDate();
}

// The warranty date of a battery made then, by the warranty code in its manufacturer text.
std::string Warranty(unsigned packed, char code) {
  NorvBatteryInfo info(TestBlock().PackedDate(packed).Manufacturer(std::string(1, code) + "23-45-67-A").Data());
  return info.GetWarrantyDate();
}

TEST(ManufacturingDate, IsUnpacked) {
  EXPECT_EQ(Made(0x52A6), "2021-05-06T00:00:00+00:00");
  EXPECT_EQ(Made(Packed(1980, 1, 1)), "1980-01-01T00:00:00+00:00");
  EXPECT_EQ(Made(Packed(2107, 12, 31)), "2107-12-31T00:00:00+00:00");
  EXPECT_EQ(Made(Packed(2009, 9, 9)), "2009-09-09T00:00:00+00:00");
}

TEST(ManufacturingDate, IsEmptyForADateThatCannotBe) {
  for (const unsigned packed : {0U, Packed(2021, 0, 6), Packed(2021, 13, 6), Packed(2021, 14, 6), Packed(2021, 15, 6),
                                Packed(2021, 5, 0), 0xFFFFU}) {
    EXPECT_EQ(Made(packed), "") << packed;
    EXPECT_EQ(Warranty(packed, '1'), "") << packed;
    EXPECT_EQ(Warranty(packed, '0'), "") << packed;
    EXPECT_EQ(Warranty(packed, 'x'), "") << packed;
  }
}

TEST(ManufacturingDate, TakesAnyDayOfAnyMonth) {
  EXPECT_EQ(Made(Packed(2021, 2, 31)), "2021-02-31T00:00:00+00:00");
  EXPECT_EQ(Made(Packed(2021, 4, 31)), "2021-04-31T00:00:00+00:00");
}

TEST(WarrantyDate, MovesByTheWarrantyType) {
  EXPECT_EQ(Warranty(0x52A6, '0'), "2021-11-06T00:00:00+00:00");
  EXPECT_EQ(Warranty(0x52A6, '1'), "2022-05-06T00:00:00+00:00");
  EXPECT_EQ(Warranty(0x52A6, '2'), "2023-05-06T00:00:00+00:00");
  EXPECT_EQ(Warranty(0x52A6, '3'), "2024-05-06T00:00:00+00:00");
  EXPECT_EQ(Warranty(0x52A6, '4'), "2021-05-06T00:00:00+00:00");
}

TEST(WarrantyDate, SixMonthsCrossTheYear) {
  EXPECT_EQ(Warranty(Packed(2021, 6, 1), '0'), "2021-12-01T00:00:00+00:00");
  EXPECT_EQ(Warranty(Packed(2021, 7, 1), '0'), "2022-01-01T00:00:00+00:00");
  EXPECT_EQ(Warranty(Packed(2021, 12, 1), '0'), "2022-06-01T00:00:00+00:00");
}

TEST(WarrantyDate, NeverAdjustsTheDay) {
  EXPECT_EQ(Warranty(Packed(2021, 8, 31), '0'), "2022-02-31T00:00:00+00:00");
  EXPECT_EQ(Warranty(Packed(2020, 2, 29), '1'), "2021-02-29T00:00:00+00:00");
}

TEST(WarrantyDate, ATextWithoutAShapeMeansSixMonths) {
  NorvBatteryInfo info(TestBlock().PackedDate(0x52A6).Data());
  EXPECT_STREQ(info.GetWarrantyDate(), "2021-11-06T00:00:00+00:00");
}

TEST(WarrantyDate, OnlyTheFourTypesMove) {
  using shared::battery::record::AddWarranty;
  for (const char* type : {"", "1_YEARS", "1_year", "1_YEAR ", "6_MONTH", "6_MONTHSX", "UNKNOWN", "4_YEARS"}) {
    const Date moved = AddWarranty({.year = 2021, .month = 7, .day = 6}, type);
    EXPECT_EQ(moved.year, 2021) << type;
    EXPECT_EQ(moved.month, 7) << type;
  }
}

TEST(WarrantyDate, AsksForItsPartsThroughTheVirtualTable) {
  class Other : public NorvBatteryInfo {
   public:
    Other() : NorvBatteryInfo(TestBlock().PackedDate(0x52A6).Data()) { SetWarrantyDate(); }
    const char* GetWarrantyType() const override { return "3_YEARS"; }
    const char* GetManufacturingDate() override { return "2000-01-02T03:04:05-06:00"; }
  };
  EXPECT_STREQ(Other().GetWarrantyDate(), "2003-01-02T00:00:00+00:00");
}

TEST(WarrantyDate, ReadsOnlyAValidDateBack) {
  class Other : public NorvBatteryInfo {
   public:
    Other() : NorvBatteryInfo(TestBlock().PackedDate(0x52A6).Data()) { SetWarrantyDate(); }
    const char* GetManufacturingDate() override { return "2021-05-06"; }
  };
  EXPECT_STREQ(Other().GetWarrantyDate(), "");
}

TEST(DateTimeText, AcceptsItsRanges) {
  for (const char* good : {"0000-01-01T00:00:00+00:00", "9999-12-31T23:59:60-99:99", "2021-02-31T00:00:00+00:00",
                           "2021-05-06T23:59:59-12:30"}) {
    EXPECT_TRUE(IsDateTimeText(good)) << good;
  }
  for (const char* bad : {"", "2021-00-06T00:00:00+00:00", "2021-13-06T00:00:00+00:00", "2021-05-00T00:00:00+00:00",
                          "2021-05-32T00:00:00+00:00", "2021-05-06T24:00:00+00:00", "2021-05-06T00:60:00+00:00",
                          "2021-05-06T00:00:61+00:00", "2021-05-06T00:00:00 00:00", "2021-05-06T00:00:00+00:0",
                          "2021-05-06T00:00:00+00:000", "2021-05-06t00:00:00+00:00", "2021/05/06T00:00:00+00:00",
                          "02021-05-06T00:00:00+00:00", "2021-05-06 00:00:00+00:00", "2021-5-06T00:00:00+00:00",
                          "2021-05-06T00:00:00+0000"}) {
    EXPECT_FALSE(IsDateTimeText(bad)) << bad;
  }
}

TEST(DateTimeText, IsComposedWithLeadingZeros) {
  const auto compose = [](const Date& date) { return std::string(ComposeDateTime(date).View()); };
  EXPECT_EQ(compose({7, 8, 9}), "0007-08-09T00:00:00+00:00");
  EXPECT_EQ(compose({9999, 12, 31}), "9999-12-31T00:00:00+00:00");
  for (const Date& none :
       {Date{10000, 1, 1}, Date{-1, 1, 1}, Date{2021, 0, 1}, Date{2021, 13, 1}, Date{2021, 1, 0}, Date{2021, 1, 32}}) {
    EXPECT_EQ(compose(none), "");
  }
}

// A locale that writes 2,021 for 2021, as a host may set it.
class GroupingLocale {
 public:
  GroupingLocale() : before_(std::locale::global(std::locale(std::locale::classic(), new Grouping))) {}
  GroupingLocale(const GroupingLocale&) = delete;
  GroupingLocale& operator=(const GroupingLocale&) = delete;
  ~GroupingLocale() { std::locale::global(before_); }

 private:
  struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale before_;
};

TEST(Dates, DoNotDependOnTheHostsLocale) {
  const GroupingLocale locale;
  EXPECT_EQ(Made(0x52A6), "2021-05-06T00:00:00+00:00");
  EXPECT_EQ(Warranty(0x52A6, '1'), "2022-05-06T00:00:00+00:00");
}

}  // namespace
}  // namespace norv::test
