// Watches a machine as fast as it goes, with its readings going to a file such as /dev/null, and looks at the memory:
//   norv-battery-flat-watch COUNT FILE
#include <cstdio>
#include <cstdlib>

#include "Process.h"
#include "watch/Watch.h"

namespace {

using norv::test::PeakResidentSize;

constexpr unsigned int kWarmUp = 100;
constexpr std::size_t kMayGrow = std::size_t{512} * 1024;

bool WatchSome(unsigned int count) {
  norv::tool::WatchOptions options;
  options.machine = "two-batteries";
  options.interval = std::chrono::seconds(0);
  options.count = count;
  options.cellSwell = true;
  return norv::tool::RunWatch(options) == 0;
}

int Run(unsigned int count) {
  const bool isWarm = WatchSome(kWarmUp);
  const std::size_t first = PeakResidentSize();
  const bool isDone = isWarm && WatchSome(count);
  const std::size_t last = PeakResidentSize();
  std::fprintf(stderr, "peak resident size of %u readings: %zu kB, of %u: %zu kB\n", kWarmUp, first / 1024, count,
               last / 1024);
  return isDone && first != 0 && last <= first + kMayGrow ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc == 3 ? std::atoi(argv[1]) : 0;
  if (count <= 0 || std::freopen(argv[2], "w", stdout) == nullptr) {
    std::fprintf(stderr, "usage: norv-battery-flat-watch COUNT OUTPUT\n");
    return 2;
  }
  return Run(static_cast<unsigned int>(count));
}
