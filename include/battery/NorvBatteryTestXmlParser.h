// Starts the battery test program and reads the status out of its report.
#pragma once

#include <cstdint>
#include <memory>

#include "battery/Export.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery {

// One parser serves one run of the test program. It throws nothing but the standard allocation exception. A parser is
// used by one thread at a time; copies share their texts, and so does that rule.
class NORV_BATTERY_API NorvBatteryTestXmlParser {
 public:
  NorvBatteryTestXmlParser();
  NorvBatteryTestXmlParser(const NorvBatteryTestXmlParser& other);
  NorvBatteryTestXmlParser& operator=(const NorvBatteryTestXmlParser& other);
  ~NorvBatteryTestXmlParser();

  // The last failure. A later success does not clear it.
  const error::Error& GetError() const;

  // Starts the program file `programPath`, a full path, without arguments and waits for its end, without a time limit.
  // True once it has ended, whatever its exit code. False when it could not be started; GetError() has the system's
  // code.
  bool GenerateBatteryTestXMLReport(const char* programPath);

  // The integer in the last element <r i="6" ...> of a report: `xmlText`, a zero-terminated text that is only read, or
  // with a null pointer the file "Battery.xml" in the test program's folder for reports. -1 when there is none or it
  // cannot be read; GetError() says why when the report is missing or the element holds no number.
  int GetBatteryStatusFromXMLReport(const char* xmlText);

 private:
  struct State;

  const char* GetFileXMLData(const char* path, unsigned long* systemError);
  const char* GetParseData(const char* xmlText, const char* elementName, const char* attributeText);
  void Fail(const char* message, std::int64_t code, const char* typeText, const char* functionText);

  std::shared_ptr<State> state_;
  error::Error error_;
  std::int64_t reserved_;  // copied along, not used
};

}  // namespace norv::shared::battery
