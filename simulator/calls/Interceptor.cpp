#include "calls/Interceptor.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string_view>
#include <utility>

#include "base/Utf8.h"
#include "calls/Operations.h"
#include "machine/Text.h"
#include "machine/VersionText.h"
#include "play/SimulatedWmi.h"
#include "play/SystemCalls.h"

namespace norv::simulator {

namespace {

// Calls.

Call CallOf(std::string_view operation, std::string argument = {}) {
  Call call;
  call.operation = operation;
  call.argument = std::move(argument);
  return call;
}

Call BiosCall(std::uint32_t first, std::uint32_t second, std::uint32_t third, const unsigned char* input,
              std::uint32_t inputSize) {
  std::string text = std::to_string(first) + "," + std::to_string(second) + "," + std::to_string(third);
  if (input != nullptr && inputSize > 0) {
    text += " slot " + std::to_string(*input);
  }
  Call call = CallOf(kSendBiosCommand, std::move(text));
  call.command = {first, second, third};
  if (input != nullptr) {
    call.input.assign(input, input + inputSize);
  }
  return call;
}

Call PathCall(std::string_view operation, const char* path) {
  const std::string given = path != nullptr ? path : "";
  Call call = CallOf(operation, base::AsUtf8(given));
  call.path = given;
  return call;
}

Call CalendarCall(const std::tm& calendarTime) {
  char text[80];
  std::snprintf(text, sizeof text, "%04lld-%02lld-%02d %02d:%02d:%02d", calendarTime.tm_year + 1900LL,
                calendarTime.tm_mon + 1LL, calendarTime.tm_mday, calendarTime.tm_hour, calendarTime.tm_min,
                calendarTime.tm_sec);
  Call call = CallOf(kLocalTimeValue, text);
  call.calendarTime = calendarTime;
  return call;
}

// Outcomes.

Outcome Numbered(std::int64_t number, bool fails = false) {
  Outcome outcome;
  outcome.number = number;
  outcome.fails = fails;
  return outcome;
}

Outcome Texted(std::optional<std::string> text) {
  Outcome outcome;
  outcome.fails = !text.has_value();
  outcome.text = std::move(text);
  return outcome;
}

Outcome BiosOutcome(std::int32_t status, const unsigned char* output, const std::uint32_t* returnCode) {
  Outcome outcome = Numbered(status);
  outcome.returnCode = status == 0 && returnCode != nullptr ? *returnCode : 0;
  if (status == 0 && outcome.returnCode == 0 && output != nullptr) {
    std::copy_n(output, Block().size(), outcome.block.emplace().begin());
  }
  return outcome;
}

// What the buffer of an operation holds that told `length`, as far as it may be read. A platform that tells less than
// it wrote still ended its text with a zero, and the library reads up to there.
std::string Held(const char* buffer, std::uint32_t size, std::uint32_t length) {
  if (buffer == nullptr) {
    return {};
  }
  const std::string_view whole(buffer, size);
  const std::size_t told = std::min(size, length);
  return std::string(whole.substr(0, std::min(whole.find('\0', told), whole.size())));
}

// Hands a call to the hook. `proceed` asks the platform, which writes to where the caller reads; what the hook answers
// by itself is written there by `tell`.
template <typename Ask, typename Tell>
Outcome Intercepted(Hook& hook, const Call& call, Ask ask, Tell tell) {
  bool isTold = false;
  Outcome outcome = hook.Intercept(call, [&] {
    isTold = true;
    return ask();
  });
  if (outcome.thrown.has_value()) {
    Throw(*outcome.thrown);
  }
  if (!isTold) {
    tell(outcome);
  }
  return outcome;
}

// An operation whose answer is nothing but what it returns.
template <typename Ask>
Outcome Intercepted(Hook& hook, const Call& call, Ask ask) {
  return Intercepted(hook, call, ask, [](const Outcome&) {});
}

class Connection : public platform::WmiConnection {
 public:
  Connection(std::shared_ptr<Hook> hook, std::string wmiNamespace, std::unique_ptr<platform::WmiConnection> inner)
      : hook_(std::move(hook)), namespace_(std::move(wmiNamespace)), inner_(std::move(inner)) {}

