// One place that everything asked of a platform comes through.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "calls/Call.h"
#include "calls/Outcome.h"
#include "norv/platform/Platform.h"

namespace norv::simulator {

// Hands the call on. Throws what the platform throws.
using Proceed = std::function<Outcome()>;

// Stands between a platform and whoever asks it.
class Hook {
 public:
  Hook() = default;
  Hook(const Hook&) = delete;
  Hook& operator=(const Hook&) = delete;
  virtual ~Hook() = default;

  // What the call is answered by: what `proceed` gave, or a hook's own answer. A `thrown` in it is thrown.
  virtual Outcome Intercept(const Call& call, const Proceed& proceed) = 0;

  // The hook of a new connection to a namespace, which may outlive this one.
  virtual std::shared_ptr<Hook> OfConnection(const std::string& wmiNamespace) = 0;
};

// Hands every operation to a hook, those of its connections included, which may outlive it. The other platform must
// outlive it.
class Interceptor : public platform::Platform {
 public:
  Interceptor(platform::Platform& inner, std::shared_ptr<Hook> hook);
  ~Interceptor() override;

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
  platform::SlotDescription DescribeSlot(std::uint32_t slot) override;

 private:
  platform::Platform& inner_;
  std::shared_ptr<Hook> hook_;
};

}  // namespace norv::simulator
