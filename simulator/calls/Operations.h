// The operations of a platform and its connections, a row each: for recordings, faults and the answers of machine
// files.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "calls/Call.h"
#include "norv/platform/Platform.h"

namespace norv::simulator {

inline constexpr std::string_view kSendBiosCommand = "SendBiosCommand";
inline constexpr std::string_view kConnectWmi = "ConnectWmi";
inline constexpr std::string_view kQuery = "Query";
inline constexpr std::string_view kNext = "Next";
inline constexpr std::string_view kReadText = "ReadText";
inline constexpr std::string_view kReadNumber = "ReadNumber";
inline constexpr std::string_view kRunProgram = "RunProgram";
inline constexpr std::string_view kReadProductVersion = "ReadProductVersion";
inline constexpr std::string_view kLibraryPath = "LibraryPath";
inline constexpr std::string_view kModuleName = "ModuleName";
inline constexpr std::string_view kProgramDataFolder = "ProgramDataFolder";
inline constexpr std::string_view kFormatSystemMessage = "FormatSystemMessage";
inline constexpr std::string_view kLastSystemCode = "LastSystemCode";
inline constexpr std::string_view kReportInvalidParameter = "ReportInvalidParameter";
inline constexpr std::string_view kNow = "Now";
inline constexpr std::string_view kLocalTimeValue = "LocalTimeValue";
inline constexpr std::string_view kDescribeSlot = "DescribeSlot";

// What was asked before there was DescribeSlot. Recordings of that time answer for them, and for nothing else do they
// count.
inline constexpr std::string_view kBatterySource = "BatterySource";
inline constexpr std::string_view kDriverStateOfCharge = "DriverStateOfCharge";

// What an operation answers, and which members of an Outcome hold it. `fails` is what a fault sets, too, where an
// operation has no code.
enum class AnswerForm {
  Bios,        // number: the status; returnCode; block, where both are 0
  Connects,    // number: the code; fails where there is no connection
  Objects,     // number: the code; the objects are answered for one by one
  ObjectPart,  // of the current object: number: the code, or the number, or fails; text
  Truth,       // fails
  Version,     // text: "1.2.3.4", or fails
  Buffer,      // text; number: the length that was told of it; fails where that is 0
  Name,        // text, in UTF-8
  Folder,      // text, or fails; what is kept of it is the report that lies there
  SystemCode,  // number
  Nothing,
  Time,     // number, or fails
  Percent,  // number, or fails
  Slot,     // slot, or fails where nothing is known
};

// How an operation can fail, but for throwing, which every one can.
enum class Failures {
  None,
  Bios,      // with a status or a return code
  Code,      // with a code
  LeftCode,  // with a code that LastSystemCode gives afterwards
  Fails,     // without a code
};

struct OperationRow {
  std::string_view name;
  bool hasArgument;
  AnswerForm answers;
  Failures failures;
  // Asks once more. Null for what is asked of a connection, and for the code that another operation leaves.
  void (*ask)(platform::Platform& platform, const Call& call);
};

std::span<const OperationRow> Operations();

// An operation that is answered for, earlier ones included. Null where there is none of that name.
const OperationRow* FindAnswered(std::string_view name);

// "SendBiosCommand, ConnectWmi, ..."
std::string OperationNames(std::span<const OperationRow> rows);

// Null where there is none of that name.
const OperationRow* FindOperation(std::string_view name);

// Calls with the same key ask for the same.
std::string CallKey(const Call& call);

// The input of a BIOS command in hex digits; empty where it holds nothing but the slot, as the argument names it.
std::string ExtraInput(std::span<const unsigned char> input);

}  // namespace norv::simulator
