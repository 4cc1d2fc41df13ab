#include "norv/simulator/MachineRecorder.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

#include "OrdinaryFile.h"
#include "calls/OperationText.h"
#include "machine/Text.h"
#include "machine/VersionText.h"
#include "play/PrivateFolder.h"
#include "recording/RecordedMachine.h"
#include "recording/Redaction.h"
#include "recording/Tape.h"

namespace norv::simulator {

namespace {

// Does `work`, which fills in what was answered, and keeps the call, whether it returns or throws.
template <typename Work>
auto Recorded(Tape& tape, RecordedCall call, Work work) {
  const std::size_t number = tape.Begin(call);
  try {
    auto result = work(call);
    tape.End(number, std::move(call.outcome), std::move(call.folder));
    return result;
  } catch (...) {
    call.outcome.thrown = DescribeThrown(std::current_exception());
    tape.End(number, std::move(call.outcome), std::move(call.folder));
    throw;
  }
}

RecordedCall CallOf(const char* operation, std::string argument = {}) {
  RecordedCall call;
  call.operation = operation;
  call.argument = std::move(argument);
  return call;
}

RecordedCall BiosCall(std::uint32_t first, std::uint32_t second, std::uint32_t third, const unsigned char* input,
                      std::uint32_t inputSize) {
  RecordedCall call = CallOf(kSendBiosCommand, BiosCommandText(first, second, third, input, inputSize));
  call.command = {first, second, third};
  if (input != nullptr) {
    call.input.assign(input, input + inputSize);
  }
  return call;
}

RecordedCall PathCall(const char* operation, const char* path) {
  RecordedCall call = CallOf(operation, AsUtf8(PathText(path)));
  call.path = PathText(path);
  return call;
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

std::optional<std::string> ReadReport(const std::string& folder) {
  return platform::ReadOrdinaryFile((folder + kReportFile).c_str(), platform::kLargestReport);
}

}  // namespace

class MachineRecorder::Connection : public platform::WmiConnection {
 public:
  Connection(std::shared_ptr<Tape> tape, std::string wmiNamespace, std::unique_ptr<platform::WmiConnection> inner)
      : tape_(std::move(tape)), namespace_(std::move(wmiNamespace)), inner_(std::move(inner)) {}

  long Query(const std::wstring& wql) override {
    RecordedCall call = CallOf(kQuery, ToUtf8(wql));
    call.wmiNamespace = namespace_;
    hasObject_ = false;
    query_ = tape_->Begin(call);
    Outcome outcome;
    try {
      const long code = inner_->Query(wql);
      outcome.number = code;
      tape_->End(*query_, std::move(outcome), {});
      return code;
    } catch (...) {
      outcome.thrown = DescribeThrown(std::current_exception());
      tape_->End(*query_, std::move(outcome), {});
      throw;
    }
  }

  bool Next() override {
    try {
      hasObject_ = inner_->Next();
      if (query_.has_value()) {
        tape_->AddNext(*query_, hasObject_);
      }
      return hasObject_;
    } catch (...) {
      if (query_.has_value()) {
        tape_->AddEnd(*query_, DescribeThrown(std::current_exception()));
      }
      throw;
    }
  }

  long ReadText(const std::wstring& property, std::string& value) override {
    TextRead read;
    try {
      const long code = inner_->ReadText(property, value);
      read.code = static_cast<std::int32_t>(code);
      read.value = code == 0 ? value : "";
      Keep(property, std::move(read));
      return code;
    } catch (...) {
      read.thrown = DescribeThrown(std::current_exception());
      Keep(property, std::move(read));
      throw;
    }
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    NumberRead read;
    try {
      const bool good = inner_->ReadNumber(property, value);
      read.value = good ? std::optional(value) : std::nullopt;
      Keep(property, std::move(read));
      return good;
    } catch (...) {
      read.thrown = DescribeThrown(std::current_exception());
      Keep(property, std::move(read));
      throw;
    }
  }

 private:
  void Keep(const std::wstring& property, TextRead read) {
    if (query_.has_value() && hasObject_) {
      tape_->AddText(*query_, ToUtf8(property), std::move(read));
    }
  }

  void Keep(const std::wstring& property, NumberRead read) {
    if (query_.has_value() && hasObject_) {
      tape_->AddNumber(*query_, ToUtf8(property), std::move(read));
    }
  }

