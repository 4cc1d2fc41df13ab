// A host with a plog logger of its own. Each case is a run of its own, since the library's logger is made once for the
// whole process: host CASE
#include <battery/NorvBatteries.h>
#include <battery/NorvSharedInitializeLogger.h>
#include <plog/Init.h>
#include <plog/Log.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>

#include "Collector.h"

namespace {

using norv::shared::battery::NorvBatteries;

bool failed = false;

void Expect(bool condition, const char* text, int line) {
  if (!condition) {
    std::cerr << "host.cpp:" << line << ": expected " << text << '\n';
    failed = true;
  }
}

#define EXPECT(condition) Expect((condition), #condition, __LINE__)

std::size_t Count(const Collector& collector, plog::Severity severity) {
  const auto& entries = collector.Entries();
  return static_cast<std::size_t>(
      std::count_if(entries.begin(), entries.end(), [=](const Entry& entry) { return entry.severity == severity; }));
}

const Entry* Find(const Collector& collector, const std::string& message) {
  for (const Entry& entry : collector.Entries()) {
    if (entry.message == message) {
      return &entry;
    }
  }
  return nullptr;
}

const char kCollection[] = "norv::shared::battery::NorvBatteries::NorvBatteries";

// A machine without batteries: slot 0 fails, slot 1 is just not there.
void ReadBatteries() {
  NorvBatteries batteries;
  EXPECT(batteries.Query(0) == nullptr);
  EXPECT(batteries.Query(1) == nullptr);
  EXPECT(static_cast<bool>(batteries.GetError()));
  EXPECT(batteries.GetError().GetCode() == 6);
}

void OwnLoggerStaysOwn() {
  Collector own;
  plog::init(plog::verbose, &own);
  Collector given;
  norvSharedInitializeLogger(plog::verbose, &given);
  PLOG_INFO << "from the host";
  ReadBatteries();
  EXPECT(own.Entries().size() == 1);
  EXPECT(Find(own, "from the host") != nullptr);
  EXPECT(given.Entries().size() > 1);
  EXPECT(Find(given, "from the host") == nullptr);
  EXPECT(plog::get()->getMaxSeverity() == plog::verbose);
}

void OwnLoggerStaysOwnWhenMadeLater() {
  Collector given;
  norvSharedInitializeLogger(plog::error, &given);
  EXPECT(plog::get() == nullptr);
  Collector own;
  plog::init(plog::verbose, &own);
  EXPECT(plog::get()->getMaxSeverity() == plog::verbose);
  ReadBatteries();
  PLOG_ERROR << "from the host";
  EXPECT(own.Entries().size() == 1);
  EXPECT(given.Entries().size() == Count(given, plog::error));
  EXPECT(!given.Entries().empty());
  EXPECT(Find(given, "from the host") == nullptr);
}

void SilentBeforeTheCall() {
  Collector own;
  plog::init(plog::verbose, &own);
  ReadBatteries();
  EXPECT(own.Entries().empty());
  Collector given;
  norvSharedInitializeLogger(plog::verbose, &given);
  EXPECT(given.Entries().empty());
  ReadBatteries();
  EXPECT(!given.Entries().empty());
}

void RecordFields() {
  Collector given;
  norvSharedInitializeLogger(plog::verbose, &given);
  ReadBatteries();
  EXPECT(!given.Entries().empty());
  for (const Entry& entry : given.Entries()) {
    EXPECT(entry.file == entry.function);
    EXPECT(entry.function.rfind("norv::shared::battery::", 0) == 0);
    EXPECT(entry.object.rfind(L"libnorv-battery-info.so", 0) == 0);
    EXPECT(entry.object.find(L'/') == std::wstring::npos);
  }
  const Entry* started = Find(given, std::string("Started ") + kCollection + " ");
  EXPECT(started != nullptr && started->severity == plog::info && started->function == kCollection);
  const Entry* failure = Find(given, "Error getting battery information");
  EXPECT(failure != nullptr && failure->severity == plog::error && failure->function == kCollection);
  const Entry* absent = Find(given, std::string("Battery index ") + '\x01' + " not detected");
  EXPECT(absent != nullptr && absent->severity == plog::verbose);
  EXPECT(absent != nullptr && absent->function == "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo");
  const Entry* finished = Find(given, std::string("Finished ") + kCollection);
  EXPECT(finished != nullptr && finished->severity == plog::info);
  EXPECT(finished == &given.Entries().back());
}

void ErrorsOnly() {
  Collector given;
  norvSharedInitializeLogger(2, &given);
  ReadBatteries();
  EXPECT(!given.Entries().empty());
  EXPECT(Count(given, plog::error) == given.Entries().size());
}

void TwoCallsDouble() {
  Collector first;
  norvSharedInitializeLogger(plog::info, &first);
  ReadBatteries();
  const std::size_t once = first.Entries().size();
  Collector second;
  norvSharedInitializeLogger(plog::verbose, &second);
  ReadBatteries();
  EXPECT(once > 0);
  EXPECT(first.Entries().size() == 3 * once);
  EXPECT(Count(first, plog::verbose) == 0);
  EXPECT(second.Entries().empty());
}

void NoAppender() {
  norvSharedInitializeLogger(plog::verbose, nullptr);
  ReadBatteries();
}

// The host's appender goes first, the library's logger after main: nothing may touch the appender by then.
void AppenderGoesFirst() {
  auto given = std::make_unique<Collector>();
  norvSharedInitializeLogger(plog::verbose, given.get());
  ReadBatteries();
  EXPECT(!given->Entries().empty());
}

struct Case {
  const char* name;
  void (*run)();
};

constexpr Case kCases[] = {
    {"own-logger-stays-own", OwnLoggerStaysOwn},
    {"own-logger-made-later-stays-own", OwnLoggerStaysOwnWhenMadeLater},
    {"silent-before-the-call", SilentBeforeTheCall},
    {"record-fields", RecordFields},
    {"errors-only", ErrorsOnly},
    {"two-calls-double", TwoCallsDouble},
    {"no-appender", NoAppender},
    {"appender-goes-first", AppenderGoesFirst},
};

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) {
    for (const Case& candidate : kCases) {
      if (std::strcmp(argv[1], candidate.name) == 0) {
        candidate.run();
        return failed ? 1 : 0;
      }
    }
  }
  for (const Case& candidate : kCases) {
    std::cout << candidate.name << '\n';
  }
  return argc == 1 ? 0 : 2;
}
