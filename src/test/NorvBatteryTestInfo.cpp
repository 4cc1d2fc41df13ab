#include "battery/NorvBatteryTestInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

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

constexpr std::size_t kPathSize = 260;  // MAX_PATH

// Cut where it does not fit into `Size` bytes, as the system cuts it.
template <std::size_t Size>
std::string LibraryPath() {
  std::array<char, Size> buffer{};
  platform::Platform::Current().LibraryPath(buffer.data(), Size);
  buffer.back() = '\0';
  return buffer.data();
}

// Why a program beside `library` is not known to lie beside the library; null when it is.
const char* Doubt(const std::string& library) {
  if (library.empty()) {
    return "the path of the library is not known, or names another file by now";
  }
  // A path that fills the buffer may be whole or cut. One more byte tells.
  const bool isCut = library.size() == kPathSize - 1 && LibraryPath<kPathSize + 1>() != library;
  return isCut ? "the path of the library is longer than 259 characters" : nullptr;
}

// A program that need not be the library's own is not to be started, and the log says why.
bool IsBesideLibrary(const std::string& library) {
  const char* const doubt = Doubt(library);
  if (doubt != nullptr) {
    Log(Severity::Error, kRun, {"BatteryTest.exe is not started: ", doubt});
  }
  return doubt == nullptr;
}

// The test program lies beside the library.
std::string TestProgramPath(const std::string& library) {
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
    const std::string library = LibraryPath<kPathSize>();
    const std::string program = TestProgramPath(library);
    Log(Severity::Info, kRun, {"BatteryTest exe path = ", program});
    const bool isBesideLibrary = IsBesideLibrary(library);
    if (!RetrieveTestResultVersion(program.c_str())) {
      Report(error_, ValueError<int>(0, "Error getting version of BatteryTest.exe", kRun), kRun);
      return false;
    }
    NorvBatteryTestXmlParser parser;
    if (!isBesideLibrary || !parser.GenerateBatteryTestXMLReport(program.c_str())) {
      Report(error_, ValueError<int>(0, "Error parsing the BatteryTest XML report", kRun), kRun);
      return false;
    }
    // What goes wrong with the report stays with its parser: the status is then -1, and this object has no failure of
    // its own.
    status = parser.GetBatteryStatusFromXMLReport(nullptr);
    return true;
  });
  Log(Severity::Info, kRun, {"battery_status = ", std::to_string(status)});
  Log(Severity::Info, kRun, {"Finished ", kRun, " "});
  result_ = status;
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
