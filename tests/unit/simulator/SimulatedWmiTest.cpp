// The WMI of a simulated machine.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "MachineText.h"

namespace norv::simulator {
namespace {

constexpr std::uint32_t kNotFound = 0x80041002;
constexpr std::uint32_t kInvalidClass = 0x80041010;
constexpr std::uint32_t kInvalidQuery = 0x80041017;
constexpr std::uint32_t kTypeMismatch = 0x80020005;

std::unique_ptr<platform::WmiConnection> Connect(SimulatedMachine& machine, const std::wstring& path) {
  std::unique_ptr<platform::WmiConnection> connection;
  EXPECT_EQ(machine.AsPlatform().ConnectWmi(path, connection), 0);
  return connection;
}

// A machine with one class "Thing" in the namespace "root\things", connected to.
class Things {
 public:
  explicit Things(const std::string& rows)
      : machine_(MachineWith(R"("wmi": {"\\\\.\\root\\things": {"Thing": )" + rows + "}}")),
        connection_(Connect(*machine_, L"\\\\.\\root\\things")) {}

  platform::WmiConnection& operator*() { return *connection_; }
  platform::WmiConnection* operator->() { return connection_.get(); }

  // The texts of the property "Id" of all that a query finds.
  std::string Found(const std::wstring& wql) {
    std::string ids;
    EXPECT_EQ(connection_->Query(wql), 0);
    while (connection_->Next()) {
      std::string id;
      EXPECT_EQ(connection_->ReadText(L"Id", id), 0);
      ids += id;
    }
    return ids;
  }

 private:
  std::unique_ptr<SimulatedMachine> machine_;
  std::unique_ptr<platform::WmiConnection> connection_;
};

// The property "P" of the only row, whose value is written as `json`.
class Property {
 public:
  explicit Property(const std::string& json) : things_("[{\"P\": " + json + "}]") {
    EXPECT_EQ(things_->Query(L"SELECT * FROM Thing"), 0);
    EXPECT_TRUE(things_->Next());
  }

  std::string Text() {
    std::string value = "untouched";
    const long code = things_->ReadText(L"P", value);
    EXPECT_TRUE(code == 0 || value == "untouched");
    return code == 0 ? value : "code " + std::to_string(static_cast<std::uint32_t>(code));
  }

  std::string Number() {
    std::uint32_t value = 4711;
    const bool read = things_->ReadNumber(L"P", value);
    EXPECT_TRUE(read || value == 4711);
    return read ? std::to_string(value) : "none";
  }

 private:
  Things things_;
};

TEST(SimulatedWmi, UnlistedNamespacesDoNotConnect) {
  const auto machine = MachineWith(R"("wmi": {"root\\a": {}, "root\\b": {"connectFails": "0x80041003"}})");
  std::unique_ptr<platform::WmiConnection> connection;
  EXPECT_EQ(machine->AsPlatform().ConnectWmi(L"root\\c", connection), Hresult(0x8004100E));
  EXPECT_EQ(machine->AsPlatform().ConnectWmi(L"root\\b", connection), Hresult(0x80041003));
  EXPECT_EQ(connection, nullptr);
  EXPECT_NE(Connect(*machine, L"\\\\.\\ROOT\\A"), nullptr);
  EXPECT_NE(Connect(*machine, L"root/a"), nullptr);
}

TEST(SimulatedWmi, QueriesFindTheRowsInOrder) {
  Things things(R"([{"Id": "a"}, {"Id": "b"}, {"Id": "c"}])");
  EXPECT_FALSE(things->Next());
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing"), "abc");
  EXPECT_FALSE(things->Next());
  EXPECT_EQ(things.Found(L" select*from THING "), "abc");
}

TEST(SimulatedWmi, AConditionChoosesRows) {
  Things things(R"([{"Id": "a", "Name": "One"}, {"Id": "b", "Name": "It's \\ two"}, {"Id": "c", "Name": 3},
                    {"Id": "d"}, {"Id": "e", "Name": null}, {"Id": "f", "name": "one"}])");
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing where Name = 'One'"), "af");
  EXPECT_EQ(things.Found(L"Select * From thing WHERE nAME='oNE'"), "af");
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing where Name = \"It's \\\\ two\""), "b");
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing where Name = 'It\\'s \\\\ two'"), "b");
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing where Name = '3'"), "c");
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing where Name = ''"), "");
  EXPECT_EQ(things.Found(L"SELECT * FROM Thing where Other = 'One'"), "");
}

TEST(SimulatedWmi, OtherQueriesFail) {
  Things things(R"([{"Id": "a"}])");
  for (const wchar_t* wql :
       {L"", L"SELECT", L"SELECT Id FROM Thing", L"SELECT * FROM", L"SELECT * FROM Thing x",
        L"SELECT * FROM Thing where", L"SELECT * FROM Thing where Id", L"SELECT * FROM Thing where Id = ",
        L"SELECT * FROM Thing where Id = a", L"SELECT * FROM Thing where Id = 'a",
        L"SELECT * FROM Thing where Id = 'a' x", L"SELECT * FROM Thing where Id <> 'a'",
        L"SELECT * FROM Thing where Id = 'a\\", L"SELECTED * FROM Thing"}) {
    EXPECT_EQ(things->Query(wql), Hresult(kInvalidQuery)) << wql;
    EXPECT_FALSE(things->Next());
  }
}

