#include "fuzz/Rows.h"

#include <sstream>

#include "fuzz/Check.h"
#include "fuzz/InputFile.h"
#include "json/Parse.h"

namespace norv::test {

namespace {

using json::Value;

// What an input tells beside the battery.
json::Object WithoutOrigin(const Value& row) {
  json::Object rest;
  for (const auto& [key, value] : *row.As<json::Object>()) {
    if (key != "source" && key != "index" && key != "id") {
      rest[key] = value;
    }
  }
  return rest;
}

tool::DecodeOptions Options(const std::string& path, tool::InputKind kind) {
  tool::DecodeOptions options;
  options.sources = {path};
  options.input = kind;
  options.jobs = 1;
  options.today = tool::Day{2024, 6, 1};
  return options;
}

}  // namespace

Value RowOf(const tool::Block& block) {
  const InputFile file(block.data(), block.size());
  KeptOutput output;
  const auto counts = tool::DecodeTo(output, Options(file.Path(), tool::InputKind::Binary));
  Require(counts && counts->good + counts->empty == 1 && counts->bad == 0, "one row that is not bad for one block");
  return json::Parse(output.Text());
}

void RequireSameAgain(const Value& row) {
  Require(WithoutOrigin(RowOf(tool::BlockFromJson(row))) == WithoutOrigin(row), "a row that was encoded and decoded");
}

void DecodeAndCheck(const std::uint8_t* data, std::size_t size, tool::InputKind kind) {
  const InputFile file(data, size);
  KeptOutput output;
  const auto counts = tool::DecodeTo(output, Options(file.Path(), kind));
  Require(counts.has_value(), "an output that was written");
  if (kind == tool::InputKind::Binary && size != 0) {
    Require(counts->good + counts->empty == size / tool::kBlockSize &&
                counts->bad == (size % tool::kBlockSize != 0 ? 1U : 0U),
            "a row for each block and one for the rest");
  }
  std::istringstream lines(output.Text());
  std::uint64_t rows = 0;
  for (std::string line; std::getline(lines, line); ++rows) {
    const Value row = json::Parse(line);
    // Encoding a row takes a while; the first ones of an input tell what the others would.
    if (row["identity"].Is<json::Object>() && rows < 2) {
      RequireSameAgain(row);
    }
  }
  Require(rows == counts->good + counts->bad + counts->empty, "a line for each row");
}

}  // namespace norv::test
