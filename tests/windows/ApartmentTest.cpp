// The WMI client on threads that their hosts have prepared for COM in different ways.
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <optional>
#include <string>
#include <thread>

#include "ScriptedWmi.h"
#include "norv/shared/wmi/WMIClient.h"

namespace norv::test {
namespace {

constexpr const wchar_t* kPath = L"\\\\.\\root\\test";

// Runs on a thread of its own, which knows nothing of COM yet.
void OnNewThread(const std::function<void()>& action) {
  std::thread(action).join();
}

// The apartment of this thread; nothing when it has none.
std::optional<APTTYPE> Apartment() {
  APTTYPE type = APTTYPE_CURRENT;
  APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
  const HRESULT result = CoGetApartmentType(&type, &qualifier);
  // A thread without COM seems to be part of the multithreaded apartment while another thread keeps that alive.
  return SUCCEEDED(result) && qualifier != APTTYPEQUALIFIER_IMPLICIT_MTA ? std::optional(type) : std::nullopt;
}

void Script(ScriptedWmi& wmi) {
  wmi.namespaces[kPath].queries[L"query"].rows = {{{L"Name", Text(L"text")}}};
}

void UseClient() {
  shared::wmi::WMIClient client(kPath);
  EXPECT_EQ(client.Query(L"query"), 0);
  EXPECT_TRUE(client.GetNext());
  std::string text;
  EXPECT_EQ(client.GetValue(L"Name", text), 0);
  EXPECT_EQ(text, "text");
}

void WithHostsCom(DWORD model, APTTYPE apartment) {
  ASSERT_EQ(CoInitializeEx(nullptr, model), S_OK);
  {
    ScriptedWmi wmi;
    Script(wmi);
    UseClient();
    UseClient();
    EXPECT_EQ(Apartment(), apartment);
  }
  CoUninitialize();
  EXPECT_EQ(Apartment(), std::nullopt) << "the client has kept COM alive";
}

TEST(Apartments, AHostInTheMultithreadedApartment) {
  OnNewThread([] { WithHostsCom(COINIT_MULTITHREADED, APTTYPE_MTA); });
}

TEST(Apartments, AHostWithAnApartmentOfItsOwn) {
  OnNewThread([] {
    // The first such apartment of a process is its main one.
    WithHostsCom(COINIT_APARTMENTTHREADED, APTTYPE_MAINSTA);
  });
}

TEST(Apartments, AHostThatUsesNoComOnItsThread) {
  // Another thread of the host does, and registers the server there.
  std::promise<void> ready;
  std::promise<void> done;
  std::thread other([&] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    {
      ScriptedWmi wmi;
      Script(wmi);
      ready.set_value();
      done.get_future().wait();
    }
    CoUninitialize();
  });
  ready.get_future().wait();
  OnNewThread([] {
    EXPECT_EQ(Apartment(), std::nullopt);
    UseClient();
    EXPECT_EQ(Apartment(), std::nullopt);
  });
  done.set_value();
  other.join();
}

TEST(Apartments, AFailedConnectionLeavesComAsItWas) {
  OnNewThread([] {
    shared::wmi::WMIClient client(L"\\\\.\\root\\nowhere");
    EXPECT_NE(client.Query(L"query"), 0);
    EXPECT_EQ(Apartment(), std::nullopt);
  });
}

TEST(Apartments, AClientEndsOnTheThreadThatItWasMadeOn) {
  // A host that breaks the rule leaves its own use of COM on the other thread untouched.
  OnNewThread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    {
      ScriptedWmi wmi;
      Script(wmi);
      std::optional<shared::wmi::WMIClient> client;
      OnNewThread([&client] { client.emplace(kPath); });
      client.reset();
      EXPECT_EQ(Apartment(), APTTYPE_MTA);
    }
    CoUninitialize();
  });
}

}  // namespace
}  // namespace norv::test
