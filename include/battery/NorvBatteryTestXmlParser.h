// Starts the battery test program and reads the status out of its report.
#pragma once

#include <cstdint>
#include <memory>

#include "battery/Export.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery {

// One parser serves one run of the test program. Nothing but its construction throws, and that nothing but the standard
// allocation exception. A parser is used by one thread at a time; copies share their texts, and a parser and its copies
// count as one.
class NORV_BATTERY_API NorvBatteryTestXmlParser {
 public:
  NorvBatteryTestXmlParser();
  NorvBatteryTestXmlParser(const NorvBatteryTestXmlParser& other);
  NorvBatteryTestXmlParser& operator=(const NorvBatteryTestXmlParser& other);
  ~NorvBatteryTestXmlParser();  // not virtual, as that of NorvBatteries is not

  // The last failure. A later success does not clear it. The reference is valid until the parser is destroyed, and
  // always shows the newest failure; a copy of the Error keeps one.
  const error::Error& GetError() const;

  // Starts the program file `programPath`, a full path, without arguments and waits for its end, without a time limit.
  // True once it has ended, whatever its exit code. False when it could not be started; GetError() has the system's
  // code. A null pointer names no program that could be.
  bool GenerateBatteryTestXMLReport(const char* programPath);

  // The integer in the last element <r i="6" ...> of a report, or -1; never throws.
  //
  // The report is `xmlText`, a zero-terminated text that is only read, or with a null pointer the file that the test
  // program writes: "Quellbrook/Tavenhall/Resources/Temp/Battery.xml" below the folder that the environment variable
  // "ProgramData" names. Each file is read behind those that this parser read before.
  //
  // -1 with an error stored when there is no such folder or file, when the element holds no number of 32 bits, or when
  // an exception stopped the reading. -1 without one when the element is empty, or when there is none and this parser,
  // its copies included, has found none before. A parser that has found one gives that one's integer again for a report
  // without any.
  int GetBatteryStatusFromXMLReport(const char* xmlText);

 private:
  struct State;

  const char* GetFileXMLData(const char* path, unsigned long* systemError);
  const char* GetParseData(const char* xmlText, const char* elementName, const char* attributeText);

  std::shared_ptr<State> state_;
  error::Error error_;
  [[maybe_unused]] std::int64_t reserved_;  // part of the layout; copied along
};

}  // namespace norv::shared::battery
