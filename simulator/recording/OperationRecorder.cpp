#include "norv/simulator/OperationRecorder.h"

#include <mutex>
#include <utility>

#include "calls/OperationText.h"
#include "machine/Text.h"

namespace norv::simulator {

bool operator==(const Operation& left, const Operation& right) {
  return left.name == right.name && left.argument == right.argument;
}

bool operator!=(const Operation& left, const Operation& right) {
  return !(left == right);
}

class OperationRecorder::Notes {
 public:
  void Add(const char* name, std::string argument = {}) {
    const std::lock_guard lock(mutex_);
    operations_.push_back({name, std::move(argument)});
  }

  void Clear() {
    const std::lock_guard lock(mutex_);
    operations_.clear();
  }

  const std::vector<Operation>& All() const { return operations_; }

 private:
  std::mutex mutex_;
  std::vector<Operation> operations_;
};

class OperationRecorder::Connection : public platform::WmiConnection {
 public:
  Connection(std::shared_ptr<Notes> notes, std::unique_ptr<platform::WmiConnection> inner)
      : notes_(std::move(notes)), inner_(std::move(inner)) {}

  long Query(const std::wstring& wql) override {
    notes_->Add(kQuery, ToUtf8(wql));
    return inner_->Query(wql);
  }

  bool Next() override {
    notes_->Add(kNext);
    return inner_->Next();
  }

  long ReadText(const std::wstring& property, std::string& value) override {
    notes_->Add(kReadText, ToUtf8(property));
    return inner_->ReadText(property, value);
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    notes_->Add(kReadNumber, ToUtf8(property));
    return inner_->ReadNumber(property, value);
  }

 private:
  std::shared_ptr<Notes> notes_;
  std::unique_ptr<platform::WmiConnection> inner_;
};

OperationRecorder::OperationRecorder(platform::Platform& inner)
    : PlatformWrapper(inner), notes_(std::make_shared<Notes>()) {
}

OperationRecorder::~OperationRecorder() = default;

const std::vector<Operation>& OperationRecorder::Operations() const {
  return notes_->All();
}

void OperationRecorder::Clear() {
  notes_->Clear();
}

std::int32_t OperationRecorder::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                                const unsigned char* input, std::uint32_t inputSize,
                                                unsigned char* output, std::uint32_t* returnCode) {
  notes_->Add(kSendBiosCommand, BiosCommandText(first, second, third, input, inputSize));
  return Inner().SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
}

long OperationRecorder::ConnectWmi(const std::wstring& namespacePath,
                                   std::unique_ptr<platform::WmiConnection>& connection) {
  notes_->Add(kConnectWmi, ToUtf8(namespacePath));
  std::unique_ptr<platform::WmiConnection> inner;
  const long code = Inner().ConnectWmi(namespacePath, inner);
  if (inner != nullptr) {
    connection = std::make_unique<Connection>(notes_, std::move(inner));
  }
  return code;
}

bool OperationRecorder::RunProgram(const char* path) {
  notes_->Add(kRunProgram, PathText(path));
  return Inner().RunProgram(path);
}

bool OperationRecorder::ReadProductVersion(const char* path, platform::ProductVersion& version) {
  notes_->Add(kReadProductVersion, PathText(path));
  return Inner().ReadProductVersion(path, version);
}

std::uint32_t OperationRecorder::LibraryPath(char* buffer, std::uint32_t size) {
  notes_->Add(kLibraryPath);
  return Inner().LibraryPath(buffer, size);
}

std::wstring OperationRecorder::ModuleName() {
  notes_->Add(kModuleName);
  return Inner().ModuleName();
}

std::optional<std::string> OperationRecorder::ProgramDataFolder() {
  notes_->Add(kProgramDataFolder);
  return Inner().ProgramDataFolder();
}

std::uint32_t OperationRecorder::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  notes_->Add(kFormatSystemMessage, std::to_string(code));
  return Inner().FormatSystemMessage(code, buffer, size);
}

std::uint32_t OperationRecorder::LastSystemCode() {
  notes_->Add(kLastSystemCode);
  return Inner().LastSystemCode();
}

void OperationRecorder::ReportInvalidParameter() {
  notes_->Add(kReportInvalidParameter);
  Inner().ReportInvalidParameter();
}

std::time_t OperationRecorder::Now() {
  notes_->Add(kNow);
  return Inner().Now();
}

std::time_t OperationRecorder::LocalTimeValue(const std::tm& calendarTime) {
  notes_->Add(kLocalTimeValue, CalendarTimeText(calendarTime));
  return Inner().LocalTimeValue(calendarTime);
}

std::string OperationRecorder::BatterySource() {
  notes_->Add(kBatterySource);
  return Inner().BatterySource();
}

std::optional<std::uint32_t> OperationRecorder::DriverStateOfCharge(std::uint32_t slot) {
  notes_->Add(kDriverStateOfCharge, std::to_string(slot));
  return Inner().DriverStateOfCharge(slot);
}

}  // namespace norv::simulator
