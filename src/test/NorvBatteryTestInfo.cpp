#include "battery/NorvBatteryTestInfo.h"

#include <array>
#include <cstdint>

#include "battery/NorvBatteryTestXmlParser.h"
#include "diagnostics/Failures.h"
#include "diagnostics/Log.h"
#include "norv/platform/Platform.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

using diagnostics::Log;
using diagnostics::Report;
using diagnostics::Severity;
using diagnostics::ValueError;
using test::kNoVerdict;

namespace {

constexpr const char* kRun = "norv::shared::battery::NorvBatteryTestInfo::RunBatteryTest";
constexpr const char* kReadVersion = "norv::shared::battery::NorvBatteryTestInfo::RetrieveTestResultVersion";

// The test program lies beside the library. A path that is too long is cut, as the system cuts it.
std::string TestProgramPath() {
  std::array<char, 260> buffer{};
  platform::Platform::Current().LibraryPath(buffer.data(), static_cast<std::uint32_t>(buffer.size()));
  buffer.back() = '\0';
  const std::string library = buffer.data();
  return library.substr(0, library.find_last_of("\\/")) + "\\BatteryTest.exe";
}

std::string ToText(const platform::ProductVersion& version) {
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." + std::to_string(version.build) +
         "." + std::to_string(version.revision);
}

}  // namespace

NorvBatteryTestInfo::NorvBatteryTestInfo() : version_(std::make_shared<std::string>("0.0.0.0")), result_(kNoVerdict) {
}

NorvBatteryTestInfo::NorvBatteryTestInfo(const NorvBatteryTestInfo& other) = default;

NorvBatteryTestInfo& NorvBatteryTestInfo::operator=(const NorvBatteryTestInfo& other) = default;

NorvBatteryTestInfo::~NorvBatteryTestInfo() = default;

int NorvBatteryTestInfo::GetBatteryTestResult() const {
  return result_;
}

const char* NorvBatteryTestInfo::GetBatteryTestResultLabel() const {
  return test::ResultLabel(GetBatteryTestResult());
}

const char* NorvBatteryTestInfo::GetBatteryTestVersion() const {
  return version_->c_str();
}

const error::Error& NorvBatteryTestInfo::GetError() const {
  return error_;
}

void NorvBatteryTestInfo::RunBatteryTest() {
  Log(Severity::Info, kRun, {"Started ", kRun, " "});
  int status = kNoVerdict;
  diagnostics::Guarded(error_, kRun, [this, &status] {
    status = RunProgramAndReadStatus();
    return true;
  });
  Log(Severity::Info, kRun, {"battery_status = ", std::to_string(status)});
  Log(Severity::Info, kRun, {"Finished ", kRun, " "});
  result_ = status;
}

// What goes wrong with the report stays with its parser: the status is then -1 and this object has no failure of its
// own.
int NorvBatteryTestInfo::RunProgramAndReadStatus() {
  const std::string path = TestProgramPath();
  Log(Severity::Info, kRun, {"BatteryTest exe path = ", path});
  if (!RetrieveTestResultVersion(path.c_str())) {
    Report(error_, ValueError<int>(0, "Error getting version of BatteryTest.exe", kRun), kRun);
    return kNoVerdict;
  }
  NorvBatteryTestXmlParser parser;
  if (!parser.GenerateBatteryTestXMLReport(path.c_str())) {
    Report(error_, ValueError<int>(0, "Error parsing the BatteryTest XML report", kRun), kRun);
    return kNoVerdict;
  }
  return parser.GetBatteryStatusFromXMLReport(nullptr);
}

bool NorvBatteryTestInfo::RetrieveTestResultVersion(const char* programPath) {
  auto& platform = platform::Platform::Current();
  platform::ProductVersion version;
  if (!platform.ReadProductVersion(programPath, version)) {
    const auto code = static_cast<std::int32_t>(platform.LastSystemCode());
    Report(error_, diagnostics::SystemMessageError(code, kReadVersion), kReadVersion);
    return false;
  }
  *version_ = ToText(version);
  return true;
}

}  // namespace norv::shared::battery
