#include <optional>
#include <utility>

#include "OrdinaryFile.h"
#include "calls/Operations.h"
#include "play/PrivateFolder.h"
#include "recording/Tape.h"

namespace norv::simulator {

namespace {

class Noting : public Hook {
 public:
  explicit Noting(std::shared_ptr<Tape> tape) : tape_(std::move(tape)) {}

  Outcome Intercept(const Call& call, const Proceed& proceed) override {
    tape_->Note(call);
    return proceed();
  }

  std::shared_ptr<Hook> OfConnection(const std::string& /*wmiNamespace*/) override { return NotingHook(tape_); }

 private:
  std::shared_ptr<Tape> tape_;
};

// Keeps what `proceed` gives, or else what it throws.
template <typename Keep>
Outcome Kept(const Proceed& proceed, Keep keep) {
  try {
    Outcome outcome = proceed();
    keep(outcome);
    return outcome;
  } catch (...) {
    Outcome outcome;
    outcome.thrown = DescribeThrown(std::current_exception());
    keep(outcome);
    throw;
  }
}

class Recording : public Hook {
 public:
  explicit Recording(std::shared_ptr<Tape> tape) : tape_(std::move(tape)) {}

  Outcome Intercept(const Call& call, const Proceed& proceed) override {
    if (call.operation == kLastSystemCode) {
      return Kept(proceed, [&](const Outcome& outcome) {
        tape_->AddLeftCode({static_cast<std::uint32_t>(outcome.number), outcome.thrown});
      });
    }
    if (FindOperation(call.operation)->answers == AnswerForm::ObjectPart) {
      return Kept(proceed, [&](const Outcome& outcome) { KeepPart(call, outcome); });
    }
    return KeptCall(call, proceed);
  }

  std::shared_ptr<Hook> OfConnection(const std::string& /*wmiNamespace*/) override { return RecordingHook(tape_); }

 private:
  Outcome KeptCall(const Call& call, const Proceed& proceed) {
    const std::size_t number = tape_->Begin(call);
    if (call.operation == kQuery) {
      query_ = number;
      hasObject_ = false;
    }
    return Kept(proceed, [&](Outcome outcome) {
      std::string folder;
      if (call.operation == kProgramDataFolder && outcome.text.has_value()) {
        folder = *outcome.text;
        outcome.text = platform::ReadOrdinaryFile((folder + kReportFile).c_str(), platform::kLargestReport);
      }
      tape_->End(number, std::move(outcome), std::move(folder));
    });
  }

  void KeepPart(const Call& call, const Outcome& outcome) {
    const auto number = static_cast<std::uint32_t>(outcome.number);
    if (!query_.has_value()) {
      return;
    }
    if (call.operation == kNext && outcome.thrown.has_value()) {
      tape_->AddEnd(*query_, *outcome.thrown);
    } else if (call.operation == kNext) {
      hasObject_ = !outcome.fails;
      tape_->AddNext(*query_, hasObject_);
    } else if (hasObject_ && call.operation == kReadText) {
      tape_->AddText(*query_, call.argument,
                     {static_cast<std::int32_t>(outcome.number), outcome.text.value_or(""), outcome.thrown});
    } else if (hasObject_) {
      const bool good = !outcome.fails && !outcome.thrown.has_value();
      tape_->AddNumber(*query_, call.argument, {good ? std::optional(number) : std::nullopt, outcome.thrown});
    }
  }

  std::shared_ptr<Tape> tape_;
  std::optional<std::size_t> query_;  // the number of the last one of this connection
  bool hasObject_ = false;
};

}  // namespace

std::shared_ptr<Hook> NotingHook(std::shared_ptr<Tape> tape) {
  return std::make_shared<Noting>(std::move(tape));
}

std::shared_ptr<Hook> RecordingHook(std::shared_ptr<Tape> tape) {
  return std::make_shared<Recording>(std::move(tape));
}

}  // namespace norv::simulator
