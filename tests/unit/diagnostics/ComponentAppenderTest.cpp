// The copies of log records that a host receives.
#include "diagnostics/ComponentAppender.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace norv::test {
namespace {

using shared::common::logger::ComponentAppender;

struct Received : plog::IAppender {
  void write(const plog::Record& record) override {
    severity = record.getSeverity();
    // Each getter makes its text anew: asking twice in a row shows a copy that refers to a text that is gone.
    function = record.getFunc();
    file = record.getFile();
    functionAgain = record.getFunc();
    fileAgain = record.getFile();
    line = record.getLine();
    component = static_cast<const wchar_t*>(record.getObject());
    instance = record.getInstanceId();
    message = record.getMessage();
    ++count;
  }

  plog::Severity severity = plog::none;
  std::string function;
  std::string file;
  std::string functionAgain;
  std::string fileAgain;
  std::size_t line = 0;
  std::wstring component;
  int instance = -1;
  plog::util::nstring message;
  int count = 0;
};

// A record that has no message.
struct Silent : plog::Record {
  Silent() : Record(plog::info, "who", 3, "", nullptr, 0) {}
  const plog::util::nchar* getMessage() const override { return nullptr; }
};

TEST(ComponentAppender, TagsEachRecordWithTheComponent) {
  Received host;
  ComponentAppender appender(L"norv-battery-info.dll", &host);
  plog::Record record(plog::error, "norv::shared::battery::NorvBatteries::Query", 42, "", nullptr, 7);
  record << "text";
  appender.write(record);
  EXPECT_EQ(host.severity, plog::error);
  EXPECT_EQ(host.function, "norv::shared::battery::NorvBatteries::Query");
  EXPECT_EQ(host.file, host.function) << "the function stands in the file's place";
  EXPECT_EQ(host.functionAgain, host.function);
  EXPECT_EQ(host.fileAgain, host.file);
  EXPECT_EQ(host.line, 42U);
  EXPECT_EQ(host.component, L"norv-battery-info.dll");
  EXPECT_EQ(host.instance, 7);
  EXPECT_EQ(host.message, PLOG_NSTR("text"));
}

TEST(ComponentAppender, TakesTheFunctionAsPlogShowsIt) {
  Received host;
  ComponentAppender appender(L"", &host);
  appender.write(plog::Record(plog::info, "void a::Very::Long::Name::OfAFunctionThatFillsNoShortBuffer(int)", 1, "file",
                              &host, 0));
  EXPECT_EQ(host.function, "a::Very::Long::Name::OfAFunctionThatFillsNoShortBuffer");
  EXPECT_EQ(host.file, host.function);
  EXPECT_EQ(host.component, L"");
}

TEST(ComponentAppender, ARecordWithoutAMessageSaysNull) {
  Received host;
  ComponentAppender appender(L"", &host);
  appender.write(Silent());
  EXPECT_EQ(host.message, PLOG_NSTR("(null)"));
}

TEST(ComponentAppender, DropsRecordsWithoutAHost) {
  ComponentAppender appender(L"", nullptr);
  EXPECT_NO_THROW(appender.write(plog::Record(plog::info, "who", 1, "", nullptr, 0)));
}

}  // namespace
}  // namespace norv::test
