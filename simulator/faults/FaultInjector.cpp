#include "norv/simulator/FaultInjector.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "calls/OperationText.h"
#include "machine/Text.h"

namespace norv::simulator {

namespace {

void ThrowIfAsked(FaultEffect effect) {
  switch (effect) {
    case FaultEffect::ThrowsRuntimeError:
      throw std::runtime_error(kInjectedText);
    case FaultEffect::ThrowsSystemError:
      throw std::system_error(std::make_error_code(std::errc::permission_denied), kInjectedText);
    case FaultEffect::ThrowsBadAlloc:
      throw std::bad_alloc();
    case FaultEffect::ThrowsInt:
      throw int{kInjectedNumber};
    case FaultEffect::ThrowsUnsignedLong:
      throw static_cast<unsigned long>(kInjectedNumber);
    case FaultEffect::ThrowsString:
      throw std::string(kInjectedText);
    case FaultEffect::ThrowsText:
      // A text of this kind is exactly what a library may have to deal with.
      throw kInjectedText;  // NOLINT(misc-throw-by-value-catch-by-reference)
    case FaultEffect::ThrowsOther:
      throw InjectedException{};
    case FaultEffect::Status:
    case FaultEffect::ReturnCode:
    case FaultEffect::Code:
    case FaultEffect::Fails:
      return;
  }
}

// A status or code as the signed number that it is in an HRESULT, whatever the width of long.
long ToCode(std::uint32_t number) {
  return static_cast<std::int32_t>(number);
}

}  // namespace

// The faults, how often calls that they fit were met, and the system code that each thread was left with.
class FaultInjector::Plan {
 public:
  explicit Plan(std::vector<Fault> faults) {
    faults_ = std::move(faults);
    for (std::size_t number = 0; number < faults_.size(); ++number) {
      Armed& armed = armed_[{faults_[number].operation, faults_[number].argument}];
      armed.byCall.try_emplace(faults_[number].call.value_or(kEveryCall), number);
    }
  }

  // Counts the call. The fault that strikes it, if any; throws what that one throws.
  std::optional<Fault> Strike(const char* operation, const std::string& argument = {}) {
    std::optional<Fault> fault = Count(operation, argument);
    if (fault.has_value()) {
      ThrowIfAsked(fault->effect);
    }
    return fault;
  }

  void LeaveSystemCode(std::uint32_t code) {
    const std::lock_guard lock(mutex_);
    systemCodes_[std::this_thread::get_id()] = code;
  }

  std::optional<std::uint32_t> SystemCode() {
    const std::lock_guard lock(mutex_);
    const auto found = systemCodes_.find(std::this_thread::get_id());
    return found != systemCodes_.end() ? std::optional(found->second) : std::nullopt;
  }

 private:
  // The faults that fit the same calls, by the call that they strike. Of two for one call the first one strikes.
  struct Armed {
    unsigned calls = 0;
    std::map<unsigned, std::size_t> byCall;
  };

  static constexpr unsigned kEveryCall = 0;  // calls are counted from 1

  std::optional<Fault> Count(const std::string& operation, const std::string& argument) {
    const std::lock_guard lock(mutex_);
    if (operation != kLastSystemCode) {
      systemCodes_.erase(std::this_thread::get_id());
    }
    std::size_t struck = faults_.size();
    for (const std::optional<std::string>& fitting : {std::optional<std::string>(), std::optional(argument)}) {
      const auto armed = armed_.find({operation, fitting});
      if (armed == armed_.end()) {
        continue;
      }
      ++armed->second.calls;
      for (const unsigned call : {kEveryCall, armed->second.calls}) {
        const auto found = armed->second.byCall.find(call);
        struck = std::min(struck, found != armed->second.byCall.end() ? found->second : struck);
      }
    }
    return struck < faults_.size() ? std::optional(faults_[struck]) : std::nullopt;
  }

  std::mutex mutex_;
  std::vector<Fault> faults_;
  std::map<std::pair<std::string, std::optional<std::string>>, Armed> armed_;  // by operation and argument
  std::map<std::thread::id, std::uint32_t> systemCodes_;
};

class FaultInjector::Connection : public platform::WmiConnection {
 public:
  Connection(std::shared_ptr<Plan> plan, std::unique_ptr<platform::WmiConnection> inner)
      : plan_(std::move(plan)), inner_(std::move(inner)) {}

  // A failed query leaves no objects, not even those of the query before it.
  long Query(const std::wstring& wql) override {
    const std::optional<Fault> fault = plan_->Strike(kQuery, ToUtf8(wql));
    hasObjects_ = !fault.has_value();
    return fault.has_value() ? ToCode(fault->number) : inner_->Query(wql);
  }

  bool Next() override { return !plan_->Strike(kNext).has_value() && hasObjects_ && inner_->Next(); }

  long ReadText(const std::wstring& property, std::string& value) override {
    const std::optional<Fault> fault = plan_->Strike(kReadText, ToUtf8(property));
    return fault.has_value() ? ToCode(fault->number) : inner_->ReadText(property, value);
  }

