// The WMI of the system that the tests run on.
#include <gtest/gtest.h>

#include <string>

#include "norv/shared/wmi/WMIClient.h"
#include "settings/PlatformExclusion.h"

namespace norv::test {
namespace {

using shared::wmi::WMIClient;

TEST(SystemWmi, TellsBoardAndBios) {
  WMIClient client(L"\\\\.\\root\\cimv2");
  ASSERT_EQ(client.Query(L"SELECT * FROM Win32_BaseBoard"), 0);
  ASSERT_TRUE(client.GetNext());
  std::string product;
  EXPECT_EQ(client.GetValue(L"Product", product), 0);
  EXPECT_NE(product, "");
  ASSERT_EQ(client.Query(L"SELECT * FROM Win32_BIOS"), 0);
  ASSERT_TRUE(client.GetNext());
  std::string name;
  EXPECT_EQ(client.GetValue(L"Name", name), 0);
  EXPECT_NE(name, "");
  EXPECT_FALSE(shared::battery::IsPlatformExcluded());
}

TEST(SystemWmi, RefusesWhatItDoesNotHave) {
  WMIClient client(L"\\\\.\\root\\cimv2");
  // Windows refuses to look for a class that it does not know; Wine looks and finds nothing.
  client.Query(L"SELECT * FROM Norv_NoSuchClass");
  EXPECT_FALSE(client.GetNext());
  EXPECT_LT(client.Query(L"no query at all"), 0);
}

}  // namespace
}  // namespace norv::test