  std::shared_ptr<Tape> tape_;
  std::string namespace_;
  std::unique_ptr<platform::WmiConnection> inner_;
  std::optional<std::size_t> query_;  // the number of the last one
  bool hasObject_ = false;
};

MachineRecorder::MachineRecorder(platform::Platform& inner) : PlatformWrapper(inner), tape_(std::make_shared<Tape>()) {
}

MachineRecorder::~MachineRecorder() = default;

std::vector<RecordedCall> RecordedCalls(const MachineRecorder& recorder) {
  return recorder.tape_->Calls();
}

std::string MachineRecorder::MachineText(const RecordingOptions& options) const {
  return options.hash ? RecordedMachineText(Redacted(RecordedCalls(*this), options.hash), Redacted(options.origin))
                      : RecordedMachineText(RecordedCalls(*this), options.origin);
}

std::int32_t MachineRecorder::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                              const unsigned char* input, std::uint32_t inputSize,
                                              unsigned char* output, std::uint32_t* returnCode) {
  return Recorded(*tape_, BiosCall(first, second, third, input, inputSize), [&](RecordedCall& kept) {
    const std::int32_t status = Inner().SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
    kept.outcome.number = status;
    kept.outcome.returnCode = status == 0 && returnCode != nullptr ? *returnCode : 0;
    if (status == 0 && kept.outcome.returnCode == 0 && output != nullptr) {
      std::copy_n(output, Block().size(), kept.outcome.block.emplace().begin());
    }
    return status;
  });
}

long MachineRecorder::ConnectWmi(const std::wstring& namespacePath,
                                 std::unique_ptr<platform::WmiConnection>& connection) {
  const std::string name = ToUtf8(namespacePath);
  return Recorded(*tape_, CallOf(kConnectWmi, name), [&](RecordedCall& kept) {
    std::unique_ptr<platform::WmiConnection> inner;
    const long code = Inner().ConnectWmi(namespacePath, inner);
    kept.outcome.number = code;
    if (inner != nullptr) {
      connection = std::make_unique<Connection>(tape_, name, std::move(inner));
    }
    return code;
  });
}

bool MachineRecorder::RunProgram(const char* path) {
  return Recorded(*tape_, PathCall(kRunProgram, path), [&](RecordedCall& kept) {
    const bool ran = Inner().RunProgram(path);
    kept.outcome.fails = !ran;
    return ran;
  });
}

bool MachineRecorder::ReadProductVersion(const char* path, platform::ProductVersion& version) {
  return Recorded(*tape_, PathCall(kReadProductVersion, path), [&](RecordedCall& kept) {
    const bool good = Inner().ReadProductVersion(path, version);
    kept.outcome.fails = !good;
    kept.outcome.text = good ? std::optional(VersionText(version)) : std::nullopt;
    return good;
  });
}

std::uint32_t MachineRecorder::LibraryPath(char* buffer, std::uint32_t size) {
  RecordedCall call = CallOf(kLibraryPath);
  call.size = size;
  return Recorded(*tape_, std::move(call), [&](RecordedCall& kept) {
    const std::uint32_t length = Inner().LibraryPath(buffer, size);
    kept.outcome.number = length;
    kept.outcome.text = Held(buffer, size, length);
    return length;
  });
}

std::wstring MachineRecorder::ModuleName() {
  return Recorded(*tape_, CallOf(kModuleName), [&](RecordedCall& kept) {
    std::wstring name = Inner().ModuleName();
    kept.outcome.text = ToUtf8(name);
    return name;
  });
}

std::optional<std::string> MachineRecorder::ProgramDataFolder() {
  return Recorded(*tape_, CallOf(kProgramDataFolder), [&](RecordedCall& kept) {
    std::optional<std::string> folder = Inner().ProgramDataFolder();
    kept.folder = folder.value_or("");
    kept.outcome.fails = !folder.has_value();
    kept.outcome.text = folder.has_value() ? ReadReport(*folder) : std::nullopt;
    return folder;
  });
}

std::uint32_t MachineRecorder::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  RecordedCall call = CallOf(kFormatSystemMessage, std::to_string(code));
  call.code = code;
  call.size = size;
  return Recorded(*tape_, std::move(call), [&](RecordedCall& kept) {
    const std::uint32_t length = Inner().FormatSystemMessage(code, buffer, size);
    kept.outcome.number = length;
    // Nothing is known of what a failure leaves in the buffer.
    kept.outcome.text = length > 0 ? Held(buffer, size, length) : std::string();
    return length;
  });
}

// Asked for first: to keep it may itself set the system's code.
std::uint32_t MachineRecorder::LastSystemCode() {
  try {
    const std::uint32_t code = Inner().LastSystemCode();
    tape_->AddLeftCode({code, std::nullopt});
    return code;
  } catch (...) {
    tape_->AddLeftCode({0, DescribeThrown(std::current_exception())});
    throw;
  }
}

void MachineRecorder::ReportInvalidParameter() {
  Recorded(*tape_, CallOf(kReportInvalidParameter), [&](RecordedCall&) {
    Inner().ReportInvalidParameter();
    return true;
  });
}

std::time_t MachineRecorder::Now() {
  return Recorded(*tape_, CallOf(kNow), [&](RecordedCall& kept) {
    const std::time_t now = Inner().Now();
    kept.outcome.number = now;
    return now;
  });
}

std::time_t MachineRecorder::LocalTimeValue(const std::tm& calendarTime) {
  RecordedCall call = CallOf(kLocalTimeValue, CalendarTimeText(calendarTime));
  call.calendarTime = calendarTime;
  return Recorded(*tape_, std::move(call), [&](RecordedCall& kept) {
    const std::time_t value = Inner().LocalTimeValue(calendarTime);
    kept.outcome.number = value;
    return value;
  });
}

std::string MachineRecorder::BatterySource() {
  return Recorded(*tape_, CallOf(kBatterySource), [&](RecordedCall& kept) {
    std::string source = Inner().BatterySource();
    kept.outcome.text = source;
    return source;
  });
}

std::optional<std::uint32_t> MachineRecorder::DriverStateOfCharge(std::uint32_t slot) {
  RecordedCall call = CallOf(kDriverStateOfCharge, std::to_string(slot));
  call.slot = slot;
  return Recorded(*tape_, std::move(call), [&](RecordedCall& kept) {
    const std::optional<std::uint32_t> percent = Inner().DriverStateOfCharge(slot);
    kept.outcome.fails = !percent.has_value();
    kept.outcome.number = percent.value_or(0);
    return percent;
  });
}

}  // namespace norv::simulator
