// Loads, uses and unloads the library again and again in one process:
//   norv-battery-unload LIBRARY ROUNDS MAY-GROW [logger]
// The process may grow by MAY-GROW kB; sanitizers need some for themselves, and look for leaks on their own. With
// `logger` each round hands it an appender that is destroyed only after the library is gone.
#include <plog/Severity.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "CountingAppender.h"
#include "LoadedLibrary.h"
#include "Process.h"
#include "battery/norv_battery.h"

namespace {

using namespace norv::test;

// Both slots hold a battery.
std::int32_t Answer(void* /*context*/, std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                    const std::uint8_t* /*input*/, std::uint32_t /*inputSize*/, std::uint8_t* output,
                    std::uint32_t* returnCode) {
  std::memset(output, '1', NORV_BATTERY_BLOCK_SIZE);
  *returnCode = 0;
  return 0;
}

bool Use(const LoadedLibrary& library) {
  norv_battery_options options{};
  options.size = sizeof options;
  options.flags = NORV_BATTERY_READ_CELL_SWELL | NORV_BATTERY_RUN_TEST;
  options.channel = Answer;
  norv_battery_collection* collection = nullptr;
  norv_battery_record* record = nullptr;
  return library.Find<decltype(norv_battery_open)>("norv_battery_open")(&options, &collection) == NORV_BATTERY_OK &&
         library.Find<decltype(norv_battery_get_record)>("norv_battery_get_record")(collection, 1, &record) ==
             NORV_BATTERY_OK &&
         library.Find<decltype(norv_battery_close)>("norv_battery_close")(collection) == NORV_BATTERY_OK;
}

bool UseAndUnload(const char* path, bool withLogger, plog::IAppender& appender) {
  const LoadedLibrary library(path);
  if (withLogger) {
    library.Find<void(unsigned int, plog::IAppender*)>("norvSharedInitializeLogger")(plog::verbose, &appender);
  }
  return Use(library);
}

bool Round(const char* path, bool withLogger) {
  CountingAppender appender;
  return UseAndUnload(path, withLogger, appender) && !IsLibraryLoaded(path) && (appender.Count() > 0) == withLogger;
}

// What the first rounds leave behind is the C library's own and stays.
constexpr int kWarmUp = 100;

int Run(const char* path, int rounds, std::size_t mayGrow, bool withLogger) {
  std::size_t first = 0;
  for (int round = 1; round <= rounds; ++round) {
    if (!Round(path, withLogger)) {
      std::fprintf(stderr, "unload: round %d failed: not usable, or still there afterwards\n", round);
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
  try {
    return Run(argv[1], rounds, static_cast<std::size_t>(mayGrow), withLogger);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "unload: %s\n", failure.what());
    return 1;
  }
}