  bool ReadNumber(const std::wstring& property, std::uint32_t& value) override {
    return !plan_->Strike(kReadNumber, ToUtf8(property)).has_value() && inner_->ReadNumber(property, value);
  }

 private:
  std::shared_ptr<Plan> plan_;
  std::unique_ptr<platform::WmiConnection> inner_;
  bool hasObjects_ = true;
};

FaultInjector::FaultInjector(platform::Platform& inner, std::vector<Fault> faults) : PlatformWrapper(inner) {
  for (const Fault& fault : faults) {
    const std::string problem = FaultProblem(fault);
    if (!problem.empty()) {
      throw std::invalid_argument(problem);
    }
  }
  plan_ = std::make_shared<Plan>(std::move(faults));
}

FaultInjector::~FaultInjector() = default;

std::int32_t FaultInjector::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                            const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                            std::uint32_t* returnCode) {
  const std::optional<Fault> fault =
      plan_->Strike(kSendBiosCommand, BiosCommandText(first, second, third, input, inputSize));
  if (!fault.has_value()) {
    return Inner().SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
  }
  if (fault->effect == FaultEffect::Status) {
    return static_cast<std::int32_t>(fault->number);
  }
  if (returnCode != nullptr) {
    *returnCode = fault->number;
  }
  return 0;
}

long FaultInjector::ConnectWmi(const std::wstring& namespacePath,
                               std::unique_ptr<platform::WmiConnection>& connection) {
  const std::optional<Fault> fault = plan_->Strike(kConnectWmi, ToUtf8(namespacePath));
  if (fault.has_value()) {
    return ToCode(fault->number);
  }
  std::unique_ptr<platform::WmiConnection> inner;
  const long code = Inner().ConnectWmi(namespacePath, inner);
  if (inner != nullptr) {
    connection = std::make_unique<Connection>(plan_, std::move(inner));
  }
  return code;
}

bool FaultInjector::RunProgram(const char* path) {
  const std::optional<Fault> fault = plan_->Strike(kRunProgram, PathText(path));
  if (!fault.has_value()) {
    return Inner().RunProgram(path);
  }
  plan_->LeaveSystemCode(fault->number);
  return false;
}

bool FaultInjector::ReadProductVersion(const char* path, platform::ProductVersion& version) {
  const std::optional<Fault> fault = plan_->Strike(kReadProductVersion, PathText(path));
  if (!fault.has_value()) {
    return Inner().ReadProductVersion(path, version);
  }
  plan_->LeaveSystemCode(fault->number);
  return false;
}

std::uint32_t FaultInjector::LibraryPath(char* buffer, std::uint32_t size) {
  if (!plan_->Strike(kLibraryPath).has_value()) {
    return Inner().LibraryPath(buffer, size);
  }
  if (size > 0) {
    buffer[0] = '\0';
  }
  return 0;
}

std::wstring FaultInjector::ModuleName() {
  return plan_->Strike(kModuleName).has_value() ? std::wstring() : Inner().ModuleName();
}

std::optional<std::string> FaultInjector::ProgramDataFolder() {
  return plan_->Strike(kProgramDataFolder).has_value() ? std::nullopt : Inner().ProgramDataFolder();
}

std::uint32_t FaultInjector::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  const std::optional<Fault> fault = plan_->Strike(kFormatSystemMessage, std::to_string(code));
  if (!fault.has_value()) {
    return Inner().FormatSystemMessage(code, buffer, size);
  }
  plan_->LeaveSystemCode(fault->number);
  return 0;
}

std::uint32_t FaultInjector::LastSystemCode() {
  // Asked for first: the search for a fault may itself set the system's code.
  const std::uint32_t code = Inner().LastSystemCode();
  const std::optional<Fault> fault = plan_->Strike(kLastSystemCode);
  if (fault.has_value()) {
    return fault->number;
  }
  const std::optional<std::uint32_t> left = plan_->SystemCode();
  return left.value_or(code);
}

void FaultInjector::ReportInvalidParameter() {
  plan_->Strike(kReportInvalidParameter);
  Inner().ReportInvalidParameter();
}

std::time_t FaultInjector::Now() {
  plan_->Strike(kNow);
  return Inner().Now();
}

std::time_t FaultInjector::LocalTimeValue(const std::tm& calendarTime) {
  const bool fails = plan_->Strike(kLocalTimeValue, CalendarTimeText(calendarTime)).has_value();
  return fails ? std::time_t{-1} : Inner().LocalTimeValue(calendarTime);
}

std::string FaultInjector::BatterySource() {
  return plan_->Strike(kBatterySource).has_value() ? std::string() : Inner().BatterySource();
}

std::optional<std::uint32_t> FaultInjector::DriverStateOfCharge(std::uint32_t slot) {
  const bool fails = plan_->Strike(kDriverStateOfCharge, std::to_string(slot)).has_value();
  return fails ? std::nullopt : Inner().DriverStateOfCharge(slot);
}

}  // namespace norv::simulator
