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
//   DriverStateOfCharge              the slot, "0"
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

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override;
  long ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<platform::WmiConnection>& connection) override;
  bool RunProgram(const char* path) override;
  bool ReadProductVersion(const char* path, platform::ProductVersion& version) override;
  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override;
  std::wstring ModuleName() override;
  std::optional<std::string> ProgramDataFolder() override;
  std::uint32_t FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) override;
  std::uint32_t LastSystemCode() override;
  void ReportInvalidParameter() override;
  std::time_t Now() override;
  std::time_t LocalTimeValue(const std::tm& calendarTime) override;
  std::string BatterySource() override;
  std::optional<std::uint32_t> DriverStateOfCharge(std::uint32_t slot) override;

 private:
  class Notes;
  class Connection;

  std::shared_ptr<Notes> notes_;
};

}  // namespace norv::simulator
