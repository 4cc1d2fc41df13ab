// A host for the tests: runs the battery test through the shared library and tells what came of it, a line each.
#include <plog/Appenders/IAppender.h>
#include <plog/Record.h>
#include <plog/Severity.h>

#include <cstdio>
#include <string>

#include "battery/NorvBatteryTestInfo.h"
#include "battery/NorvSharedInitializeLogger.h"

namespace {

// The name of the library's file, from the first record that it logs.
class Component : public plog::IAppender {
 public:
  void write(const plog::Record& record) override {
    if (name.empty() && record.getObject() != nullptr) {
      name = static_cast<const wchar_t*>(record.getObject());
    }
  }

  std::wstring name{};
};

}  // namespace

int main() {
  static Component component;
  norvSharedInitializeLogger(plog::info, &component);
  norv::shared::battery::NorvBatteryTestInfo test;
  test.RunBatteryTest();
  std::printf("%d\n%s\n%s\n%s\n%ls\n", test.GetBatteryTestResult(), test.GetBatteryTestResultLabel(),
              test.GetBatteryTestVersion(), test.GetError().GetMessageText(), component.name.c_str());
  return 0;
}
