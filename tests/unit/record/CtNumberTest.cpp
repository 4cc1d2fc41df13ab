// The fields of the CT number.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "battery/NorvBatteryInfo.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;

struct Row {
  const char* ctNumber;
  const char* assembly;
  const char* revision;
  const char* supplier;
  const char* week;
};

TEST(CtNumber, FieldsExistFromTheirLengthOn) {
  for (const Row& row : {
           Row{"", "NA", "NA", "NA", "NA"},
           Row{"ABC", "NA", "NA", "NA", "NA"},
           Row{"ABCD", "ABCD", "NA", "NA", "NA"},
           Row{"ABCDE", "ABCD", "NA", "NA", "NA"},
           Row{"ABCDEF", "ABCD", "EF", "", ""},
           Row{"ABCDEFG", "ABCD", "EF", "G", ""},
           Row{"ABCDEFGH", "ABCD", "EF", "GH", ""},
           Row{"ABCDEFGHI", "ABCD", "EF", "GH", "I"},
           Row{"ABCDEFGHIJ", "ABCD", "EF", "GH", "IJ"},
           Row{"6ABCDEFGHIJKLMNO", "6ABC", "DE", "FG", "HI"},
       }) {
    const NorvBatteryInfo info(TestBlock().CtNumber(row.ctNumber).Data());
    EXPECT_STREQ(info.GetCtAssembly(), row.assembly) << row.ctNumber;
    EXPECT_STREQ(info.GetCtRevision(), row.revision) << row.ctNumber;
    EXPECT_STREQ(info.GetCtSupplier(), row.supplier) << row.ctNumber;
    EXPECT_STREQ(info.GetCtMfgWeek(), row.week) << row.ctNumber;
  }
}

using Accessor = const char* (NorvBatteryInfo::*)() const;
const std::vector<Accessor> kAccessors{&NorvBatteryInfo::GetCtAssembly, &NorvBatteryInfo::GetCtRevision,
                                       &NorvBatteryInfo::GetCtSupplier, &NorvBatteryInfo::GetCtMfgWeek};

TEST(CtNumber, EachOperationHasOneBufferForTheProcess) {
  const NorvBatteryInfo first(TestBlock().CtNumber("AAAABBCCDD").Data());
  const NorvBatteryInfo second(TestBlock().CtNumber("EEEEFFGGHH").Data());
  for (const Accessor accessor : kAccessors) {
    const char* const before = (first.*accessor)();
    const std::string text = before;
    const char* const after = (second.*accessor)();
    EXPECT_EQ(before, after);
    EXPECT_NE(before, text) << "the first text reads as the second record's";
  }
}

TEST(CtNumber, DifferentOperationsHaveDifferentBuffers) {
  const NorvBatteryInfo info(TestBlock().CtNumber("AAAABBCCDD").Data());
  const char* const assembly = info.GetCtAssembly();
  const char* const revision = info.GetCtRevision();
  const char* const supplier = info.GetCtSupplier();
  const char* const week = info.GetCtMfgWeek();
  EXPECT_STREQ(assembly, "AAAA");
  EXPECT_STREQ(revision, "BB");
  EXPECT_STREQ(supplier, "CC");
  EXPECT_STREQ(week, "DD");
}

TEST(CtNumber, AShorterFieldLeavesNothingOfALongerOne) {
  const NorvBatteryInfo longer(TestBlock().CtNumber("AAAABBCCDD").Data());
  const NorvBatteryInfo shorter(TestBlock().CtNumber("EEEEFFG").Data());
  static_cast<void>(longer.GetCtSupplier());
  const char* const text = shorter.GetCtSupplier();
  EXPECT_STREQ(text, "G");
  EXPECT_EQ(text[2], '\0');
}

TEST(CtNumber, TheFallbackTouchesNoBuffer) {
  const NorvBatteryInfo known(TestBlock().CtNumber("AAAABBCCDD").Data());
  const NorvBatteryInfo empty(TestBlock().Data());
  for (const Accessor accessor : kAccessors) {
    const char* const text = (known.*accessor)();
    const std::string before = text;
    EXPECT_STREQ((empty.*accessor)(), "NA");
    EXPECT_EQ(text, before);
  }
}

}  // namespace
}  // namespace norv::test
