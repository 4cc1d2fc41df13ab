#include "play/AnswerPlayer.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "calls/LeftCodes.h"
#include "calls/Operations.h"
#include "play/PrivateFolder.h"
#include "play/SimulatedWmi.h"
#include "play/SystemCalls.h"

namespace norv::simulator {

namespace {

// The answers of each key, and what belongs to the machine that gives them.
class Script {
 public:
  explicit Script(const std::vector<Answer>& answers) {
    for (const Answer& answer : answers) {
      entries_[answer.key].answers.push_back(answer);
    }
  }

  // The answer of this call, which stays; null for one that is to be handed on.
  const Answer* Take(const Call& call) {
    const Answer* const answer = Find(CallKey(call));
    // To ask for the code of a failure changes nothing about it.
    if (call.operation != kLastSystemCode) {
      constexpr LeftCode kNone{kFileNotFound, std::nullopt};
      codes_.Leave(answer != nullptr ? std::optional(answer->outcome.left.value_or(kNone)) : std::nullopt);
    }
    return answer;
  }

  std::optional<Outcome> Left() const { return codes_.Left(); }

  // The folder, with the report in it that an answer tells of.
  std::optional<std::string> FolderWith(const std::optional<std::string>& report) {
    if (report.has_value()) {
      programData_.WriteReport(*report);
    } else {
      programData_.RemoveReport();
    }
    const std::string folder = programData_.Path();
    return folder.empty() ? std::nullopt : std::optional(folder);
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
      return nullptr;
    }
    Entry& entry = found->second;
    const Answer& answer = entry.answers[entry.next];
    entry.next = std::min(entry.next + 1, entry.answers.size() - 1);
    return &answer;
  }

  std::mutex mutex_;
  std::map<std::string, Entry> entries_;
  LeftCodes codes_;
  PrivateFolder programData_;
};

class Answering : public Hook {
 public:
  explicit Answering(std::shared_ptr<Script> script) : script_(std::move(script)) {}

  Outcome Intercept(const Call& call, const Proceed& proceed) override {
    if (FindOperation(call.operation)->answers == AnswerForm::ObjectPart) {
      return query_ != nullptr ? PartOf(call) : proceed();
    }
    if (call.operation == kLastSystemCode && script_->Left().has_value()) {
      return *script_->Left();
    }
    const Answer* const answer = script_->Take(call);
    if (call.operation == kQuery) {
      Open(answer);
    }
    if (answer == nullptr) {
      return call.operation == kDescribeSlot ? EarlierTold(call, proceed()) : proceed();
    }
    return Told(call, answer->outcome, proceed);
  }

  std::shared_ptr<Hook> OfConnection(const std::string& /*wmiNamespace*/) override {
    return std::make_shared<Answering>(script_);
  }

 private:
  // Some answers leave work to the platform, too: it connects, and it has an errno.
  Outcome Told(const Call& call, Outcome outcome, const Proceed& proceed) {
    const bool connects = call.operation == kConnectWmi && outcome.number == 0;
    if (!outcome.thrown.has_value() && (connects || call.operation == kReportInvalidParameter)) {
      proceed();
    }
    if (call.operation == kProgramDataFolder && !outcome.fails) {
      outcome.text = script_->FolderWith(outcome.text);
    }
    return outcome;
  }

  // A slot as recordings tell of it that were made when its source and its state of charge were asked for by
  // themselves.
  Outcome EarlierTold(const Call& call, Outcome outcome) {
    Call question;
    question.operation = kBatterySource;
    if (const Answer* const answer = script_->Take(question)) {
      outcome.slot->source = answer->outcome.text.value_or("");
      outcome.thrown = answer->outcome.thrown;
    }
    question.operation = kDriverStateOfCharge;
    question.argument = call.argument;
    if (const Answer* const answer = script_->Take(question)) {
      const Outcome& told = answer->outcome;
      outcome.slot->stateOfCharge = told.fails ? std::nullopt : std::optional(static_cast<std::uint32_t>(told.number));
      outcome.thrown = told.thrown.has_value() ? told.thrown : outcome.thrown;
    }
    return outcome;
  }

  void Open(const Answer* answer) {
    std::vector<const Row*> rows;
    if (answer != nullptr) {
      std::transform(answer->rows.begin(), answer->rows.end(), std::back_inserter(rows),
                     [](const Row& row) { return &row; });
    }
    query_ = answer;
    objects_ = FoundObjects(std::move(rows));
  }

  Outcome PartOf(const Call& call) {
    Outcome outcome;
    if (call.operation == kNext) {
      outcome.fails = !objects_.Next();
      outcome.thrown = outcome.fails ? query_->end : std::nullopt;
    } else if (call.operation == kReadText) {
      std::string text;
      outcome.number = objects_.ReadText(call.argument, text);
      outcome.text = outcome.number == 0 ? std::optional(text) : std::nullopt;
    } else {
      std::uint32_t number = 0;
      outcome.fails = !objects_.ReadNumber(call.argument, number);
      outcome.number = number;
    }
    return outcome;
  }

  std::shared_ptr<Script> script_;
  const Answer* query_ = nullptr;  // of the last query of this connection
  FoundObjects objects_;
};

}  // namespace

std::shared_ptr<Hook> AnsweringHook(const std::vector<Answer>& answers) {
  return std::make_shared<Answering>(std::make_shared<Script>(answers));
}

}  // namespace norv::simulator
