// The reader of the battery test's report, on a large one.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "battery/NorvBatteryTestXmlParser.h"

namespace norv::bench {

namespace {

constexpr std::size_t kReportSize = 10 * 1024 * 1024;

// Many rows of other results, and the status in the last.
const std::string& LargeReport() {
  static const std::string report = [] {
    std::string text = "<?xml version=\"1.0\"?>\n<report>\n";
    for (unsigned int row = 0; text.size() < kReportSize; ++row) {
      text += "  <r i=\"" + std::to_string(7 + row % 90) + "\" t=\"int\">" + std::to_string(row) + "</r>\n";
    }
    return text + "  <r i=\"6\" t=\"int\">2</r>\n</report>\n";
  }();
  return report;
}

void ReadReport(benchmark::State& state) {
  for (auto _ : state) {
    shared::battery::NorvBatteryTestXmlParser parser;
    if (parser.GetBatteryStatusFromXMLReport(LargeReport().c_str()) != 2) {
      state.SkipWithError("the status was not found");
      break;
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(LargeReport().size()));
}

// For a byte that is not there.
void SearchWithMemchr(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(std::memchr(LargeReport().data(), '\x01', LargeReport().size()));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(LargeReport().size()));
}

BENCHMARK(ReadReport)->Name("report/reader")->Unit(benchmark::kMillisecond);
BENCHMARK(SearchWithMemchr)->Name("report/memchr")->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace norv::bench
