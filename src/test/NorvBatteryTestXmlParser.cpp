#include "battery/NorvBatteryTestXmlParser.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "OrdinaryFile.h"
#include "diagnostics/Operation.h"
#include "norv/platform/Platform.h"
#include "test/ReportSearch.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

using diagnostics::Operation;
using diagnostics::WrongValue;
using test::kNoVerdict;

namespace {

// Below the machine-wide folder for program data. The value of that folder gets no separator added or removed.
constexpr const char* kReportFile = "/Quellbrook/Tavenhall/Resources/Temp/Battery.xml";

// The row of the report that holds the battery's status.
constexpr const char* kRowElement = "r";
constexpr const char* kStatusRow = " i=\"6\"";

// The number that `text` begins with. Nothing without one, or for one that is out of range.
std::optional<int> ToNumber(const std::string& text) {
  try {
    return std::stoi(text);
  } catch (const std::logic_error&) {
    return std::nullopt;
  }
}

}  // namespace

struct NorvBatteryTestXmlParser::State {
  std::string value;   // the content found last
  std::string report;  // everything read from report files
};

NorvBatteryTestXmlParser::NorvBatteryTestXmlParser() : state_(std::make_shared<State>()), reserved_(0) {
}

NorvBatteryTestXmlParser::NorvBatteryTestXmlParser(const NorvBatteryTestXmlParser& other) = default;

NorvBatteryTestXmlParser& NorvBatteryTestXmlParser::operator=(const NorvBatteryTestXmlParser& other) = default;

NorvBatteryTestXmlParser::~NorvBatteryTestXmlParser() = default;

const error::Error& NorvBatteryTestXmlParser::GetError() const {
  return error_;
}

bool NorvBatteryTestXmlParser::GenerateBatteryTestXMLReport(const char* programPath) {
  const Operation operation("norv::shared::battery::NorvBatteryTestXmlParser::GenerateBatteryTestXMLReport", error_);
  return operation.Run([&operation, programPath] {
    auto& platform = platform::Platform::Current();
    return platform.RunProgram(programPath) ||
           operation.Fail(WrongValue<unsigned long>(platform.LastSystemCode(), "CreateProcess failed"));
  });
}

int NorvBatteryTestXmlParser::GetBatteryStatusFromXMLReport(const char* xmlText) {
  const Operation operation("norv::shared::battery::NorvBatteryTestXmlParser::GetBatteryStatusFromXMLReport", error_);
  int status = kNoVerdict;
  operation.Run([this, &operation, xmlText, &status] {
    const char* report = xmlText;
    if (report == nullptr) {
      const auto folder = platform::Platform::Current().ProgramDataFolder();
      if (!folder) {
        return operation.Store(WrongValue<int>(0, "Unable to get path to ProgramData"));
      }
      unsigned long systemError = 0;
      report = GetFileXMLData((*folder + kReportFile).c_str(), &systemError);
      if (systemError != 0) {
        return false;
      }
    }
    const std::string value = GetParseData(report, kRowElement, kStatusRow);
    if (value.empty()) {
      return false;
    }
    const std::optional<int> number = ToNumber(value);
    if (!number) {
      return operation.Fail(WrongValue<int>(0, "Battery Status contains non-integer value"));
    }
    status = *number;
    return true;
  });
  return status;
}

// A second file is read behind the first. Whoever may write below the folder for program data may have laid anything
// there in the report's place; what cannot be read as an ordinary file of a bearable size counts as missing.
const char* NorvBatteryTestXmlParser::GetFileXMLData(const char* path, unsigned long* systemError) {
  *systemError = 0;
  if (const auto content = platform::ReadOrdinaryFile(path, platform::kLargestReport)) {
    state_->report += *content;
  } else {
    *systemError = platform::Platform::Current().LastSystemCode();
    const Operation operation("norv::shared::battery::NorvBatteryTestXmlParser::GetFileXMLData", error_);
    operation.Fail(WrongValue<int>(0, "Battery XML report not found"));
  }
  return state_->report.c_str();
}

const char* NorvBatteryTestXmlParser::GetParseData(const char* xmlText, const char* elementName,
                                                   const char* attributeText) {
  if (const auto content = test::FindLastContent(xmlText, elementName, attributeText)) {
    state_->value = *content;
  }
  return state_->value.c_str();
}

}  // namespace norv::shared::battery
