#include "recording/Tape.h"

#include <algorithm>
#include <utility>

#include "calls/Operations.h"
#include "machine/Text.h"

namespace norv::simulator {

void Tape::Note(const Call& call) {
  const std::lock_guard lock(mutex_);
  operations_.push_back({std::string(call.operation), call.argument});
}

void Tape::ForgetOperations() {
  const std::lock_guard lock(mutex_);
  operations_.clear();
}

std::size_t Tape::Begin(const Call& call) {
  const std::lock_guard lock(mutex_);
  last_[std::this_thread::get_id()] = calls_.size();
  calls_.emplace_back(RecordedCall{call});
  return calls_.size() - 1;
}

void Tape::End(std::size_t number, Outcome outcome, std::string folder) {
  const std::lock_guard lock(mutex_);
  calls_[number].outcome = std::move(outcome);
  calls_[number].folder = std::move(folder);
}

void Tape::AddLeftCode(const LeftCode& left) {
  const std::lock_guard lock(mutex_);
  const auto last = last_.find(std::this_thread::get_id());
  if (last == last_.end()) {
    RecordedCall call;
    call.operation = kLastSystemCode;
    call.outcome.number = left.code;
    call.outcome.thrown = left.thrown;
    calls_.push_back(std::move(call));
  } else if (!calls_[last->second].outcome.left.has_value()) {
    calls_[last->second].outcome.left = left;
  }
}

void Tape::AddNext(std::size_t query, bool found) {
  const std::lock_guard lock(mutex_);
  if (found) {
    calls_[query].rows.emplace_back();
  } else {
    calls_[query].ended = true;
  }
}

void Tape::AddEnd(std::size_t query, const Thrown& thrown) {
  const std::lock_guard lock(mutex_);
  calls_[query].end = thrown;
}

void Tape::AddText(std::size_t query, const std::string& property, TextRead read) {
  const std::lock_guard lock(mutex_);
  PropertyReads* const reads = Property(query, property);
  if (reads != nullptr && !reads->text.has_value()) {
    reads->text = std::move(read);
  }
}

void Tape::AddNumber(std::size_t query, const std::string& property, NumberRead read) {
  const std::lock_guard lock(mutex_);
  PropertyReads* const reads = Property(query, property);
  if (reads != nullptr && !reads->number.has_value()) {
    reads->number = std::move(read);
  }
}

std::vector<RecordedCall> Tape::Calls() const {
  const std::lock_guard lock(mutex_);
  return calls_;
}

// Null where there is no object to have properties. Letter case does not count in their names.
PropertyReads* Tape::Property(std::size_t query, const std::string& property) {
  std::vector<RecordedRow>& rows = calls_[query].rows;
  if (rows.empty()) {
    return nullptr;
  }
  RecordedRow& row = rows.back();
  const auto known =
      std::find_if(row.begin(), row.end(), [&](const auto& entry) { return Folded(entry.first) == Folded(property); });
  return known != row.end() ? &known->second : &row[property];
}

}  // namespace norv::simulator