  long Query(const std::wstring& wql) override {
    Call call = CallOf(kQuery, base::WideToUtf8(wql));
    call.wmiNamespace = namespace_;
    const Outcome outcome = Intercepted(*hook_, call, [&] { return Numbered(inner_->Query(wql)); });
    return static_cast<long>(outcome.number);
  }

  bool Next() override {
    return !Intercepted(*hook_, CallOf(kNext), [&] { return Numbered(0, !inner_->Next()); }).fails;
  }

  long ReadText(const std::wstring& property, std::string& value) override {
    const auto ask = [&] {
      Outcome outcome = Numbered(inner_->ReadText(property, value));
      outcome.text = outcome.number == 0 ? std::optional(value) : std::nullopt;
      return outcome;
    };
    const auto tell = [&](const Outcome& outcome) { value = outcome.text.value_or(value); };
    const Outcome outcome = Intercepted(*hook_, CallOf(kReadText, base::WideToUtf8(property)), ask, tell);
    return static_cast<long>(outcome.number);
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    const auto ask = [&] {
      const bool good = inner_->ReadNumber(property, value);
      return Numbered(good ? value : 0, !good);
    };
    const auto tell = [&](const Outcome& outcome) {
      value = outcome.fails ? value : static_cast<std::uint32_t>(outcome.number);
    };
    return !Intercepted(*hook_, CallOf(kReadNumber, base::WideToUtf8(property)), ask, tell).fails;
  }

 private:
  std::shared_ptr<Hook> hook_;
  std::string namespace_;
  std::unique_ptr<platform::WmiConnection> inner_;
};

}  // namespace

Interceptor::Interceptor(platform::Platform& inner, std::shared_ptr<Hook> hook)
    : inner_(inner), hook_(std::move(hook)) {
}

Interceptor::~Interceptor() = default;

std::int32_t Interceptor::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                          const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                          std::uint32_t* returnCode) {
  const auto ask = [&] {
    const std::int32_t status = inner_.SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
    return BiosOutcome(status, output, returnCode);
  };
  const auto tell = [&](const Outcome& outcome) {
    if (outcome.number == 0 && returnCode != nullptr) {
      *returnCode = outcome.returnCode;
    }
    if (outcome.block.has_value() && output != nullptr) {
      std::copy(outcome.block->begin(), outcome.block->end(), output);
    }
  };
  const Call call = BiosCall(first, second, third, input, inputSize);
  return static_cast<std::int32_t>(Intercepted(*hook_, call, ask, tell).number);
}

long Interceptor::ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<platform::WmiConnection>& connection) {
  const std::string name = base::WideToUtf8(namespacePath);
  std::unique_ptr<platform::WmiConnection> inner;
  const Outcome outcome = Intercepted(*hook_, CallOf(kConnectWmi, name), [&] {
    const long code = inner_.ConnectWmi(namespacePath, inner);
    return Numbered(code, inner == nullptr);
  });
  if (!outcome.fails) {
    // A hook may know a namespace that the platform has not: there, nobody but the hook answers.
    static const NamespaceDescription kNothing;
    inner = inner != nullptr ? std::move(inner) : ConnectTo(nullptr, kNothing);
    connection = std::make_unique<Connection>(hook_->OfConnection(name), name, std::move(inner));
  }
  return static_cast<long>(outcome.number);
}

bool Interceptor::RunProgram(const char* path) {
  const auto ask = [&] { return Numbered(0, !inner_.RunProgram(path)); };
  return !Intercepted(*hook_, PathCall(kRunProgram, path), ask).fails;
}

bool Interceptor::ReadProductVersion(const char* path, platform::ProductVersion& version) {
  const auto ask = [&] {
    const bool good = inner_.ReadProductVersion(path, version);
    return Texted(good ? std::optional(VersionText(version)) : std::nullopt);
  };
  const auto tell = [&](const Outcome& outcome) {
    version = outcome.fails ? version : ParseVersion(outcome.text.value_or("")).value_or(version);
  };
  return !Intercepted(*hook_, PathCall(kReadProductVersion, path), ask, tell).fails;
}

