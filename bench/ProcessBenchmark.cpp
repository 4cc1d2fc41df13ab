// A report from start to end as a process, and a program that does nothing.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace norv::bench {

namespace {

// True when the program has ended with status 0. Its output goes nowhere.
bool Run(const char* const* words) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  // posix_spawn leaves the words as they are, whatever its signature says.
  const int failure = posix_spawn(&child, words[0], &actions, nullptr, const_cast<char* const*>(words), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return failure == 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

template <std::size_t Count>
void RunProcess(benchmark::State& state, const std::array<const char*, Count>& words) {
  for (auto _ : state) {
    if (!Run(words.data())) {
      state.SkipWithError("the program failed");
      break;
    }
  }
}

constexpr std::array<const char*, 5> kReport = {NORV_BATTERY_TOOL, "report", "--machine", "two-batteries", nullptr};
constexpr std::array<const char*, 2> kEmpty = {NORV_BATTERY_EMPTY_PROGRAM, nullptr};

void RunReport(benchmark::State& state) {
  RunProcess(state, kReport);
}
void RunEmpty(benchmark::State& state) {
  RunProcess(state, kEmpty);
}

BENCHMARK(RunReport)->Name("process/report")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(RunEmpty)->Name("process/empty")->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace norv::bench
