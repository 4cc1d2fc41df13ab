// What the letters and digits of the manufacturer text mean.
#include "record/ManufacturerText.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

#include "battery/NorvBatteryInfo.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;

NorvBatteryInfo Record(const std::string& manufacturer, unsigned designCapacity = 4000) {
  return NorvBatteryInfo(TestBlock().Manufacturer(manufacturer).DesignCapacity(designCapacity).Data());
}

struct Row {
  const char* manufacturer;
  const char* warranty;
  const char* cycleCount;
  const char* calibration;
  const char* packSupplier;
  const char* cellSupplier;
  int overCurrent;  // of a design capacity of 4000
};

void PrintTo(const Row& row, std::ostream* stream) {
  *stream << row.manufacturer;
}

class ManufacturerText : public testing::TestWithParam<Row> {};

TEST_P(ManufacturerText, IsDecodedByItsShape) {
  const NorvBatteryInfo info = Record(GetParam().manufacturer);
  EXPECT_STREQ(info.GetWarrantyType(), GetParam().warranty);
  EXPECT_STREQ(info.GetDesignCycleCount(), GetParam().cycleCount);
  EXPECT_EQ(info.GetCalibrationType(), GetParam().calibration);
  EXPECT_STREQ(info.GetPackSupplier(), GetParam().packSupplier);
  EXPECT_STREQ(info.GetCellSupplier(), GetParam().cellSupplier);
  EXPECT_EQ(info.GetOverCurrentProtection(), GetParam().overCurrent);
}

