// A described machine as a platform.
#pragma once

#include <memory>

#include "machine/MachineDescription.h"
#include "play/PrivateFolder.h"

namespace norv::simulator {

// Answers from the description alone. The faults in it are not this class's business.
class SimulatedPlatform : public platform::Platform {
 public:
  explicit SimulatedPlatform(std::shared_ptr<const MachineDescription> machine);

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
  std::time_t Now() override;
  std::time_t LocalTimeValue(const std::tm& calendarTime) override;
  platform::SlotDescription DescribeSlot(std::uint32_t slot) override;

 private:
  const TestProgramDescription* FindProgram(const char* path) const;

  std::shared_ptr<const MachineDescription> machine_;
  PrivateFolder programData_;
};

}  // namespace norv::simulator
