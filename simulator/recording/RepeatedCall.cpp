#include "recording/RepeatedCall.h"

#include "calls/Operations.h"
#include "machine/Text.h"
#include "recording/Tape.h"

namespace norv::simulator {

namespace {

// What is thrown is on the tape.
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

}  // namespace

RecordedCall RepeatedCall(platform::Platform& platform, const RecordedCall& call) {
  const auto tape = std::make_shared<Tape>();
  Interceptor recorder(platform, RecordingHook(tape));
  const OperationRow* const row = FindOperation(call.operation);
  if (call.operation == kQuery) {
    RepeatQuery(recorder, call);
  } else if (row != nullptr && row->ask != nullptr) {
    row->ask(recorder, call);
  }
  if (call.outcome.left.has_value()) {
    recorder.LastSystemCode();
  }
  std::vector<RecordedCall> calls = tape->Calls();
  return calls.empty() ? RecordedCall() : std::move(calls.back());
}

bool AnswersAlike(const RecordedCall& first, const RecordedCall& second) {
  return first.operation == second.operation && first.outcome == second.outcome && first.rows == second.rows &&
         first.ended == second.ended && first.end == second.end;
}

}  // namespace norv::simulator
