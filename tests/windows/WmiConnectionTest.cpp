// The WMI client over real COM: a server in this process, real strings and variants.
#include "windows/WmiConnection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Listening.h"
#include "Remarks.h"
#include "ScriptedWmi.h"
#include "norv/shared/wmi/WMIClient.h"

namespace norv::test {
namespace {

using platform::WmiConnection;
using platform::windows::ConnectWmi;
using testing::Each;
using testing::ElementsAre;

constexpr const wchar_t* kPath = L"\\\\.\\root\\test";
constexpr const wchar_t* kQuery = L"SELECT * FROM Things";

constexpr platform::windows::Patience kLittlePatience{.firstObject = std::chrono::milliseconds(50),
                                                      .nextObject = std::chrono::milliseconds(30)};

// What a wait that ended without an object leaves behind.
class Waits : public platform::RemarkListener {
 public:
  void Hear(const platform::Remark& remark) override {
    const auto& wait = std::get<platform::WmiTimedOut>(remark);
    heard_.emplace_back(wait.patience.count(), wait.query);
  }
  const std::vector<std::pair<long long, std::wstring>>& Heard() const { return heard_; }

 private:
  std::vector<std::pair<long long, std::wstring>> heard_;
  platform::Listening<RemarkListener> listening_{this};
};

long Code(HRESULT code) {
  return code;
}

class WmiClient : public testing::Test {
 protected:
  WmiClient() {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    wmi_ = std::make_unique<ScriptedWmi>();
  }
  ~WmiClient() override {
    connection_.reset();
    wmi_.reset();
    CoUninitialize();
  }

  ScriptedQuery& Things() { return wmi_->namespaces[kPath].queries[kQuery]; }

  long Connect(platform::windows::Patience patience = platform::windows::kWmiPatience) {
    return ConnectWmi(kPath, patience, connection_);
  }

  // A client at the only object, which has the property "P".
  void At(const ScriptedValue& value) {
    connection_.reset();
    Things().rows = {{{L"P", value}}};
    ASSERT_EQ(Connect(), 0);
    ASSERT_EQ(connection_->Query(kQuery), 0);
    ASSERT_TRUE(connection_->Next());
  }

  std::string TextOf(const ScriptedValue& value) {
    At(value);
    std::string text = "kept";
    const long code = connection_->ReadText(L"P", text);
    return code == 0 ? text : text + " " + std::to_string(code);
  }

  std::int64_t NumberOf(const ScriptedValue& value) {
    At(value);
    std::uint32_t number = 77;
    const bool read = connection_->ReadNumber(L"P", number);
    EXPECT_TRUE(read || number == 77);
    return read ? std::int64_t{number} : -1;
  }

