// Loads, uses and unloads the library again and again in one process:
//   norv-battery-unload LIBRARY ROUNDS MAY-GROW [logger]
// The process may grow by MAY-GROW kB; sanitizers need some for themselves, and look for leaks on their own. With
// `logger` each round hands it an appender that is destroyed only after the library is gone.
#include <plog/Appenders/IAppender.h>
#include <plog/Severity.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Process.h"
#include "battery/norv_battery.h"

namespace {

using namespace norv::test;

class CountingAppender : public plog::IAppender {
 public:
  void write(const plog::Record& /*record*/) override { ++count_; }
  int Count() const { return count_; }

 private:
  int count_ = 0;
};

// Both slots hold a battery.
std::int32_t Answer(void* /*context*/, std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                    const std::uint8_t* /*input*/, std::uint32_t /*inputSize*/, std::uint8_t* output,
                    std::uint32_t* returnCode) {
  std::memset(output, '1', NORV_BATTERY_BLOCK_SIZE);
  *returnCode = 0;
  return 0;
}

template <typename Function>
Function* Find(void* library, const char* name) {
  auto* const function = reinterpret_cast<Function*>(FindFunction(library, name));
  if (function == nullptr) {
    std::fprintf(stderr, "unload: the library has no %s\n", name);
    std::exit(1);
  }
  return function;
}

bool Use(void* library) {
  norv_battery_options options{};
  options.size = sizeof options;
  options.flags = NORV_BATTERY_READ_CELL_SWELL | NORV_BATTERY_RUN_TEST;
  options.channel = Answer;
  norv_battery_collection* collection = nullptr;
  norv_battery_record* record = nullptr;
  return Find<decltype(norv_battery_open)>(library, "norv_battery_open")(&options, &collection) == NORV_BATTERY_OK &&
         Find<decltype(norv_battery_get_record)>(library, "norv_battery_get_record")(collection, 1, &record) ==
             NORV_BATTERY_OK &&
         Find<decltype(norv_battery_close)>(library, "norv_battery_close")(collection) == NORV_BATTERY_OK;
}

bool Round(const char* path, bool withLogger) {
  CountingAppender appender;
  void* const library = LoadLibraryFile(path);
  if (library == nullptr) {
    return false;
  }
  if (withLogger) {
    Find<void(unsigned int, plog::IAppender*)>(library, "norvSharedInitializeLogger")(plog::verbose, &appender);
  }
  const bool isUsed = Use(library) && (appender.Count() > 0) == withLogger;
  return UnloadLibrary(library) && !IsLibraryLoaded(path) && isUsed;
}

// What the first rounds leave behind is the C library's own and stays.
constexpr int kWarmUp = 100;

int Run(const char* path, int rounds, std::size_t mayGrow, bool withLogger) {
  std::size_t first = 0;
  for (int round = 1; round <= rounds; ++round) {
    if (!Round(path, withLogger)) {
      std::fprintf(stderr, "unload: round %d failed: not loaded, not usable, or still there afterwards\n", round);
      return 1;
    }
    if (round == kWarmUp) {
      first = ResidentSize();
    }
  }
  const std::size_t last = ResidentSize();
  std::printf("%d rounds; resident size after %d: %zu kB, at the end: %zu kB\n", rounds, kWarmUp, first / 1024,
              last / 1024);
  return last <= first + mayGrow * 1024 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 3 ? std::atoi(argv[2]) : 0;
  const int mayGrow = argc > 3 ? std::atoi(argv[3]) : 0;
  const bool withLogger = argc > 4 && std::strcmp(argv[4], "logger") == 0;
  if (rounds <= kWarmUp || mayGrow <= 0 || argc > (withLogger ? 5 : 4)) {
    std::fprintf(stderr, "usage: norv-battery-unload LIBRARY ROUNDS MAY-GROW [logger], with more than %d rounds\n",
                 kWarmUp);
    return 2;
  }
  return Run(argv[1], rounds, static_cast<std::size_t>(mayGrow), withLogger);
}
