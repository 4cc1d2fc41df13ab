#include "battery/NorvBatteryTestXmlParser.h"

#include <cstddef>
#include <stdexcept>
#include <string>

#include "OrdinaryFile.h"
#include "diagnostics/Failures.h"
#include "diagnostics/Log.h"
#include "norv/platform/Platform.h"
#include "test/ReportSearch.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

using diagnostics::Report;
using diagnostics::ValueError;
using test::kNoVerdict;

namespace {

constexpr const char* kGenerate = "norv::shared::battery::NorvBatteryTestXmlParser::GenerateBatteryTestXMLReport";
constexpr const char* kReadFile = "norv::shared::battery::NorvBatteryTestXmlParser::GetFileXMLData";
constexpr const char* kReadStatus = "norv::shared::battery::NorvBatteryTestXmlParser::GetBatteryStatusFromXMLReport";

// Below the machine-wide folder for program data. The value of that folder gets no separator added or removed.
constexpr const char* kReportFile = "/Quellbrook/Tavenhall/Resources/Temp/Battery.xml";

// The row of the report that holds the battery's status.
constexpr const char* kRowElement = "r";
constexpr const char* kStatusRow = " i=\"6\"";

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
  auto& platform = platform::Platform::Current();
  if (platform.RunProgram(programPath)) {
    return true;
  }
  Report(error_, ValueError<unsigned long>(platform.LastSystemCode(), "CreateProcess failed", kGenerate), kGenerate);
  return false;
}

int NorvBatteryTestXmlParser::GetBatteryStatusFromXMLReport(const char* xmlText) {
  if (xmlText == nullptr) {
    const auto folder = platform::Platform::Current().ProgramDataFolder();
    if (!folder) {
      error_ = ValueError<int>(0, "Unable to get path to ProgramData", kReadStatus);
      return kNoVerdict;
    }
    unsigned long systemError = 0;
    xmlText = GetFileXMLData((*folder + kReportFile).c_str(), &systemError);
    if (systemError != 0) {
      return kNoVerdict;
    }
  }
  const std::string value = GetParseData(xmlText, kRowElement, kStatusRow);
  if (value.empty()) {
    return kNoVerdict;
  }
  try {
    return std::stoi(value);
  } catch (const std::logic_error&) {  // no digits, or out of range
    Report(error_, ValueError<int>(0, "Battery Status contains non-integer value", kReadStatus), kReadStatus);
    return kNoVerdict;
  }
}

// A second file is read behind the first. Whoever may write below the folder for program data may have laid anything
// there in the report's place; what cannot be read as an ordinary file of a bearable size counts as missing.
const char* NorvBatteryTestXmlParser::GetFileXMLData(const char* path, unsigned long* systemError) {
  *systemError = 0;
  if (const auto content = platform::ReadOrdinaryFile(path, platform::kLargestReport)) {
    state_->report += *content;
  } else {
    *systemError = platform::Platform::Current().LastSystemCode();
    Report(error_, ValueError<int>(0, "Battery XML report not found", kReadFile), kReadFile);
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
