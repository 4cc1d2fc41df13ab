// Bulk decoding to a file, and the same bytes written to a file from memory.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <utility>

#include "decode/Decode.h"
#include "output/OutputTarget.h"
#include "support/Blocks.h"

namespace norv::bench {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlockCount = 100000;

// A folder with a dump of blocks, gone with the program.
class Dump {
 public:
  Dump() : folder_(fs::temp_directory_path() / ("norv-battery-bench-" + std::to_string(std::random_device()()))) {
    fs::create_directory(folder_);
    BlockGenerator generator(2);
    std::ofstream file(Path("dump.bin"), std::ios::binary);
    for (std::size_t number = 0; number < kBlockCount; ++number) {
      const Block block = generator.Likely();
      file.write(reinterpret_cast<const char*>(block.data()), block.size());
    }
  }
  Dump(const Dump&) = delete;
  Dump& operator=(const Dump&) = delete;
  ~Dump() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

 private:
  fs::path folder_;
};

const Dump& TheDump() {
  static const Dump dump;
  return dump;
}

tool::DecodeOptions Options(tool::RowFormat format, unsigned int jobs) {
  tool::DecodeOptions options;
  options.sources = {TheDump().Path("dump.bin")};
  options.format = format;
  options.jobs = jobs;
  return options;
}

// Counts bytes and keeps none: what the decoding costs without any writing.
class Nowhere : public tool::OutputTarget {
 public:
  bool Write(std::string_view bytes) override {
    benchmark::DoNotOptimize(bytes.data());
    size_ += bytes.size();
    return true;
  }
  bool Complete() override { return true; }
  std::size_t Size() const { return size_; }

 private:
  std::size_t size_ = 0;
};

void SetRates(benchmark::State& state, std::size_t bytesEach) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kBlockCount));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesEach));
}

void DecodeToNowhere(benchmark::State& state, tool::RowFormat format, unsigned int jobs) {
  const auto options = Options(format, jobs);
  std::size_t size = 0;
  for (auto _ : state) {
    Nowhere nowhere;
    if (!tool::DecodeTo(nowhere, options)) {
      state.SkipWithError("decoding failed");
      break;
    }
    size = nowhere.Size();
  }
  SetRates(state, size);
}

void DecodeToFile(benchmark::State& state, tool::RowFormat format, unsigned int jobs) {
  const auto options = Options(format, jobs);
  const std::string path = TheDump().Path("decoded");
  for (auto _ : state) {
    const auto file = tool::OpenOutput(path);
    if (file == nullptr || !tool::DecodeTo(*file, options)) {
      state.SkipWithError("decoding failed");
      break;
    }
  }
  SetRates(state, fs::file_size(path));
}

std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string DecodedBytes(tool::RowFormat format) {
  const std::string path = TheDump().Path("decoded");
  const auto file = tool::OpenOutput(path);
  return file != nullptr && tool::DecodeTo(*file, Options(format, 1)) ? Contents(path) : "";
}

// The file is made anew each time, as decoding does it.
void WriteSameBytes(benchmark::State& state, tool::RowFormat format) {
  const std::string bytes = DecodedBytes(format);
  for (auto _ : state) {
    const auto file = tool::OpenOutput(TheDump().Path("decoded"));
    if (file == nullptr || !file->Write(bytes) || !file->Complete()) {
      state.SkipWithError("writing failed");
      break;
    }
  }
  SetRates(state, bytes.size());
}

// What a row costs as a document of the JSON library that most programs use: its dump alone, and with the
// copy of all values that has to be there before it. Filling one from accessors costs no less than such a copy.
void DumpRowWithLibrary(benchmark::State& state, bool isBuiltToo) {
  const std::string bytes = DecodedBytes(tool::RowFormat::JsonLines);
  const auto row = nlohmann::ordered_json::parse(bytes.substr(0, bytes.find('\n')));
  for (auto _ : state) {
    if (isBuiltToo) {
      const nlohmann::ordered_json copy(row);
      benchmark::DoNotOptimize(copy.dump());
    } else {
      benchmark::DoNotOptimize(row.dump());
    }
  }
  state.SetItemsProcessed(state.iterations());
}

using tool::RowFormat;

BENCHMARK_CAPTURE(DecodeToNowhere, jsonl, RowFormat::JsonLines, 1)->Name("bulk/jsonl/no_output/1_job");
BENCHMARK_CAPTURE(DecodeToNowhere, csv, RowFormat::Csv, 1)->Name("bulk/csv/no_output/1_job");
BENCHMARK_CAPTURE(DecodeToFile, jsonl1, RowFormat::JsonLines, 1)->Name("bulk/jsonl/file/1_job");
BENCHMARK_CAPTURE(DecodeToFile, jsonl, RowFormat::JsonLines, 0)->Name("bulk/jsonl/file/all_jobs")->UseRealTime();
BENCHMARK_CAPTURE(WriteSameBytes, jsonl, RowFormat::JsonLines)->Name("bulk/jsonl/fwrite");
BENCHMARK_CAPTURE(DecodeToFile, csv1, RowFormat::Csv, 1)->Name("bulk/csv/file/1_job");
BENCHMARK_CAPTURE(DecodeToFile, csv, RowFormat::Csv, 0)->Name("bulk/csv/file/all_jobs")->UseRealTime();
BENCHMARK_CAPTURE(WriteSameBytes, csv, RowFormat::Csv)->Name("bulk/csv/fwrite");
BENCHMARK_CAPTURE(DumpRowWithLibrary, dump, false)->Name("bulk/json_library/dump");
BENCHMARK_CAPTURE(DumpRowWithLibrary, build, true)->Name("bulk/json_library/copy_and_dump");

}  // namespace

}  // namespace norv::bench
