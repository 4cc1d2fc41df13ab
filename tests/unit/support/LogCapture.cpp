#include "LogCapture.h"

#include <plog/Appenders/IAppender.h>

#include <algorithm>

#include "battery/NorvSharedInitializeLogger.h"

namespace norv::test {

namespace {

LogCapture* active = nullptr;

// plog hands out wide messages on Windows and narrow ones elsewhere; those of the tests are ASCII.
template <typename Character>
std::string Narrow(const Character* text) {
  std::string narrow;
  for (; *text != 0; ++text) {
    narrow += static_cast<char>(*text);
  }
  return narrow;
}

}  // namespace

// The library takes its appender once in a process, so one serves every test.
class Appender : public plog::IAppender {
 public:
  void write(const plog::Record& record) override {
    if (active != nullptr) {
      if (active->onLine != nullptr) {
        active->onLine();
      }
      active->lines_.push_back({record.getSeverity(), record.getFunc(), Narrow(record.getMessage())});
    }
  }
};

std::ostream& operator<<(std::ostream& stream, const LogLine& line) {
  return stream << plog::severityToString(line.severity) << " [" << line.function << "] \"" << line.message << '"';
}

LogCapture::LogCapture() {
  static auto* const appender = [] {
    static Appender instance;
    norvSharedInitializeLogger(plog::verbose, &instance);
    return &instance;
  }();
  static_cast<void>(appender);
  active = this;
}

LogCapture::~LogCapture() {
  active = nullptr;
}

std::vector<std::string> LogCapture::Messages() const {
  std::vector<std::string> messages;
  for (const LogLine& line : lines_) {
    messages.push_back(line.message);
  }
  return messages;
}

std::vector<std::string> LogCapture::Messages(plog::Severity severity) const {
  std::vector<std::string> messages;
  for (const LogLine& line : lines_) {
    if (line.severity == severity) {
      messages.push_back(line.message);
    }
  }
  return messages;
}

std::size_t LogCapture::Count(const std::string& message) const {
  const auto messages = Messages();
  return static_cast<std::size_t>(std::count(messages.begin(), messages.end(), message));
}

std::string TextForm(const shared::error::Error& error) {
  std::string text(shared::error::Error::ToString(error, nullptr), '-');
  shared::error::Error::ToString(error, text.data());
  return text;
}

::testing::AssertionResult IsError(const shared::error::Error& error, shared::error::ErrorCategory category,
                                   std::int64_t code, const std::string& message, const std::string& typeText,
                                   const std::string& functionText) {
  if (!error) {
    return ::testing::AssertionFailure() << "no failure is held";
  }
  const shared::error::Error expected(category, code, message, typeText, functionText);
  if (TextForm(error) != TextForm(expected)) {
    return ::testing::AssertionFailure() << "held:     " << TextForm(error) << "\nexpected: " << TextForm(expected);
  }
  return ::testing::AssertionSuccess();
}

}  // namespace norv::test
