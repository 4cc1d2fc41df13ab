// What a record learns from WMI: the operating system's rates and the BIOS battery settings, over real COM.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ScriptedWmi.h"
#include "battery/NorvBatteryInfo.h"

namespace norv::test {
namespace {

using shared::battery::NorvBatteryInfo;

constexpr std::array<unsigned char, 128> kBlock{};

class RecordThroughCom : public testing::Test {
 protected:
  RecordThroughCom() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    wmi_ = std::make_unique<ScriptedWmi>();
  }
  ~RecordThroughCom() override {
    wmi_.reset();
    CoUninitialize();
  }

  using Rates = std::pair<unsigned int, unsigned int>;

  Rates RatesOf(const std::vector<ScriptedRow>& rows) {
    wmi_->namespaces[L"\\\\.\\root\\wmi"].queries[L"SELECT * FROM BatteryStatus"].rows = rows;
    NorvBatteryInfo info(kBlock.data());
    return {info.GetBatteryChargeRate(), info.GetBatteryDischargeRate()};
  }

  void Board(const wchar_t* product, const wchar_t* biosName) {
    auto& queries = wmi_->namespaces[L"\\\\.\\root\\cimv2"].queries;
    queries[L"SELECT * FROM Win32_BaseBoard"].rows = {{{L"Product", Text(product)}}};
    queries[L"SELECT * FROM Win32_BIOS"].rows = {{{L"Name", Text(biosName)}}};
  }

  void Setting(const std::wstring& name, const wchar_t* property, const ScriptedValue& value) {
    wmi_->namespaces[kSettings].queries[L"SELECT * FROM Norv_BIOSSetting where Name = '" + name + L"'"].rows = {
        {{property, value}}};
  }

  using Texts = std::pair<std::string, std::string>;

  // The adaptive battery optimizer, the battery care.
  Texts Settings() {
    NorvBatteryInfo info(kBlock.data());
    info.GetBiosBatterySettings();
    return {info.GetAdaptiveBatteryOptimizerInfo(), info.GetBatteryCareInfo()};
  }

  static constexpr const wchar_t* kSettings = L"\\\\.\\root\\Norv\\InstrumentedBios";
  std::unique_ptr<ScriptedWmi> wmi_;
};

TEST_F(RecordThroughCom, Rates) {
  EXPECT_EQ(RatesOf({}), Rates(0, 0));
  EXPECT_EQ(RatesOf({{{L"ChargeRate", UnsignedWord(1500)}, {L"DischargeRate", UnsignedWord(20)}}}), Rates(1500, 20));
  EXPECT_EQ(RatesOf({{{L"ChargeRate", UnsignedWord(0x80000000U)}, {L"DischargeRate", Text(L"33")}}}),
            Rates(0x80000000U, 33));
}

TEST_F(RecordThroughCom, RatesEndAfterExactlyTwoReads) {
  const ScriptedRow both{{L"ChargeRate", UnsignedWord(1)}, {L"DischargeRate", UnsignedWord(2)}};
  const ScriptedRow more{{L"ChargeRate", UnsignedWord(3)}, {L"DischargeRate", UnsignedWord(4)}};
  const ScriptedRow chargeOnly{{L"ChargeRate", UnsignedWord(5)}, {L"DischargeRate", Nothing()}};
  EXPECT_EQ(RatesOf({both, more}), Rates(1, 2));
  EXPECT_EQ(RatesOf({chargeOnly, chargeOnly, more}), Rates(5, 0));
  EXPECT_EQ(RatesOf({chargeOnly, both, more}), Rates(3, 4)) << "one, three, five reads: to the end";
}

TEST_F(RecordThroughCom, RatesOfAFailingProviderAreZero) {
  wmi_->namespaces[L"\\\\.\\root\\wmi"].queries[L"SELECT * FROM BatteryStatus"].end =
      static_cast<HRESULT>(WBEM_E_PROVIDER_FAILURE);
  EXPECT_EQ(RatesOf({}), Rates(0, 0));
}

TEST_F(RecordThroughCom, Settings) {
  Board(L"8ABC", L"F.05");
  EXPECT_EQ(Settings(), Texts("Not supported", "Not supported"));
  Setting(L"Adaptive Battery Extender", L"CurrentValue", Text(L"Enable"));
  Setting(L"Adaptive Battery Extender Status", L"CurrentValue", Text(L"Activated"));
  Setting(L"Battery Care Function", L"Value", Text(L"Maximise \u20AC"));
  EXPECT_EQ(Settings(), Texts("Enabled - Activated", "Maximise \xE2\x82\xAC"));
  Setting(L"Adaptive Battery Extender Status", L"CurrentValue", Nothing());
  EXPECT_EQ(Settings().first, "Enabled - Not Activated");
  Setting(L"Adaptive Battery Extender", L"CurrentValue", Text(L"Disable"));
  EXPECT_EQ(Settings().first, "Disabled - Not Activated");
  Setting(L"Adaptive Battery Extender", L"CurrentValue", Failing(E_FAIL));
  EXPECT_EQ(Settings().first, "Not supported");
}

TEST_F(RecordThroughCom, AnExcludedBoardIsNotAskedForItsSettings) {
  Setting(L"Battery Care Function", L"Value", Text(L"Enable"));
  Board(L"9XQ4", L"F.16");
  EXPECT_EQ(Settings(), Texts("Not supported", "Not supported"));
  EXPECT_THAT(wmi_->connections, testing::Not(testing::Contains(kSettings)));
  Board(L"9XQ4", L"F.17");
  EXPECT_EQ(Settings(), Texts("Not supported", "Enable"));
}

}  // namespace
}  // namespace norv::test
