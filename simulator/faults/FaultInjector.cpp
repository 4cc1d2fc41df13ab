#include "norv/simulator/FaultInjector.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "calls/Interceptor.h"
#include "calls/LeftCodes.h"
#include "calls/Operations.h"
#include "faults/FaultTable.h"

namespace norv::simulator {

namespace {

// The faults, and how often calls that they fit were met.
class Plan {
 public:
  explicit Plan(std::vector<Fault> faults) : faults_(std::move(faults)) {
    for (std::size_t number = 0; number < faults_.size(); ++number) {
      Armed& armed = armed_[{faults_[number].operation, faults_[number].argument}];
      armed.byCall.try_emplace(faults_[number].call.value_or(kEveryCall), number);
    }
  }

  // Counts the call. What the fault that strikes it makes of it, if any.
  std::optional<Outcome> Strike(const Call& call) {
    const Fault* const fault = Count(call);
    std::optional<Outcome> outcome = fault != nullptr ? std::optional(FaultOutcome(*fault)) : std::nullopt;
    if (call.operation != kLastSystemCode) {
      codes_.Leave(outcome.has_value() ? outcome->left : std::nullopt);
    }
    return outcome;
  }

  // What the fault that struck last on this thread left to be answered.
  std::optional<Outcome> Left() const { return codes_.Left(); }

 private:
  // The faults that fit the same calls, by the call that they strike. Of two for one call the first one strikes.
  struct Armed {
    unsigned calls = 0;
    std::map<unsigned, std::size_t> byCall;
  };

  static constexpr unsigned kEveryCall = 0;  // calls are counted from 1

  const Fault* Count(const Call& call) {
    const std::lock_guard lock(mutex_);
    std::size_t struck = faults_.size();
    for (const std::optional<std::string>& fitting : {std::optional<std::string>(), std::optional(call.argument)}) {
      const auto armed = armed_.find({std::string(call.operation), fitting});
      if (armed == armed_.end()) {
        continue;
      }
      ++armed->second.calls;
      for (const unsigned number : {kEveryCall, armed->second.calls}) {
        const auto found = armed->second.byCall.find(number);
        struck = std::min(struck, found != armed->second.byCall.end() ? found->second : struck);
      }
    }
    return struck < faults_.size() ? &faults_[struck] : nullptr;
  }

  std::mutex mutex_;
  std::vector<Fault> faults_;
  std::map<std::pair<std::string, std::optional<std::string>>, Armed> armed_;  // by operation and argument
  LeftCodes codes_;
};

class Injecting : public Hook {
 public:
  explicit Injecting(std::shared_ptr<Plan> plan) : plan_(std::move(plan)) {}

  Outcome Intercept(const Call& call, const Proceed& proceed) override {
    std::optional<Outcome> outcome = plan_->Strike(call);
    if (call.operation == kQuery) {
      hasObjects_ = !outcome.has_value();
    } else if (call.operation == kNext && !outcome.has_value() && !hasObjects_) {
      outcome.emplace().fails = true;
    } else if (call.operation == kLastSystemCode && !outcome.has_value()) {
      outcome = plan_->Left();
    }
    return outcome.has_value() ? *outcome : proceed();
  }

  std::shared_ptr<Hook> OfConnection(const std::string& /*wmiNamespace*/) override {
    return std::make_shared<Injecting>(plan_);
  }

 private:
  std::shared_ptr<Plan> plan_;
  bool hasObjects_ = true;  // a failed query leaves none, not even those of the query before it
};

std::shared_ptr<Plan> CheckedPlan(std::vector<Fault> faults) {
  for (const Fault& fault : faults) {
    const std::string problem = FaultProblem(fault);
    if (!problem.empty()) {
      throw std::invalid_argument(problem);
    }
  }
  return std::make_shared<Plan>(std::move(faults));
}

}  // namespace

struct FaultInjector::Parts {
  Parts(platform::Platform& inner, std::vector<Fault> faults)
      : interceptor(inner, std::make_shared<Injecting>(CheckedPlan(std::move(faults)))) {}

  Interceptor interceptor;
};

FaultInjector::FaultInjector(platform::Platform& inner, std::vector<Fault> faults)
    : FaultInjector(std::make_unique<Parts>(inner, std::move(faults))) {
}

FaultInjector::FaultInjector(std::unique_ptr<Parts> parts)
    : PlatformWrapper(parts->interceptor), parts_(std::move(parts)) {
}

FaultInjector::~FaultInjector() = default;

}  // namespace norv::simulator
