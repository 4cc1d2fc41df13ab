// Runs the battery test program and keeps its verdict.
#pragma once

#include <memory>
#include <string>

#include "battery/Export.h"
#include "norv/shared/error/Error.h"

namespace norv::shared::battery {

// Runs the program "BatteryTest.exe" that lies beside the library and keeps the verdict of its last run.
//
// A run throws nothing. An object is used by one thread at a time. A copy shares the version text with its source: a
// later run of either changes what both report.
class NORV_BATTERY_API NorvBatteryTestInfo {
 public:
  // No verdict yet: result -1, label "NOT_DEFINED", version "0.0.0.0", no error.
  NorvBatteryTestInfo();
  NorvBatteryTestInfo(const NorvBatteryTestInfo& other);
  NorvBatteryTestInfo& operator=(const NorvBatteryTestInfo& other);
  virtual ~NorvBatteryTestInfo();

  // The result code of the last run; -1 when there is no verdict (not run, or failed).
  virtual int GetBatteryTestResult() const;

  // The label of the code that GetBatteryTestResult() gives, "NOT_DEFINED" for a code without one. A constant text.
  virtual const char* GetBatteryTestResultLabel() const;

  // The product version of the test program, "0.0.0.0" until it could be read. Valid until the next run, or until this
  // object and its copies are gone.
  virtual const char* GetBatteryTestVersion() const;

  // The last failure. A later success does not clear it. The reference is valid until the object is destroyed, and
  // always shows the newest failure; a copy of the Error keeps one.
  virtual const error::Error& GetError() const;

  // Runs the test program and waits for its end, without a time limit. Afterwards the result code is the status that
  // the program reported, or -1. What failed is in GetError() where the program could not be started; a report that is
  // missing or has no status leaves GetError() as it was.
  virtual void RunBatteryTest();

 protected:
  // Reads the product version of the file `programPath` into the version text. On failure returns false, keeps the text
  // and stores the system's message as the error.
  virtual bool RetrieveTestResultVersion(const char* programPath);

 private:
  std::shared_ptr<std::string> version_;
  int result_;
  error::Error error_;
};

}  // namespace norv::shared::battery
