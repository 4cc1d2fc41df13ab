#include "battery/NorvBatteryTestInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "battery/NorvBatteryTestXmlParser.h"
#include "diagnostics/Operation.h"
#include "norv/platform/Platform.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

using diagnostics::Operation;
using diagnostics::Severity;
using diagnostics::WrongValue;
using test::kNoVerdict;

namespace {

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
  const Operation operation("norv::shared::battery::NorvBatteryTestInfo::RunBatteryTest", error_);
  operation.LogStarted(" ");
  int status = kNoVerdict;
  operation.Run([this, &operation, &status] {
    const std::string library = LibraryPath<kPathSize>();
    const std::string program = TestProgramPath(library);
    operation.Log(Severity::Info, {"BatteryTest exe path = ", program});
    // A program that need not be the library's own is not to be started, and the log says why.
    const char* const doubt = Doubt(library);
    if (doubt != nullptr) {
      operation.Log(Severity::Error, {"BatteryTest.exe is not started: ", doubt});
    }
    if (!RetrieveTestResultVersion(program.c_str())) {
      return operation.Fail(WrongValue<int>(0, "Error getting version of BatteryTest.exe"));
    }
    NorvBatteryTestXmlParser parser;
    if (doubt != nullptr || !parser.GenerateBatteryTestXMLReport(program.c_str())) {
      return operation.Fail(WrongValue<int>(0, "Error parsing the BatteryTest XML report"));
    }
    // What goes wrong with the report stays with its parser: the status is then -1, and this object has no failure of
    // its own.
    status = parser.GetBatteryStatusFromXMLReport(nullptr);
    return true;
  });
  operation.Log(Severity::Info, {"battery_status = ", std::to_string(status)});
  operation.LogFinished(" ");
  result_ = status;
}

bool NorvBatteryTestInfo::RetrieveTestResultVersion(const char* programPath) {
  auto& platform = platform::Platform::Current();
  platform::ProductVersion version;
  if (!platform.ReadProductVersion(programPath, version)) {
    const Operation operation("norv::shared::battery::NorvBatteryTestInfo::RetrieveTestResultVersion", error_);
    return operation.Fail(diagnostics::SystemFailure(static_cast<std::int32_t>(platform.LastSystemCode())));
  }
  *version_ = ToText(version);
  return true;
}

}  // namespace norv::shared::battery
