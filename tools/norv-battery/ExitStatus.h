#pragma once

namespace norv::tool {

enum ExitStatus : int {
  kSuccess = 0,
  kNoBattery = 1,
  kBadRows = 1,
  kUnusable = 2,  // arguments, machine file, input of a command that needs all of it, or output
  kTestFailed = 3,
  kNoVerdict = 4,
};

}  // namespace norv::tool
