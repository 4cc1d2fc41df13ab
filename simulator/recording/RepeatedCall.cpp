#include "recording/RepeatedCall.h"

#include "calls/OperationText.h"
#include "machine/Text.h"
#include "norv/simulator/MachineRecorder.h"

namespace norv::simulator {

namespace {

// What is thrown is on the recorder's tape.
template <typename Work>
bool Try(Work work) {
  try {
    return work();
  } catch (...) {
    return false;
  }
}

void ReadLike(const RecordedRow& row, platform::WmiConnection& connection) {
  for (const auto& entry : row) {
    const std::wstring property = ToWide(entry.first);
    const PropertyReads& reads = entry.second;
    if (reads.text.has_value()) {
      std::string text;
      Try([&] { return connection.ReadText(property, text) == 0; });
    }
    if (reads.number.has_value()) {
      std::uint32_t number = 0;
      Try([&] { return connection.ReadNumber(property, number); });
    }
  }
}

void RepeatQuery(platform::Platform& platform, const RecordedCall& call) {
  std::unique_ptr<platform::WmiConnection> connection;
  if (platform.ConnectWmi(ToWide(call.wmiNamespace), connection) != 0 || connection == nullptr) {
    return;
  }
  connection->Query(ToWide(call.argument));
  for (const RecordedRow& row : call.rows) {
    if (Try([&] { return connection->Next(); })) {
      ReadLike(row, *connection);
    }
  }
  if (call.ended || call.end.has_value()) {
    Try([&] { return connection->Next(); });
  }
}

void RepeatOnSystem(platform::Platform& platform, const RecordedCall& call) {
  const std::string& operation = call.operation;
  if (operation == kRunProgram) {
    platform.RunProgram(call.path.c_str());
  } else if (operation == kReadProductVersion) {
    platform::ProductVersion version;
    platform.ReadProductVersion(call.path.c_str(), version);
  } else if (operation == kLibraryPath) {
    std::vector<char> buffer(call.size);
    platform.LibraryPath(buffer.data(), call.size);
  } else if (operation == kModuleName) {
    platform.ModuleName();
  } else if (operation == kProgramDataFolder) {
    platform.ProgramDataFolder();
  } else if (operation == kFormatSystemMessage) {
    std::vector<char> buffer(call.size);
    platform.FormatSystemMessage(call.code, buffer.data(), call.size);
  } else if (operation == kNow) {
    platform.Now();
  } else if (operation == kLocalTimeValue) {
    platform.LocalTimeValue(call.calendarTime);
  } else if (operation == kReportInvalidParameter) {
    platform.ReportInvalidParameter();
  } else if (operation == kBatterySource) {
    platform.BatterySource();
  } else if (operation == kDriverStateOfCharge) {
    platform.DriverStateOfCharge(call.slot);
  }
}

void Repeat(platform::Platform& platform, const RecordedCall& call) {
  if (call.operation == kSendBiosCommand) {
    Block output{};
    std::uint32_t returnCode = 0;
    platform.SendBiosCommand(call.command[0], call.command[1], call.command[2], call.input.data(),
                             static_cast<std::uint32_t>(call.input.size()), output.data(), &returnCode);
  } else if (call.operation == kConnectWmi) {
    std::unique_ptr<platform::WmiConnection> connection;
    platform.ConnectWmi(ToWide(call.argument), connection);
  } else if (call.operation == kQuery) {
    RepeatQuery(platform, call);
  } else {
    RepeatOnSystem(platform, call);
  }
  if (call.outcome.left.has_value()) {
    platform.LastSystemCode();
  }
}

}  // namespace

RecordedCall RepeatedCall(platform::Platform& platform, const RecordedCall& call) {
  MachineRecorder recorder(platform);
  Repeat(recorder, call);
  std::vector<RecordedCall> calls = RecordedCalls(recorder);
  return calls.empty() ? RecordedCall() : std::move(calls.back());
}

bool AnswersAlike(const RecordedCall& first, const RecordedCall& second) {
  return first.operation == second.operation && first.outcome == second.outcome && first.rows == second.rows &&
         first.ended == second.ended && first.end == second.end;
}

}  // namespace norv::simulator