  std::unique_ptr<ScriptedWmi> wmi_;
  std::unique_ptr<WmiConnection> connection_;
};

TEST_F(WmiClient, WalksThroughTheObjects) {
  Things().rows = {{{L"Name", Text(L"first")}}, {{L"Name", Text(L"second")}}};
  ASSERT_EQ(Connect(), 0);
  ASSERT_EQ(connection_->Query(kQuery), 0);
  std::string text = "kept";
  EXPECT_EQ(connection_->ReadText(L"Name", text), Code(static_cast<HRESULT>(WBEM_E_NOT_FOUND)))
      << "no object is moved to yet";
  EXPECT_EQ(text, "kept");
  EXPECT_TRUE(connection_->Next());
  EXPECT_EQ(connection_->ReadText(L"Name", text), 0);
  EXPECT_EQ(text, "first");
  EXPECT_TRUE(connection_->Next());
  EXPECT_EQ(connection_->ReadText(L"Name", text), 0);
  EXPECT_EQ(text, "second");
  EXPECT_FALSE(connection_->Next());
  EXPECT_FALSE(connection_->Next());
  EXPECT_NE(connection_->ReadText(L"Name", text), 0);
}

TEST_F(WmiClient, AsksForwardOnlyAndSemiSynchronously) {
  Things();
  ASSERT_EQ(Connect(), 0);
  ASSERT_EQ(connection_->Query(kQuery), 0);
  EXPECT_THAT(wmi_->connections, ElementsAre(kPath));
  EXPECT_THAT(wmi_->connectionFlags, ElementsAre(LONG{WBEM_FLAG_CONNECT_USE_MAX_WAIT}));
  EXPECT_THAT(wmi_->queries, ElementsAre(kQuery));
  EXPECT_THAT(wmi_->languages, ElementsAre(L"WQL"));
  EXPECT_THAT(wmi_->queryFlags, ElementsAre(LONG{WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY}));
}

TEST_F(WmiClient, AQueryWithoutObjectsSucceeds) {
  Things();
  ASSERT_EQ(Connect(), 0);
  EXPECT_EQ(connection_->Query(kQuery), 0);
  EXPECT_FALSE(connection_->Next());
}

TEST_F(WmiClient, ASecondQueryTakesTheFirstOnesPlace) {
  Things().rows = {{{L"Name", Text(L"first")}}, {{L"Name", Text(L"second")}}};
  wmi_->namespaces[kPath].queries[L"other"].rows = {{{L"Name", Text(L"third")}}};
  ASSERT_EQ(Connect(), 0);
  ASSERT_EQ(connection_->Query(kQuery), 0);
  ASSERT_TRUE(connection_->Next());
  ASSERT_EQ(connection_->Query(L"other"), 0);
  std::string text;
  EXPECT_NE(connection_->ReadText(L"Name", text), 0) << "the object of the first query is gone";
  EXPECT_TRUE(connection_->Next());
  EXPECT_EQ(connection_->ReadText(L"Name", text), 0);
  EXPECT_EQ(text, "third");
  EXPECT_NE(connection_->Query(L"nothing"), 0);
  EXPECT_FALSE(connection_->Next());
}

TEST_F(WmiClient, FailuresKeepTheirCode) {
  EXPECT_EQ(Connect(), Code(static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE)));
  EXPECT_EQ(connection_, nullptr);
  wmi_->namespaces[kPath].code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
  EXPECT_EQ(Connect(), Code(static_cast<HRESULT>(WBEM_E_ACCESS_DENIED)));
  wmi_->namespaces[kPath].code = S_OK;
  ASSERT_EQ(Connect(), 0);
  EXPECT_EQ(connection_->Query(kQuery), Code(static_cast<HRESULT>(WBEM_E_INVALID_CLASS)));
  Things().code = E_OUTOFMEMORY;
  EXPECT_EQ(connection_->Query(kQuery), Code(E_OUTOFMEMORY));
  EXPECT_FALSE(connection_->Next());
}

TEST_F(WmiClient, AFailureOfTheFirstObjectIsOneOfTheQuery) {
  Things().end = static_cast<HRESULT>(WBEM_E_PROVIDER_LOAD_FAILURE);
  ASSERT_EQ(Connect(), 0);
  EXPECT_EQ(connection_->Query(kQuery), Code(static_cast<HRESULT>(WBEM_E_PROVIDER_LOAD_FAILURE)));
  EXPECT_FALSE(connection_->Next());
}

TEST_F(WmiClient, AFailureOfALaterObjectEndsTheWalk) {
  Things().rows = {{{L"Name", Text(L"first")}}};
  Things().end = static_cast<HRESULT>(WBEM_E_TRANSPORT_FAILURE);
  ASSERT_EQ(Connect(), 0);
  EXPECT_EQ(connection_->Query(kQuery), 0);
  EXPECT_TRUE(connection_->Next());
  EXPECT_FALSE(connection_->Next());
  EXPECT_FALSE(connection_->Next());
  EXPECT_EQ(wmi_->waits.size(), 2U) << "what has failed is not asked again";
}

TEST_F(WmiClient, AProviderThatNeverAnswersIsAFailedQuery) {
  Things().hangs = true;
  const Waits waits;
  ASSERT_EQ(Connect(kLittlePatience), 0);
  EXPECT_EQ(connection_->Query(kQuery), Code(static_cast<HRESULT>(WBEM_E_TIMED_OUT)));
  EXPECT_FALSE(connection_->Next());
  EXPECT_THAT(wmi_->waits, ElementsAre(50));
  EXPECT_THAT(waits.Heard(), ElementsAre(std::pair(50LL, std::wstring(kQuery))));
}

TEST_F(WmiClient, AProviderThatFallsSilentEndsTheWalk) {
  Things().rows = {{{L"Name", Text(L"first")}}};
  Things().hangs = true;
  const Waits waits;
  ASSERT_EQ(Connect(kLittlePatience), 0);
  EXPECT_EQ(connection_->Query(kQuery), 0);
  EXPECT_TRUE(connection_->Next());
  EXPECT_FALSE(connection_->Next());
  EXPECT_FALSE(connection_->Next());
  EXPECT_THAT(wmi_->waits, ElementsAre(50, 30));
  EXPECT_THAT(waits.Heard(), ElementsAre(std::pair(30LL, std::wstring(kQuery))));
}

TEST_F(WmiClient, TheLibraryWaitsForTheFirstObjectAsLongAsForTheNamespace) {
  Things().rows = {{{L"Name", Text(L"first")}}};
  const Waits waits;
  shared::wmi::WMIClient client(kPath);
  EXPECT_EQ(client.Query(kQuery), 0);
  EXPECT_TRUE(client.GetNext());
  EXPECT_FALSE(client.GetNext());
  EXPECT_THAT(wmi_->waits, ElementsAre(120000, 10000));
  EXPECT_THAT(waits.Heard(), testing::IsEmpty()) << "an end is no failure";
}

TEST_F(WmiClient, AllowsImpersonationWhereItIsAskedFor) {
  wmi_->takesBlankets = true;
  Things().rows = {{{L"Name", Text(L"first")}}};
  ASSERT_EQ(Connect(), 0);
  ASSERT_EQ(connection_->Query(kQuery), 0);
  EXPECT_TRUE(connection_->Next());
  EXPECT_THAT(wmi_->impersonationLevels,
              ElementsAre(DWORD{RPC_C_IMP_LEVEL_IMPERSONATE}, DWORD{RPC_C_IMP_LEVEL_IMPERSONATE}))
      << "once for the namespace, once for the query";
}

TEST_F(WmiClient, TextsAreUtf8) {
  EXPECT_EQ(TextOf(Text(L"plain")), "plain");
  EXPECT_EQ(TextOf(Text(L"")), "");
  EXPECT_EQ(TextOf(Text(L"gr\u00FC\u00DF \u20AC \U0001F50B")), "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x94\x8B");
  EXPECT_EQ(TextOf(Text(L"\xD83D")), "\xEF\xBF\xBD") << "half a character";
}

TEST_F(WmiClient, OtherValuesAreConvertedToTexts) {
  EXPECT_EQ(TextOf(Number(VT_I4, -12)), "-12");
  EXPECT_EQ(TextOf(Flag(true)), "True");
  EXPECT_EQ(TextOf(Flag(false)), "False");
  EXPECT_EQ(TextOf(Real(2.5)), "2.5") << "whatever the machine's language";
}

TEST_F(WmiClient, ATextThatCannotBeReadKeepsItsCode) {
  EXPECT_EQ(TextOf(Nothing()), "kept " + std::to_string(DISP_E_TYPEMISMATCH));
  EXPECT_EQ(TextOf(Failing(static_cast<HRESULT>(WBEM_E_ACCESS_DENIED))),
            "kept " + std::to_string(static_cast<HRESULT>(WBEM_E_ACCESS_DENIED)));
  std::string text = "kept";
  EXPECT_EQ(connection_->ReadText(L"Q", text), Code(static_cast<HRESULT>(WBEM_E_NOT_FOUND)));
}

TEST_F(WmiClient, NumbersAreTakenAsTheyAre) {
  EXPECT_EQ(NumberOf(UnsignedWord(0)), 0);
  EXPECT_EQ(NumberOf(UnsignedWord(12345)), 12345);
  EXPECT_EQ(NumberOf(UnsignedWord(0xFFFFFFFFU)), 0xFFFFFFFF) << "handed over as -1";
  EXPECT_EQ(NumberOf(Number(VT_UI4, 0xFFFFFFFE)), 0xFFFFFFFE);
}

TEST_F(WmiClient, OtherValuesAreConvertedToNumbers) {
  EXPECT_EQ(NumberOf(Number(VT_I2, 7)), 7);
  EXPECT_EQ(NumberOf(Number(VT_UI1, 255)), 255);
  EXPECT_EQ(NumberOf(Number(VT_I8, 4294967295)), 4294967295);
  EXPECT_EQ(NumberOf(Text(L"4711")), 4711);
  EXPECT_EQ(NumberOf(Real(2.75)), 3);
}

TEST_F(WmiClient, WhatIsNoNumberIsAFailedRead) {
  EXPECT_EQ(NumberOf(Number(VT_I8, -1)), -1);
  EXPECT_EQ(NumberOf(Number(VT_I8, 4294967296)), -1);
  EXPECT_EQ(NumberOf(Text(L"many")), -1);
  EXPECT_EQ(NumberOf(Nothing()), -1);
  EXPECT_EQ(NumberOf(Failing(E_FAIL)), -1);
}

}  // namespace
}  // namespace norv::test
