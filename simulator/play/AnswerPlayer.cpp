#include "play/AnswerPlayer.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "calls/OperationText.h"
#include "machine/Text.h"
#include "machine/VersionText.h"
#include "play/SimulatedWmi.h"
#include "play/SystemCalls.h"
#include "recording/Recording.h"

namespace norv::simulator {

// The answers of each key, and what the last one on each thread leaves for LastSystemCode.
class AnswerPlayer::Script {
 public:
  explicit Script(std::vector<Answer> answers) {
    for (Answer& answer : answers) {
      std::string key = answer.key;
      entries_[std::move(key)].answers.push_back(std::move(answer));
    }
  }

  // The answer of this call, which stays; null for one that is to be handed on. Throws what the answer throws.
  const Answer* Take(const std::string& operation, const std::string& argument = {},
                     const std::string& wmiNamespace = {}, const std::string& extraInput = {}) {
    const Answer* const answer = Find(CallKey(operation, argument, wmiNamespace, extraInput));
    if (answer != nullptr && answer->outcome.thrown.has_value()) {
      Throw(*answer->outcome.thrown);
    }
    return answer;
  }

  // What is left of the last answer on this thread; nothing after a call that was handed on.
  std::optional<LeftCode> Left() {
    const std::lock_guard lock(mutex_);
    const auto left = left_.find(std::this_thread::get_id());
    return left != left_.end() ? std::optional(left->second) : std::nullopt;
  }

 private:
  struct Entry {
    std::vector<Answer> answers;
    std::size_t next = 0;
  };

  const Answer* Find(const std::string& key) {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(key);
    if (found == entries_.end()) {
      left_.erase(std::this_thread::get_id());
      return nullptr;
    }
    Entry& entry = found->second;
    const Answer& answer = entry.answers[entry.next];
    entry.next = std::min(entry.next + 1, entry.answers.size() - 1);
    // To ask for the code of a failure changes nothing about it.
    if (!key.starts_with(kLastSystemCode)) {
      left_[std::this_thread::get_id()] = answer.outcome.left.value_or(LeftCode{kFileNotFound, std::nullopt});
    }
    return &answer;
  }

  std::mutex mutex_;
  std::map<std::string, Entry> entries_;
  std::map<std::thread::id, LeftCode> left_;
};

class AnswerPlayer::Connection : public platform::WmiConnection {
 public:
  // `inner` is null where the namespace is known from answers alone.
  Connection(std::shared_ptr<Script> script, std::string wmiNamespace, std::unique_ptr<platform::WmiConnection> inner)
      : script_(std::move(script)), namespace_(std::move(wmiNamespace)), inner_(std::move(inner)) {}

  long Query(const std::wstring& wql) override {
    objects_ = {};
    answer_ = script_->Take(kQuery, ToUtf8(wql), namespace_);
    if (answer_ == nullptr) {
      return inner_ != nullptr ? inner_->Query(wql) : ToHresult(kWbemInvalidClass);
    }
    std::vector<const Row*> rows;
    for (const Row& row : answer_->rows) {
      rows.push_back(&row);
    }
    objects_ = FoundObjects(std::move(rows));
    return static_cast<long>(answer_->outcome.number);
  }

  bool Next() override {
    if (answer_ == nullptr) {
      return inner_ != nullptr && inner_->Next();
    }
    const bool found = objects_.Next();
    if (!found && answer_->end.has_value()) {
      Throw(*answer_->end);
    }
    return found;
  }

  long ReadText(const std::wstring& property, std::string& value) override {
    return IsHandedOn() ? inner_->ReadText(property, value) : objects_.ReadText(property, value);
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    return IsHandedOn() ? inner_->ReadNumber(property, value) : objects_.ReadNumber(property, value);
  }

 private:
  bool IsHandedOn() const { return answer_ == nullptr && inner_ != nullptr; }

  std::shared_ptr<Script> script_;
  std::string namespace_;
  std::unique_ptr<platform::WmiConnection> inner_;
  const Answer* answer_ = nullptr;  // of the last query
  FoundObjects objects_;
};

AnswerPlayer::AnswerPlayer(platform::Platform& inner, std::vector<Answer> answers)
    : PlatformWrapper(inner), script_(std::make_shared<Script>(std::move(answers))) {
}

AnswerPlayer::~AnswerPlayer() = default;

std::int32_t AnswerPlayer::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                           const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                           std::uint32_t* returnCode) {
  const std::string extraInput = input != nullptr ? ExtraInput({input, inputSize}) : std::string();
  const Answer* const answer =
      script_->Take(kSendBiosCommand, BiosCommandText(first, second, third, input, inputSize), {}, extraInput);
  if (answer == nullptr) {
    return Inner().SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
  }
  const Outcome& outcome = answer->outcome;
  if (outcome.number == 0 && returnCode != nullptr) {
    *returnCode = outcome.returnCode;
  }
  if (outcome.block.has_value() && output != nullptr) {
    std::copy(outcome.block->begin(), outcome.block->end(), output);
  }
  return static_cast<std::int32_t>(outcome.number);
}

