// Gives the answers that a machine file spells out.
#pragma once

#include <memory>
#include <vector>

#include "machine/Answer.h"
#include "norv/platform/Platform.h"
#include "play/PrivateFolder.h"

namespace norv::simulator {

// Answers calls that there are answers for: the first one the first call of its key and so on, and the last one every
// call after it. It hands on the rest. The other platform must outlive it, and so must its connections.
class AnswerPlayer : public platform::PlatformWrapper {
 public:
  AnswerPlayer(platform::Platform& inner, std::vector<Answer> answers);
  ~AnswerPlayer() override;

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
  class Script;
  class Connection;

  std::shared_ptr<Script> script_;
  PrivateFolder programData_;
};

}  // namespace norv::simulator
