// Notes down what is asked of a platform.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "norv/platform/Platform.h"

namespace norv::simulator {

// One operation that was asked of a platform or of one of its WMI connections. `argument` is UTF-8 and names what was
// asked for:
//
//   SendBiosCommand                  "1,7,1 slot 0": the command and the first byte of its input
//   ConnectWmi, Query                the namespace, the query
//   ReadText, ReadNumber             the property
//   RunProgram, ReadProductVersion   the path
//   FormatSystemMessage              the code in decimal
//   LocalTimeValue                   the calendar time, "2021-05-06 00:00:00"
//   DescribeSlot                     the slot, "0"
//   all others                       nothing
struct Operation {
  std::string name;
  std::string argument;
};

bool operator==(const Operation& left, const Operation& right);
bool operator!=(const Operation& left, const Operation& right);

// Hands everything on to any other platform and notes it down first, so that an operation that fails or throws is on
// record too. The other platform must outlive the recorder; a connection may outlive both the recorder and its notes.
// Threads: as for every platform.
class OperationRecorder : public platform::PlatformWrapper {
 public:
  explicit OperationRecorder(platform::Platform& inner);
  ~OperationRecorder() override;

  // Everything asked so far, in order. To be read while no other thread uses the platform; later operations are added
  // to the same vector.
  const std::vector<Operation>& Operations() const;

  // Drops the notes.
  void Clear();

 private:
  struct Parts;
  explicit OperationRecorder(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace norv::simulator
