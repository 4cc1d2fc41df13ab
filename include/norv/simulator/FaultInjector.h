// Makes chosen operations of a platform fail at chosen calls.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "norv/platform/Platform.h"

namespace norv::simulator {

// What a faulted operation does instead of its work.
enum class FaultEffect {
  Status,      // the BIOS channel fails with Fault::number as its status
  ReturnCode,  // the BIOS answers with Fault::number as its return code
  Code,        // the operation fails with Fault::number as its code
  Fails,       // an operation without a code fails: false, empty, nothing or -1
  ThrowsRuntimeError,
  ThrowsSystemError,  // std::errc::permission_denied in the generic category
  ThrowsBadAlloc,
  ThrowsInt,           // kInjectedNumber
  ThrowsUnsignedLong,  // kInjectedNumber
  ThrowsString,        // kInjectedText as std::string
  ThrowsText,          // kInjectedText as const char*
  ThrowsOther,         // an InjectedException
};

inline constexpr int kInjectedNumber = 42;
inline constexpr const char* kInjectedText = "injected fault";  // also what the standard exceptions say

// An exception of no kind that a library would know.
struct InjectedException {};

struct Fault {
  // The name of the Platform or WmiConnection operation, "Query".
  std::string operation;
  // Which of the calls fails, counted from 1; every one when absent.
  std::optional<unsigned> call;
  // Only calls with exactly this argument (see Operation) fail, and only they are counted; any argument when absent.
  std::optional<std::string> argument;
  FaultEffect effect = FaultEffect::Fails;
  // The status, return code or code; not 0 for those, and without meaning for the other effects.
  std::uint32_t number = 0;
};

// What is wrong with a fault, as one sentence; empty for a fault that an injector takes.
//
//   SendBiosCommand                                              Status, ReturnCode
//   ConnectWmi, Query, ReadText                                  Code
//   RunProgram, ReadProductVersion, FormatSystemMessage          Code: LastSystemCode() gives it afterwards
//   LastSystemCode                                               Code: the code that it gives
//   Next, ReadNumber, LibraryPath, ModuleName, ProgramDataFolder, LocalTimeValue, DescribeSlot
//                                                                Fails
//
// Every operation can throw. Now and ReportInvalidParameter can do nothing else.
std::string FaultProblem(const Fault& fault);

// Hands everything on to another platform but for what its faults name. When several faults fit one call, the first one
// wins. The other platform must outlive the injector; a connection may outlive the injector.
// Threads: as for every platform; the calls of all threads and connections are counted together.
class FaultInjector : public platform::PlatformWrapper {
 public:
  // Throws std::invalid_argument with the FaultProblem of the first fault that has one.
  FaultInjector(platform::Platform& inner, std::vector<Fault> faults);
  ~FaultInjector() override;

 private:
  struct Parts;
  explicit FaultInjector(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace norv::simulator