std::uint32_t Interceptor::LibraryPath(char* buffer, std::uint32_t size) {
  const auto ask = [&] {
    const std::uint32_t length = inner_.LibraryPath(buffer, size);
    Outcome outcome = Numbered(length);
    outcome.text = Held(buffer, size, length);
    return outcome;
  };
  const auto tell = [&](const Outcome& outcome) { CopyCut(outcome.text.value_or(""), buffer, size); };
  Call call = CallOf(kLibraryPath);
  call.size = size;
  return static_cast<std::uint32_t>(Intercepted(*hook_, call, ask, tell).number);
}

std::wstring Interceptor::ModuleName() {
  std::wstring name;
  const auto ask = [&] {
    name = inner_.ModuleName();
    return Texted(base::WideToUtf8(name));
  };
  const auto tell = [&](const Outcome& outcome) { name = ToWide(outcome.text.value_or("")); };
  Intercepted(*hook_, CallOf(kModuleName), ask, tell);
  return name;
}

std::optional<std::string> Interceptor::ProgramDataFolder() {
  const auto ask = [&] { return Texted(inner_.ProgramDataFolder()); };
  return Intercepted(*hook_, CallOf(kProgramDataFolder), ask).text;
}

std::uint32_t Interceptor::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  const auto ask = [&] {
    const std::uint32_t length = inner_.FormatSystemMessage(code, buffer, size);
    Outcome outcome = Numbered(length, length == 0);
    // Nothing is known of what a failure leaves in the buffer.
    outcome.text = length > 0 ? Held(buffer, size, length) : std::string();
    return outcome;
  };
  const auto tell = [&](const Outcome& outcome) { CopyCut(outcome.text.value_or(""), buffer, size); };
  Call call = CallOf(kFormatSystemMessage, std::to_string(code));
  call.code = code;
  call.size = size;
  const Outcome outcome = Intercepted(*hook_, call, ask, tell);
  return outcome.fails ? 0 : static_cast<std::uint32_t>(outcome.number);
}

// Asked for first: all that is done here, by the hook and by the searches of hooks, may itself set the system's code.
std::uint32_t Interceptor::LastSystemCode() {
  std::uint32_t code = 0;
  std::exception_ptr thrown;
  try {
    code = inner_.LastSystemCode();
  } catch (...) {
    thrown = std::current_exception();
  }
  const auto ask = [&] {
    if (thrown != nullptr) {
      std::rethrow_exception(thrown);
    }
    return Numbered(code);
  };
  return static_cast<std::uint32_t>(Intercepted(*hook_, CallOf(kLastSystemCode), ask).number);
}

void Interceptor::ReportInvalidParameter() {
  Intercepted(*hook_, CallOf(kReportInvalidParameter), [&] {
    inner_.ReportInvalidParameter();
    return Outcome();
  });
}

std::time_t Interceptor::Now() {
  return Intercepted(*hook_, CallOf(kNow), [&] { return Numbered(inner_.Now()); }).number;
}

std::time_t Interceptor::LocalTimeValue(const std::tm& calendarTime) {
  const auto ask = [&] { return Numbered(inner_.LocalTimeValue(calendarTime)); };
  const Outcome outcome = Intercepted(*hook_, CalendarCall(calendarTime), ask);
  return outcome.fails ? -1 : outcome.number;
}

platform::SlotDescription Interceptor::DescribeSlot(std::uint32_t slot) {
  Call call = CallOf(kDescribeSlot, std::to_string(slot));
  call.slot = slot;
  const auto ask = [&] {
    Outcome outcome;
    outcome.slot = inner_.DescribeSlot(slot);
    return outcome;
  };
  return Intercepted(*hook_, call, ask).slot.value_or(platform::SlotDescription());
}

}  // namespace norv::simulator
