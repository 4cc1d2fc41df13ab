#include "play/SimulatedPlatform.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "base/Utf8.h"
#include "machine/Text.h"
#include "play/SimulatedWmi.h"
#include "play/SystemCalls.h"

namespace norv::simulator {

namespace {

constexpr std::uint32_t kInvalidArgument = 0x80070057;

// The failure that the last operation of this thread left. An operation that succeeds leaves "file not found": what can
// fail next without being an operation of the platform is a file that the standard library opens, and on a simulated
// machine such a file fails to open because it is not there.
thread_local std::uint32_t lastSystemCode = kFileNotFound;

bool Succeed() {
  lastSystemCode = kFileNotFound;
  return true;
}

bool Fail(std::uint32_t code) {
  lastSystemCode = code;
  return false;
}

std::string NormalPath(std::string_view path) {
  std::string normal = Folded(path);
  std::replace(normal.begin(), normal.end(), '/', '\\');
  return normal;
}

}  // namespace

SimulatedPlatform::SimulatedPlatform(std::shared_ptr<const MachineDescription> machine) : machine_(std::move(machine)) {
  Succeed();
}

std::int32_t SimulatedPlatform::SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                                const unsigned char* input, std::uint32_t inputSize,
                                                unsigned char* output, std::uint32_t* returnCode) {
  if (input == nullptr || inputSize == 0 || output == nullptr || returnCode == nullptr) {
    return static_cast<std::int32_t>(kInvalidArgument);
  }
  const auto command = static_cast<firmware::Command>(second);
  const bool isInformation = command == firmware::Command::BatteryInformation;
  const bool isKnown = first == firmware::kRead && third == firmware::kOfBattery &&
                       (isInformation || command == firmware::Command::CellSwellProtection);
  if (!isKnown) {
    *returnCode = firmware::kNotSupported;
    return 0;
  }
  const SlotContents slot = *input < machine_->slots.size() ? machine_->slots[*input] : SlotContents{};
  const BlockAnswer& answer = isInformation ? slot.battery : slot.cellSwell;
  if (answer.channelStatus != 0) {
    return answer.channelStatus;
  }
  *returnCode = answer.returnCode;
  if (answer.returnCode == 0) {
    std::copy(answer.block.begin(), answer.block.end(), output);
  }
  return 0;
}

long SimulatedPlatform::ConnectWmi(const std::wstring& namespacePath,
                                   std::unique_ptr<platform::WmiConnection>& connection) {
  const auto found = machine_->namespaces.find(NamespaceKey(base::WideToUtf8(namespacePath)));
  if (found == machine_->namespaces.end()) {
    return ToHresult(kWbemInvalidNamespace);
  }
  if (found->second.connectCode != 0) {
    return found->second.connectCode;
  }
  connection = ConnectTo(machine_, found->second);
  return 0;
}

// The test program lies beside the library; no other file of the machine is a program.
const TestProgramDescription* SimulatedPlatform::FindProgram(const char* path) const {
  if (path == nullptr || !machine_->modulePath.has_value() || !machine_->testProgram.has_value()) {
    return nullptr;
  }
  const std::string module = *machine_->modulePath;
  const std::string program = module.substr(0, module.find_last_of("\\/")) + "\\BatteryTest.exe";
  return NormalPath(path) == NormalPath(program) ? &*machine_->testProgram : nullptr;
}

bool SimulatedPlatform::RunProgram(const char* path) {
  const TestProgramDescription* const program = FindProgram(path);
  if (program == nullptr) {
    return Fail(kFileNotFound);
  }
  if (program->startCode != 0) {
    return Fail(program->startCode);
  }
  std::this_thread::sleep_for(program->runs);
  if (program->report.has_value()) {
    programData_.WriteReport(*program->report);
  }
  return Succeed();
}

bool SimulatedPlatform::ReadProductVersion(const char* path, platform::ProductVersion& version) {
  const TestProgramDescription* const program = FindProgram(path);
  if (program == nullptr) {
    return Fail(kFileNotFound);
  }
  if (!program->version.has_value()) {
    return Fail(kNoVersionResource);
  }
  version = *program->version;
  return Succeed();
}

std::uint32_t SimulatedPlatform::LibraryPath(char* buffer, std::uint32_t size) {
  return CopyCut(machine_->modulePath.value_or(""), buffer, size);
}

std::wstring SimulatedPlatform::ModuleName() {
  const std::string path = machine_->modulePath.value_or("");
  return ToWide(path.substr(path.find_last_of("\\/") + 1));
}

std::optional<std::string> SimulatedPlatform::ProgramDataFolder() {
  Succeed();
  if (!machine_->programData.isPrivate) {
    return machine_->programData.folder;
  }
  const std::string folder = programData_.Path();
  return folder.empty() ? std::nullopt : std::optional(folder);
}

std::uint32_t SimulatedPlatform::FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) {
  const auto message = machine_->systemMessages.find(code);
  if (message == machine_->systemMessages.end()) {
    Fail(kMessageNotFound);
    return 0;
  }
  if (message->second.size() >= size) {
    Fail(kInsufficientBuffer);
    return 0;
  }
  Succeed();
  return CopyCut(message->second, buffer, size);
}

std::uint32_t SimulatedPlatform::LastSystemCode() {
  return lastSystemCode;
}

std::time_t SimulatedPlatform::Now() {
  return machine_->now.has_value() ? *machine_->now : std::time(nullptr);
}

// The arithmetic of mktime() on Windows, in a zone without daylight-saving time: fields out of range run over into the
// next larger one, and what lies before 1970 has no time value.
std::time_t SimulatedPlatform::LocalTimeValue(const std::tm& calendarTime) {
  const std::int64_t months = (calendarTime.tm_year + std::int64_t{1900}) * 12 + calendarTime.tm_mon;
  const std::int64_t year = months / 12;
  constexpr std::int64_t kLastYear = 3000;
  if (year < 1900 || year > kLastYear) {
    return -1;
  }
  const std::chrono::year_month_day firstOfMonth{std::chrono::year(static_cast<int>(year)),
                                                 std::chrono::month(static_cast<unsigned>(months % 12 + 1)),
                                                 std::chrono::day(1)};
  const std::int64_t days = std::chrono::sys_days(firstOfMonth).time_since_epoch().count() + calendarTime.tm_mday - 1;
  const std::int64_t seconds = ((days * 24 + calendarTime.tm_hour) * 60 + calendarTime.tm_min) * 60 +
                               calendarTime.tm_sec - std::int64_t{machine_->utcOffsetMinutes} * 60;
  return seconds < 0 ? std::time_t{-1} : std::time_t{seconds};
}

platform::SlotDescription SimulatedPlatform::DescribeSlot(std::uint32_t slot) {
  const bool isSlot = slot < machine_->slots.size();
  platform::SlotDescription description = isSlot ? machine_->slots[slot].driver : platform::SlotDescription();
  description.source = machine_->source;
  return description;
}

}  // namespace norv::simulator
