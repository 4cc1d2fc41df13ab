#include "calls/Operations.h"

#include <algorithm>
#include <array>
#include <memory>

#include "calls/Outcome.h"
#include "machine/HexText.h"
#include "machine/Text.h"

namespace norv::simulator {

namespace {

using platform::Platform;

void SendBiosCommand(Platform& platform, const Call& call) {
  Block output{};
  std::uint32_t returnCode = 0;
  platform.SendBiosCommand(call.command[0], call.command[1], call.command[2], call.input.data(),
                           static_cast<std::uint32_t>(call.input.size()), output.data(), &returnCode);
}

void ConnectWmi(Platform& platform, const Call& call) {
  std::unique_ptr<platform::WmiConnection> connection;
  platform.ConnectWmi(ToWide(call.argument), connection);
}

void RunProgram(Platform& platform, const Call& call) {
  platform.RunProgram(call.path.c_str());
}

void ReadProductVersion(Platform& platform, const Call& call) {
  platform::ProductVersion version;
  platform.ReadProductVersion(call.path.c_str(), version);
}

void LibraryPath(Platform& platform, const Call& call) {
  std::vector<char> buffer(call.size);
  platform.LibraryPath(buffer.data(), call.size);
}

void FormatSystemMessage(Platform& platform, const Call& call) {
  std::vector<char> buffer(call.size);
  platform.FormatSystemMessage(call.code, buffer.data(), call.size);
}

void LocalTimeValue(Platform& platform, const Call& call) {
  platform.LocalTimeValue(call.calendarTime);
}

void DescribeSlot(Platform& platform, const Call& call) {
  platform.DescribeSlot(call.slot);
}

// An operation without arguments.
template <auto Operation>
void Plain(Platform& platform, const Call& /*call*/) {
  (platform.*Operation)();
}

// clang-format off
constexpr std::array kOperations{
    OperationRow{kSendBiosCommand, true, AnswerForm::Bios, Failures::Bios, SendBiosCommand},
    OperationRow{kConnectWmi, true, AnswerForm::Connects, Failures::Code, ConnectWmi},
    OperationRow{kQuery, true, AnswerForm::Objects, Failures::Code, nullptr},
    OperationRow{kNext, false, AnswerForm::ObjectPart, Failures::Fails, nullptr},
    OperationRow{kReadText, true, AnswerForm::ObjectPart, Failures::Code, nullptr},
    OperationRow{kReadNumber, true, AnswerForm::ObjectPart, Failures::Fails, nullptr},
    OperationRow{kRunProgram, true, AnswerForm::Truth, Failures::LeftCode, RunProgram},
    OperationRow{kReadProductVersion, true, AnswerForm::Version, Failures::LeftCode, ReadProductVersion},
    OperationRow{kLibraryPath, false, AnswerForm::Buffer, Failures::Fails, LibraryPath},
    OperationRow{kModuleName, false, AnswerForm::Name, Failures::Fails, Plain<&Platform::ModuleName>},
    OperationRow{kProgramDataFolder, false, AnswerForm::Folder, Failures::Fails, Plain<&Platform::ProgramDataFolder>},
    OperationRow{kFormatSystemMessage, true, AnswerForm::Buffer, Failures::LeftCode, FormatSystemMessage},
    OperationRow{kLastSystemCode, false, AnswerForm::SystemCode, Failures::Code, nullptr},
    OperationRow{kReportInvalidParameter, false, AnswerForm::Nothing, Failures::None,
                 Plain<&Platform::ReportInvalidParameter>},
    OperationRow{kNow, false, AnswerForm::Time, Failures::None, Plain<&Platform::Now>},
    OperationRow{kLocalTimeValue, true, AnswerForm::Time, Failures::Fails, LocalTimeValue},
    OperationRow{kDescribeSlot, true, AnswerForm::Slot, Failures::Fails, DescribeSlot},
};

constexpr std::array kEarlierOperations{
    OperationRow{kBatterySource, false, AnswerForm::Name, Failures::None, nullptr},
    OperationRow{kDriverStateOfCharge, true, AnswerForm::Percent, Failures::None, nullptr},
};
// clang-format on

const OperationRow* Find(std::span<const OperationRow> rows, std::string_view name) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const OperationRow& row) { return row.name == name; });
  return found != rows.end() ? &*found : nullptr;
}

}  // namespace

std::span<const OperationRow> Operations() {
  return kOperations;
}

std::string OperationNames(std::span<const OperationRow> rows) {
  std::string names;
  for (const OperationRow& row : rows) {
    names.append(names.empty() ? "" : ", ").append(row.name);
  }
  return names;
}

const OperationRow* FindOperation(std::string_view name) {
  return Find(kOperations, name);
}

const OperationRow* FindAnswered(std::string_view name) {
  const OperationRow* const row = FindOperation(name);
  if (row != nullptr) {
    return row->answers != AnswerForm::ObjectPart ? row : nullptr;
  }
  return Find(kEarlierOperations, name);
}

std::string ExtraInput(std::span<const unsigned char> input) {
  const bool isPlain = std::all_of(input.begin(), input.end(),
                                   [&](const unsigned char& byte) { return &byte == input.data() || byte == 0; });
  return isPlain ? std::string() : HexText(input);
}

std::string CallKey(const Call& call) {
  std::string key;
  const std::string input = ExtraInput(call.input);
  for (const std::string_view part : {call.operation, std::string_view(call.argument),
                                      std::string_view(call.wmiNamespace), std::string_view(input)}) {
    key.append(part).push_back('\0');
  }
  return key;
}

}  // namespace norv::simulator
