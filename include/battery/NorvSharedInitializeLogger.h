// Hands the library its logger.
#pragma once

#include "battery/Export.h"

namespace plog {
class IAppender;
}

// Makes the library write its log records to `appender`; until then it logs nothing.
//
// `maxSeverity` is a plog severity: 0 none, 1 fatal, 2 error, 3 warning, 4 info, 5 debug, 6 verbose. The library logs
// at 2, 4 and 6. `appender` stays the host's and must live until the library is unloaded; with a null pointer the
// records are dropped. It is called on whichever thread uses the library.
//
// Each record carries the qualified name of the operation as its function and again as its file, the library's line,
// and as its object the file name of the library's module (a zero-terminated const wchar_t text).
//
// Only the first call decides severity and appender. Every later call makes each record arrive once more, so a host
// calls it once. The library's logger is its own: it shares nothing with a plog logger of the host. At the end of the
// process it may be gone before a host's own static objects are; nothing is logged from then on.
extern "C" NORV_BATTERY_API void norvSharedInitializeLogger(unsigned int maxSeverity, plog::IAppender* appender);