TEST(SimulatedWmi, ClassesFailAsDescribed) {
  const auto machine = MachineWith(R"("wmi": {"r": {"Empty": [], "Broken": {"queryFails": -5}, "Full": [{}]}})");
  const auto connection = Connect(*machine, L"r");
  EXPECT_EQ(connection->Query(L"SELECT * FROM Full"), 0);
  EXPECT_EQ(connection->Query(L"SELECT * FROM Other"), Hresult(kInvalidClass));
  EXPECT_FALSE(connection->Next());
  EXPECT_EQ(connection->Query(L"SELECT * FROM Broken"), -5);
  EXPECT_EQ(connection->Query(L"SELECT * FROM Empty"), 0);
  EXPECT_FALSE(connection->Next());
}

TEST(SimulatedWmi, TextsOfEveryKindOfValue) {
  EXPECT_EQ(Property(R"("F.17")").Text(), "F.17");
  EXPECT_EQ(Property(R"("\u00e9\ud83d\ude00")").Text(), "\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(Property("42").Text(), "42");
  EXPECT_EQ(Property("-42").Text(), "-42");
  EXPECT_EQ(Property("18446744073709551615").Text(), "18446744073709551615");
  EXPECT_EQ(Property("1.5").Text(), "1.5");
  EXPECT_EQ(Property("true").Text(), "True");
  EXPECT_EQ(Property("false").Text(), "False");
  EXPECT_EQ(Property("null").Text(), "code " + std::to_string(kTypeMismatch));
  EXPECT_EQ(Property(R"({"fail": "0x80041001"})").Text(), "code " + std::to_string(0x80041001U));
}

TEST(SimulatedWmi, NumbersOfEveryKindOfValue) {
  EXPECT_EQ(Property("0").Number(), "0");
  EXPECT_EQ(Property("4294967295").Number(), "4294967295");
  EXPECT_EQ(Property("4294967296").Number(), "none");
  EXPECT_EQ(Property("18446744073709551615").Number(), "none");
  EXPECT_EQ(Property("-1").Number(), "none");
  EXPECT_EQ(Property("0.5").Number(), "0");
  EXPECT_EQ(Property("1.5").Number(), "2");
  EXPECT_EQ(Property("2.5").Number(), "2");
  EXPECT_EQ(Property("2.51").Number(), "3");
  EXPECT_EQ(Property("-0.5").Number(), "0");
  EXPECT_EQ(Property("-0.51").Number(), "none");
  EXPECT_EQ(Property("4294967295.4").Number(), "4294967295");
  EXPECT_EQ(Property("4294967295.5").Number(), "none");
  EXPECT_EQ(Property("true").Number(), "4294967295");
  EXPECT_EQ(Property("false").Number(), "0");
  EXPECT_EQ(Property("null").Number(), "none");
  EXPECT_EQ(Property(R"({"fail": 5})").Number(), "none");
}

TEST(SimulatedWmi, NumbersInTexts) {
  EXPECT_EQ(Property(R"("1234")").Number(), "1234");
  EXPECT_EQ(Property(R"("  12 ")").Number(), "12");
  EXPECT_EQ(Property(R"("+12")").Number(), "12");
  EXPECT_EQ(Property(R"("2.5")").Number(), "2");
  EXPECT_EQ(Property(R"("1e3")").Number(), "1000");
  for (const char* text : {"\"\"", "\"  \"", "\"abc\"", "\"12abc\"", "\"-1\"", "\"+-1\"", "\"nan\"", "\"inf\"",
                           "\"4294967296\"", "\"1 2\"", "\"+\""}) {
    EXPECT_EQ(Property(text).Number(), "none") << text;
  }
}

TEST(SimulatedWmi, MissingPropertiesAndRows) {
  Things things(R"([{"Id": "a"}])");
  std::string text = "untouched";
  std::uint32_t number = 4711;
  EXPECT_EQ(things->Query(L"SELECT * FROM Thing"), 0);
  EXPECT_EQ(things->ReadText(L"Id", text), Hresult(kNotFound));
  EXPECT_TRUE(things->Next());
  EXPECT_EQ(things->ReadText(L"Name", text), Hresult(kNotFound));
  EXPECT_FALSE(things->ReadNumber(L"Name", number));
  EXPECT_EQ(text, "untouched");
  EXPECT_EQ(number, 4711U);
  EXPECT_EQ(things->ReadText(L"iD", text), 0);
  EXPECT_EQ(text, "a");
  EXPECT_FALSE(things->Next());
  EXPECT_EQ(things->ReadText(L"Id", text), Hresult(kNotFound));
}

TEST(SimulatedWmi, AConnectionOutlivesItsMachine) {
  std::unique_ptr<platform::WmiConnection> connection;
  {
    const auto machine = MachineWith(R"("wmi": {"r": {"Thing": [{"Id": "a"}]}})");
    connection = Connect(*machine, L"r");
  }
  std::string id;
  EXPECT_EQ(connection->Query(L"SELECT * FROM Thing"), 0);
  EXPECT_TRUE(connection->Next());
  EXPECT_EQ(connection->ReadText(L"Id", id), 0);
  EXPECT_EQ(id, "a");
}

}  // namespace
}  // namespace norv::simulator
