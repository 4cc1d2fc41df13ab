// The BIOS battery-care settings: answers, and what is asked of WMI on the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "battery/NorvBatteryInfo.h"
#include "norv/simulator/SimulatedMachine.h"
#include "settings/BiosBatterySettings.h"
#include "settings/PlatformExclusion.h"
#include "unit/support/TestBlock.h"

namespace norv::test {
namespace {

using shared::battery::BiosBatterySettings;
using shared::battery::IsPlatformExcluded;
using shared::battery::NorvBatteryInfo;
using simulator::Operation;
using simulator::SimulatedMachine;
using testing::ElementsAre;

constexpr const char* kCimv2 = R"("\\\\.\\root\\cimv2")";
constexpr const char* kBios = R"("\\\\.\\root\\Norv\\InstrumentedBios")";

const Operation kConnectCimv2{"ConnectWmi", "\\\\.\\root\\cimv2"};
const Operation kAskBoard{"Query", "SELECT * FROM Win32_BaseBoard"};
const Operation kReadProduct{"ReadText", "Product"};
const Operation kAskBios{"Query", "SELECT * FROM Win32_BIOS"};
const Operation kReadName{"ReadText", "Name"};
const Operation kConnectSettings{"ConnectWmi", "\\\\.\\root\\Norv\\InstrumentedBios"};
const Operation kAskExtender{"Query", "SELECT * FROM Norv_BIOSSetting where Name = 'Adaptive Battery Extender'"};
const Operation kAskStatus{"Query", "SELECT * FROM Norv_BIOSSetting where Name = 'Adaptive Battery Extender Status'"};
const Operation kAskCare{"Query", "SELECT * FROM Norv_BIOSSetting where Name = 'Battery Care Function'"};
const Operation kReadCurrentValue{"ReadText", "CurrentValue"};
const Operation kReadValue{"ReadText", "Value"};
const Operation kNext{"Next", ""};

std::unique_ptr<SimulatedMachine> Machine(const std::string& wmi, const std::string& faults = "[]") {
  return SimulatedMachine::FromText(R"({"description": "test", "wmi": {)" + wmi + R"(}, "faults": )" + faults + "}",
                                    "here");
}

std::string Board(const std::string& product, const std::string& biosName) {
  return std::string(kCimv2) + R"(: {"Win32_BaseBoard": [{"Product": )" + product + R"(}], "Win32_BIOS": [{"Name": )" +
         biosName + "}]}";
}

// One BIOS setting as a row.
std::string Row(const std::string& name, const std::string& property, const std::string& value) {
  return R"({"Name": ")" + name + R"(", ")" + property + R"(": )" + value + "}";
}

std::string Settings(const std::string& rows) {
  return std::string(kBios) + R"(: {"Norv_BIOSSetting": [)" + rows + "]}";
}

std::string Extender(const std::string& value) {
  return Row("Adaptive Battery Extender", "CurrentValue", value);
}
std::string Status(const std::string& value) {
  return Row("Adaptive Battery Extender Status", "CurrentValue", value);
}
std::string Care(const std::string& value) {
  return Row("Battery Care Function", "Value", value);
}

struct Texts {
  std::string adaptive;
  std::string care;
  bool operator==(const Texts& other) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Texts& texts) {
  return stream << '"' << texts.adaptive << "\" / \"" << texts.care << '"';
}

Texts Read() {
  const BiosBatterySettings settings;
  return {settings.GetAdaptiveBatteryOptimizerInfo(), settings.GetBatteryCareInfo()};
}

const Texts kNotSupported{"Not supported", "Not supported"};

struct ExclusionRow {
  const char* product;
  const char* biosName;
  bool excluded;
};

void PrintTo(const ExclusionRow& row, std::ostream* stream) {
  *stream << row.product << row.biosName;
}

class ExcludedBoard : public testing::TestWithParam<ExclusionRow> {};

TEST_P(ExcludedBoard, DependsOnBoardAndBiosVersion) {
  const auto machine = Machine(Board(GetParam().product, GetParam().biosName));
  EXPECT_EQ(IsPlatformExcluded(), GetParam().excluded) << GetParam().product << ' ' << GetParam().biosName;
}

INSTANTIATE_TEST_SUITE_P(
    Boards, ExcludedBoard,
    testing::Values(ExclusionRow{R"("9XQ4")", R"("F.16")", true}, ExclusionRow{R"("9XQ4")", R"("F.17")", false},
                    ExclusionRow{R"("9XQ4")", R"("F.05")", true}, ExclusionRow{R"("9XQ4")", R"("F.20")", false},
                    ExclusionRow{R"("9XQ4")", R"("T.10")", true}, ExclusionRow{R"("9XQ4")", R"("T.20")", true},
                    ExclusionRow{R"("9XQ4")", R"("f.20")", true}, ExclusionRow{R"("9XQ4")", R"("F")", true},
                    ExclusionRow{R"("9XQ4")", R"("F.")", true}, ExclusionRow{R"("9XQ4")", R"("F.xx")", true},
                    ExclusionRow{R"("9XQ4")", R"("")", true}, ExclusionRow{R"("9XQ4")", R"("F. 9")", true},
                    ExclusionRow{R"("9XQ4")", R"("F.+9")", true}, ExclusionRow{R"("9XQ4")", R"("F.-9")", true},
                    ExclusionRow{R"("9XQ4")", R"("F.9x")", true}, ExclusionRow{R"("9XQ4")", R"("F.179")", false},
                    ExclusionRow{R"("9XQ4")", R"("F.169")", true}, ExclusionRow{R"("9XQ4")", R"("F.16 Ver. 99")", true},
                    ExclusionRow{R"("9XQ4")", R"("F017")", false}, ExclusionRow{R"("9XQ4")", R"("FX99")", false},
                    ExclusionRow{R"("9XQ4")", R"({"fail": 5})", true}, ExclusionRow{R"("9xq4")", R"("F.01")", false},
                    ExclusionRow{R"("9XQ40")", R"("F.01")", false}, ExclusionRow{R"("9XQ")", R"("F.01")", false},
                    ExclusionRow{R"("")", R"("F.01")", false}, ExclusionRow{R"(" 9XQ4")", R"("F.01")", false},
                    ExclusionRow{R"({"fail": 5})", R"("F.01")", false}));

TEST(Exclusion, AsksBoardThenBiosOverOneConnection) {
  const auto machine = Machine(Board(R"("9XQ4")", R"("F.16")"));
  IsPlatformExcluded();
  EXPECT_THAT(machine->Operations(),
              ElementsAre(kConnectCimv2, kAskBoard, kNext, kReadProduct, kAskBios, kNext, kReadName));
}

TEST(Exclusion, AsksNothingOfTheBiosOfAnotherBoard) {
  const auto machine = Machine(Board(R"("ABCD")", R"("F.16")"));
  IsPlatformExcluded();
  EXPECT_THAT(machine->Operations(), ElementsAre(kConnectCimv2, kAskBoard, kNext, kReadProduct));
}

TEST(Exclusion, FailuresOnTheWayKeepTheAnswerAsItStands) {
  const std::string classes = R"(: {"Win32_BaseBoard": [{"Product": "9XQ4"}], "Win32_BIOS": )";
  struct FailureRow {
    std::string wmi;
    std::string faults;
    bool excluded;
  };
  const std::vector<FailureRow> rows{
      {std::string(kCimv2) + R"(: {"connectFails": 5})", "[]", false},
      {std::string(kCimv2) + R"(: {"Win32_BaseBoard": {"queryFails": 5}})", "[]", false},
      {std::string(kCimv2) + R"(: {"Win32_BaseBoard": []})", "[]", false},
      {std::string(kCimv2) + classes + R"({"queryFails": 5}})", "[]", true},
      {std::string(kCimv2) + classes + "[]}", "[]", true},
      {Board(R"("9XQ4")", R"("F.17")"), R"([{"operation": "ConnectWmi", "throws": "int"}])", false},
      {Board(R"("9XQ4")", R"("F.17")"), R"([{"operation": "Query", "call": 1, "throws": "text"}])", false},
      {Board(R"("9XQ4")", R"("F.17")"), R"([{"operation": "ReadText", "call": 1, "throws": "other"}])", false},
      {Board(R"("9XQ4")", R"("F.17")"), R"([{"operation": "Query", "call": 2, "throws": "string"}])", true},
      {Board(R"("9XQ4")", R"("F.17")"), R"([{"operation": "Next", "call": 2, "throws": "runtime_error"}])", true},
      {Board(R"("9XQ4")", R"("F.17")"), R"([{"operation": "ReadText", "call": 2, "throws": "bad_alloc"}])", true},
  };
  for (const FailureRow& row : rows) {
    const auto machine = Machine(row.wmi, row.faults);
    EXPECT_EQ(IsPlatformExcluded(), row.excluded) << row.wmi << row.faults;
  }
}

TEST(BiosSettings, AnExcludedPlatformIsAskedForNothing) {
  const auto machine = Machine(Board(R"("9XQ4")", R"("F.16")") + "," + Settings(Extender(R"("Enable")")));
  EXPECT_EQ(Read(), kNotSupported);
  EXPECT_EQ(machine->Operations().size(), 7U) << "the check only";
}

TEST(BiosSettings, AreReadFromTheFirstGoodBiosOn) {
  const auto machine =
      Machine(Board(R"("9XQ4")", R"("F.17")") + "," +
              Settings(Extender(R"("Enable")") + "," + Status(R"("Activated")") + "," + Care(R"("Maximize")")));
  EXPECT_EQ(Read(), (Texts{"Enabled - Activated", "Maximize"}));
}

TEST(BiosSettings, AskOverOneConnectionInTheirOrder) {
  const auto machine =
      Machine(Settings(Extender(R"("Enable")") + "," + Status(R"("Activated")") + "," + Care(R"("Maximize")")));
  Read();
  EXPECT_THAT(machine->Operations(),
              ElementsAre(kConnectCimv2, kConnectSettings, kAskExtender, kNext, kReadCurrentValue, kAskStatus, kNext,
                          kReadCurrentValue, kAskCare, kNext, kReadValue));
}

TEST(BiosSettings, ADisabledExtenderIsNotAskedForItsStatus) {
  const auto machine = Machine(Settings(Extender(R"("Disable")") + "," + Status(R"("Activated")")));
  EXPECT_EQ(Read().adaptive, "Disabled - Not Activated");
  EXPECT_THAT(machine->Operations(), testing::Not(testing::Contains(kAskStatus)));
}

struct AdaptiveRow {
  const char* extender;  // a JSON value; null: no such setting
  const char* status;
  const char* text;
};

void PrintTo(const AdaptiveRow& row, std::ostream* stream) {
  *stream << (row.extender != nullptr ? row.extender : "none") << (row.status != nullptr ? row.status : "none");
}

class Adaptive : public testing::TestWithParam<AdaptiveRow> {};

TEST_P(Adaptive, ComesFromSettingAndStatus) {
  std::string rows = Row("Something Else", "CurrentValue", R"("Enable")");
  if (GetParam().extender != nullptr) {
    rows += "," + Extender(GetParam().extender);
  }
  if (GetParam().status != nullptr) {
    rows += "," + Status(GetParam().status);
  }
  const auto machine = Machine(Settings(rows));
  EXPECT_EQ(Read(), (Texts{GetParam().text, "Not supported"}));
}

INSTANTIATE_TEST_SUITE_P(Pairs, Adaptive,
                         testing::Values(AdaptiveRow{R"("Enable")", R"("Activated")", "Enabled - Activated"},
                                         AdaptiveRow{R"("Enable")", R"("activated")", "Enabled - Not Activated"},
                                         AdaptiveRow{R"("Enable")", R"("Activated ")", "Enabled - Not Activated"},
                                         AdaptiveRow{R"("Enable")", R"("Not Activated")", "Enabled - Not Activated"},
                                         AdaptiveRow{R"("Enable")", R"("")", "Enabled - Not Activated"},
                                         AdaptiveRow{R"("Enable")", R"({"fail": 5})", "Enabled - Not Activated"},
                                         AdaptiveRow{R"("Enable")", nullptr, "Enabled - Not Activated"},
                                         AdaptiveRow{R"("Disable")", R"("Activated")", "Disabled - Not Activated"},
                                         AdaptiveRow{R"("Disable")", nullptr, "Disabled - Not Activated"},
                                         AdaptiveRow{R"("Enabled")", R"("Activated")", "Disabled - Not Activated"},
                                         AdaptiveRow{R"("enable")", R"("Activated")", "Disabled - Not Activated"},
                                         AdaptiveRow{R"("Activated")", R"("Activated")", "Disabled - Not Activated"},
                                         AdaptiveRow{R"("")", R"("Activated")", "Disabled - Not Activated"},
                                         AdaptiveRow{R"({"fail": 5})", R"("Activated")", "Not supported"},
                                         AdaptiveRow{nullptr, R"("Activated")", "Not supported"}));

TEST(BiosSettings, BatteryCareIsTheBiosOwnText) {
  const auto machine =
      Machine(Settings(R"({"Name": "Battery Care Function", "CurrentValue": "wrong", "Value": "Enable"})"));
  EXPECT_EQ(Read(), (Texts{"Not supported", "Enable"}));
}

TEST(BiosSettings, BatteryCareMayBeEmpty) {
  const auto machine = Machine(Settings(Care(R"("")")));
  EXPECT_EQ(Read().care, "");
}

TEST(BiosSettings, BatteryCareThatCannotBeReadIsNotSupported) {
  const auto machine = Machine(Settings(Care(R"({"fail": 5})")));
  EXPECT_EQ(Read(), kNotSupported);
}

TEST(BiosSettings, FailuresAtEachStepKeepWhatIsKnown) {
  const std::string all =
      Settings(Extender(R"("Enable")") + "," + Status(R"("Activated")") + "," + Care(R"("Maximize")"));
  struct FailureRow {
    std::string wmi;
    std::string faults;
    Texts texts;
  };
  const auto fault = [](const std::string& operation, int call, const std::string& what) {
    return R"([{"operation": ")" + operation + R"(", "call": )" + std::to_string(call) + ", " + what + "}]";
  };
  const std::string thrown = R"("throws": "runtime_error")";
  const std::string code = R"("code": 5)";
  const std::vector<FailureRow> rows{
      {"", "[]", kNotSupported},
      {std::string(kBios) + R"(: {"connectFails": 5})", "[]", kNotSupported},
      {std::string(kBios) + R"(: {"Norv_BIOSSetting": {"queryFails": 5}})", "[]", kNotSupported},
      {all, fault("ConnectWmi", 2, thrown), kNotSupported},
      {all, fault("Query", 1, code), {"Not supported", "Maximize"}},
      {all, fault("Query", 1, thrown), kNotSupported},
      {all, fault("Next", 1, R"("fails": true)"), {"Not supported", "Maximize"}},
      {all, fault("Next", 1, thrown), kNotSupported},
      {all, fault("ReadText", 1, code), {"Not supported", "Maximize"}},
      {all, fault("ReadText", 1, thrown), kNotSupported},
      {all, fault("Query", 2, code), {"Enabled - Not Activated", "Maximize"}},
      {all, fault("Query", 2, thrown), kNotSupported},
      {all, fault("Next", 2, R"("fails": true)"), {"Enabled - Not Activated", "Maximize"}},
      {all, fault("ReadText", 2, code), {"Enabled - Not Activated", "Maximize"}},
      {all, fault("ReadText", 2, thrown), kNotSupported},
      {all, fault("Query", 3, code), {"Enabled - Activated", "Not supported"}},
      {all, fault("Query", 3, thrown), {"Enabled - Activated", "Not supported"}},
      {all, fault("Next", 3, R"("fails": true)"), {"Enabled - Activated", "Not supported"}},
      {all, fault("Next", 3, thrown), {"Enabled - Activated", "Not supported"}},
      {all, fault("ReadText", 3, code), {"Enabled - Activated", "Not supported"}},
      {all, fault("ReadText", 3, thrown), {"Enabled - Activated", "Not supported"}},
      {all, fault("ReadText", 3, R"("throws": "int")"), {"Enabled - Activated", "Not supported"}},
  };
  for (const FailureRow& row : rows) {
    const auto machine = Machine(row.wmi, row.faults);
    EXPECT_EQ(Read(), row.texts) << row.wmi << row.faults;
  }
}

TEST(BiosSettings, ARecordNeverAskedForThemHasEmptyTexts) {
  const NorvBatteryInfo info(TestBlock().Data());
  EXPECT_STREQ(info.GetAdaptiveBatteryOptimizerInfo(), "");
  EXPECT_STREQ(info.GetBatteryCareInfo(), "");
}

TEST(BiosSettings, ARecordReportsTheNewestReading) {
  NorvBatteryInfo info(TestBlock().Data());
  {
    const auto machine = Machine(Settings(Extender(R"("Disable")") + "," + Care(R"("First")")));
    info.GetBiosBatterySettings();
    EXPECT_STREQ(info.GetBatteryCareInfo(), "First");
  }
  const char* const first = info.GetBatteryCareInfo();
  const auto machine =
      Machine(Settings(Extender(R"("Enable")") + "," + Status(R"("Activated")") + "," + Care(R"("Second")")));
  info.GetBiosBatterySettings();
  EXPECT_STREQ(info.GetAdaptiveBatteryOptimizerInfo(), "Enabled - Activated");
  EXPECT_STREQ(info.GetBatteryCareInfo(), "Second");
  EXPECT_STREQ(first, "First");
  const NorvBatteryInfo copy(info);
  EXPECT_EQ(copy.GetBatteryCareInfo(), info.GetBatteryCareInfo());
}

}  // namespace
}  // namespace norv::test