long AnswerPlayer::ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<platform::WmiConnection>& connection) {
  const std::string name = ToUtf8(namespacePath);
  const Answer* const answer = script_->Take(kConnectWmi, name);
  if (answer != nullptr && answer->outcome.number != 0) {
    return static_cast<long>(answer->outcome.number);
  }
  std::unique_ptr<platform::WmiConnection> inner;
  const long code = Inner().ConnectWmi(namespacePath, inner);
  if (answer == nullptr && inner == nullptr) {
    return code;
  }
  connection = std::make_unique<Connection>(script_, name, std::move(inner));
  return 0;
}

bool AnswerPlayer::RunProgram(const char* path) {
  const Answer* const answer = script_->Take(kRunProgram, AsUtf8(PathText(path)));
  return answer != nullptr ? !answer->outcome.fails : Inner().RunProgram(path);
}

bool AnswerPlayer::ReadProductVersion(const char* path, platform::ProductVersion& version) {
  const Answer* const answer = script_->Take(kReadProductVersion, AsUtf8(PathText(path)));
  if (answer == nullptr) {
    return Inner().ReadProductVersion(path, version);
  }
  const auto told = answer->outcome.text.has_value() ? ParseVersion(*answer->outcome.text) : std::nullopt;
  version = told.value_or(version);
  return told.has_value();
}

std::uint32_t AnswerPlayer::LibraryPath(char* buffer, std::uint32_t size) {
  const Answer* const answer = script_->Take(kLibraryPath);
  if (answer == nullptr) {
    return Inner().LibraryPath(buffer, size);
  }
  CopyCut(answer->outcome.text.value_or(""), buffer, size);
  return static_cast<std::uint32_t>(answer->outcome.number);
}

std::wstring AnswerPlayer::ModuleName() {
  const Answer* const answer = script_->Take(kModuleName);
  return answer != nullptr ? ToWide(answer->outcome.text.value_or("")) : Inner().ModuleName();
}

std::optional<std::string> AnswerPlayer::ProgramDataFolder() {
  const Answer* const answer = script_->Take(kProgramDataFolder);
  if (answer == nullptr) {
    return Inner().ProgramDataFolder();
  }
  if (answer->outcome.fails) {
    return std::nullopt;
  }
  if (answer->outcome.text.has_value()) {
    programData_.WriteReport(*answer->outcome.text);
  } else {
    programData_.RemoveReport();
  }
  const std::string folder = programData_.Path();
  return folder.empty() ? std::nullopt : std::optional(folder);
}

std::uint32_t AnswerPlayer::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  const Answer* const answer = script_->Take(kFormatSystemMessage, std::to_string(code));
  if (answer == nullptr) {
    return Inner().FormatSystemMessage(code, buffer, size);
  }
  CopyCut(answer->outcome.text.value_or(""), buffer, size);
  return static_cast<std::uint32_t>(answer->outcome.number);
}

std::uint32_t AnswerPlayer::LastSystemCode() {
  const std::optional<LeftCode> left = script_->Left();
  if (left.has_value()) {
    if (left->thrown.has_value()) {
      Throw(*left->thrown);
    }
    return left->code;
  }
  const std::uint32_t code = Inner().LastSystemCode();
  const Answer* const answer = script_->Take(kLastSystemCode);
  return answer != nullptr ? static_cast<std::uint32_t>(answer->outcome.number) : code;
}

void AnswerPlayer::ReportInvalidParameter() {
  script_->Take(kReportInvalidParameter);
  Inner().ReportInvalidParameter();
}

std::time_t AnswerPlayer::Now() {
  const Answer* const answer = script_->Take(kNow);
  return answer != nullptr ? static_cast<std::time_t>(answer->outcome.number) : Inner().Now();
}

std::time_t AnswerPlayer::LocalTimeValue(const std::tm& calendarTime) {
  const Answer* const answer = script_->Take(kLocalTimeValue, CalendarTimeText(calendarTime));
  return answer != nullptr ? static_cast<std::time_t>(answer->outcome.number) : Inner().LocalTimeValue(calendarTime);
}

std::string AnswerPlayer::BatterySource() {
  const Answer* const answer = script_->Take(kBatterySource);
  return answer != nullptr ? answer->outcome.text.value_or("") : Inner().BatterySource();
}

std::optional<std::uint32_t> AnswerPlayer::DriverStateOfCharge(std::uint32_t slot) {
  const Answer* const answer = script_->Take(kDriverStateOfCharge, std::to_string(slot));
  if (answer == nullptr) {
    return Inner().DriverStateOfCharge(slot);
  }
  return answer->outcome.fails ? std::nullopt : std::optional(static_cast<std::uint32_t>(answer->outcome.number));
}

}  // namespace norv::simulator
