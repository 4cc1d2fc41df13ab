#include "battery/NorvSharedInitializeLogger.h"

#include <plog/Logger.h>

#include <algorithm>
#include <string>

#include "diagnostics/ComponentAppender.h"
#include "norv/platform/Platform.h"

namespace {

using norv::platform::Platform;
using norv::shared::common::logger::ComponentAppender;

// What exists once in the process is made by the first call that gets there, and is destroyed in reverse order when the
// library is unloaded: the logger first, so that nothing is logged through an appender that is gone.
void AttachAppender(plog::Severity maxSeverity, plog::IAppender* target) {
  static const std::wstring moduleName = Platform::Current().ModuleName();
  static ComponentAppender appender(moduleName, target);
  static plog::Logger<PLOG_DEFAULT_INSTANCE_ID> logger(maxSeverity);
  // A host's own static objects may call when the logger is gone, and with it its registration.
  if (plog::get<PLOG_DEFAULT_INSTANCE_ID>() != nullptr) {
    logger.addAppender(&appender);
  }
}

}  // namespace

void norvSharedInitializeLogger(unsigned int maxSeverity, plog::IAppender* appender) {
  try {
    AttachAppender(static_cast<plog::Severity>(std::min(maxSeverity, static_cast<unsigned int>(plog::verbose))),
                   appender);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory for a logger there is none; the host may call again
  }
}