INSTANTIATE_TEST_SUITE_P(Shapes, ManufacturerText,
                         testing::Values(Row{"123-45-67-A", "1_YEAR", "1000", "3", "LG_CHEMICAL", "SANYO", 4000},
                                         Row{"0x2-7C-01-A", "6_MONTHS", "600", "2", "CELXPERT", "COSLIGHT", 4000},
                                         Row{"123-45-6-A", "1_YEAR", "1000", "3", "LG_CHEMICAL", "SANYO", 4000},
                                         Row{"123-45-0-A", "1_YEAR", "1000", "3", "LG_CHEMICAL", "SANYO", 0},
                                         Row{"21-63-12-A", "2_YEARS", "300", "", "UNKNOWN", "PANASONIC", 4000},
                                         Row{"301-9B-A", "3_YEARS", "300", "1", "SONY", "LISHEN", 4000},
                                         Row{"12-C9-A", "1_YEAR", "600", "", "SUNWODA", "BOSTON_POWER", 4000},
                                         Row{"ABCDE-A", "UNKNOWN", "UNKNOWN", "C", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{"1x3A6-A", "1_YEAR", "1000", "3", "COSMX", "SONY", 4000},
                                         // no shape: codes of '0', which is a warranty code and no other
                                         Row{"", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{"123-45-67", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{"123-45-67-a", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{"123-45-67-A ", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{" 123-45-67-A", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{"123_45_67_A", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000},
                                         Row{"12\xE9-45-67-A", "6_MONTHS", "UNKNOWN", "", "UNKNOWN", "UNKNOWN", 4000}));

// Each of the codes of a table, and every other character a shape lets through.
template <typename Read>
void ExpectTable(const std::map<char, const char*>& table, const char* before, const char* after, Read read) {
  for (const char code : std::string_view("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) {
    const auto known = table.find(code);
    const NorvBatteryInfo info = Record(before + std::string(1, code) + after);
    EXPECT_STREQ(read(info), known != table.end() ? known->second : "UNKNOWN") << code;
  }
}

TEST(ManufacturerCodes, PackSuppliers) {
  ExpectTable({{'1', "SIMPLO"},
               {'2', "DYNAPACK"},
               {'3', "STL_TECHNOLOGY"},
               {'4', "LG_CHEMICAL"},
               {'5', "SAMSUNG_SDI"},
               {'6', "UNKNOWN"},
               {'7', "CELXPERT"},
               {'8', "PANASONIC_SANYO"},
               {'9', "SONY"},
               {'A', "COSMX"},
               {'B', "ATL"},
               {'C', "SUNWODA"}},
              "000-", "0-00-A", [](const NorvBatteryInfo& info) { return info.GetPackSupplier(); });
}

TEST(ManufacturerCodes, CellSuppliers) {
  ExpectTable({{'1', "E-ONE_MOLI"},
               {'2', "LG_CHEMICAL"},
               {'3', "PANASONIC"},
               {'4', "SAMSUNG_SDI"},
               {'5', "SANYO"},
               {'6', "SONY"},
               {'7', "ATL"},
               {'8', "SKC"},
               {'9', "BOSTON_POWER"},
               {'A', "BAK"},
               {'B', "LISHEN"},
               {'C', "COSLIGHT"}},
              "000-0", "-00-A", [](const NorvBatteryInfo& info) { return info.GetCellSupplier(); });
}

TEST(ManufacturerCodes, WarrantyTypes) {
  ExpectTable({{'0', "6_MONTHS"}, {'1', "1_YEAR"}, {'2', "2_YEARS"}, {'3', "3_YEARS"}}, "", "00-00-00-A",
              [](const NorvBatteryInfo& info) { return info.GetWarrantyType(); });
}

TEST(ManufacturerCodes, DesignCycleCounts) {
  ExpectTable({{'1', "300"}, {'2', "600"}, {'3', "1000"}}, "00", "-00-00-A",
              [](const NorvBatteryInfo& info) { return info.GetDesignCycleCount(); });
}

TEST(ManufacturerCodes, CalibrationTypeIsTheCycleCountsCharacterWhateverItIs) {
  for (const char code : std::string_view("0123456789AZaz")) {
    EXPECT_EQ(Record("00" + std::string(1, code) + "-00-00-A").GetCalibrationType(), std::string(1, code));
    EXPECT_EQ(Record("00" + std::string(1, code) + "-00-0-A").GetCalibrationType(), std::string(1, code));
    EXPECT_EQ(Record("00" + std::string(1, code) + "-00-A").GetCalibrationType(), std::string(1, code));
    EXPECT_EQ(Record("00" + std::string(1, code) + "00-A").GetCalibrationType(), std::string(1, code));
  }
}

struct LimitRow {
  const char* manufacturer;
  unsigned designCapacity;
  int limit;
};

TEST(OverCurrentProtection, FollowsItsCode) {
  for (const LimitRow& row : {
           LimitRow{"123-45-67-A", 5000, 5000},   // 67
           LimitRow{"123-45-00-A", 5000, 5000},   // 0
           LimitRow{"123-45-99-A", 5000, 5000},   // 99
           LimitRow{"123-45-20-A", 5000, 5000},   // 20
           LimitRow{"123-45-1A-A", 5000, 5000},   // 27
           LimitRow{"123-45-9:-A", 5000, 5000},   // no shape
           LimitRow{"123-45-9A-A", 5000, 10000},  // 107
           LimitRow{"123-45-B1-A", 5000, 10000},  // 181
           LimitRow{"123-45-BC-A", 5000, 10000},  // 199
           LimitRow{"123-45-BD-A", 5000, 0},      // 200
           LimitRow{"123-45-BN-A", 4000, 2000},   // 210
           LimitRow{"123-45-BW-A", 100, 94},      // 219: just below 0.95 of it
           LimitRow{"123-45-BX-A", 5000, 0},      // 220
           LimitRow{"123-45-K1-A", 5000, 0},      // 271
           LimitRow{"123-45-zz-A", 5000, 0},      // 814
           LimitRow{"123-45-6-A", 5000, 5000},    // 57: the dash counts as -3
           LimitRow{"123-45-1-A", 5000, 5000},    // 7
           LimitRow{"123-45-0-A", 5000, 0},       // -3
           LimitRow{"123-45-B-A", 5000, 10000},   // 177
           LimitRow{"21-63-12-A", 5000, 5000},    // 12
           LimitRow{"21-63-BN-A", 4000, 2000},    // 210
           LimitRow{"123-BN-A", 4000, 4000},      // shapes without a code
           LimitRow{"12-BN-A", 4000, 4000},        LimitRow{"123BN-A", 4000, 4000},
           LimitRow{"anything", 4000, 4000},       LimitRow{"123-45-67-A", 0, 0},
           LimitRow{"123-45-B1-A", 65535, 131070},
       }) {
    EXPECT_EQ(Record(row.manufacturer, row.designCapacity).GetOverCurrentProtection(), row.limit) << row.manufacturer;
  }
}

TEST(OverCurrentProtection, AsksForTheDesignCapacityThroughTheVirtualTable) {
  class Larger : public NorvBatteryInfo {
   public:
    using NorvBatteryInfo::NorvBatteryInfo;
    int GetDesignEnergyCapacity() const override { return 123456; }
  };
  EXPECT_EQ(Larger(TestBlock().Data()).GetOverCurrentProtection(), 123456);
  EXPECT_EQ(Larger(TestBlock().Manufacturer("123-45-BN-A").Data()).GetOverCurrentProtection(), 61728);
}

TEST(OverCurrentProtection, WrapsAroundAsIntegersDo) {
  using shared::battery::record::OverCurrentProtection;
  EXPECT_EQ(OverCurrentProtection("123-45-B1-A", std::numeric_limits<int>::max()), -2);
}

}  // namespace
}  // namespace norv::test
