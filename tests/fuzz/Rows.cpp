#include "fuzz/Rows.h"

#include <sstream>

#include "fuzz/Check.h"
#include "fuzz/InputFile.h"

namespace norv::test {

namespace {

using Json = nlohmann::json;

// What an input tells beside the battery.
Json WithoutOrigin(Json row) {
  for (const char* key : {"source", "index", "id"}) {
    row.erase(key);
  }
  return row;
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

Json RowOf(const tool::Block& block) {
  const InputFile file(block.data(), block.size());
  KeptOutput output;
  const auto counts = tool::DecodeTo(output, Options(file.Path(), tool::InputKind::Binary));
  Require(counts && counts->good == 1 && counts->bad == 0, "one good row for one block");
  return Json::parse(output.Text());
}

void RequireSameAgain(const Json& row) {
  Require(WithoutOrigin(RowOf(tool::BlockFromJson(row))) == WithoutOrigin(row), "a row that was encoded and decoded");
}

void DecodeAndCheck(const std::uint8_t* data, std::size_t size, tool::InputKind kind) {
  const InputFile file(data, size);
  KeptOutput output;
  const auto counts = tool::DecodeTo(output, Options(file.Path(), kind));
  Require(counts.has_value(), "an output that was written");
  if (kind == tool::InputKind::Binary && size != 0) {
    Require(counts->good == size / tool::kBlockSize && counts->bad == (size % tool::kBlockSize != 0 ? 1U : 0U),
            "a row for each block and one for the rest");
  }
  std::istringstream lines(output.Text());
  std::uint64_t rows = 0;
  for (std::string line; std::getline(lines, line); ++rows) {
    const Json row = Json::parse(line);
    // Encoding a row takes a while; the first ones of an input tell what the others would.
    if (row.contains("identity") && rows < 2) {
      RequireSameAgain(row);
    }
  }
  Require(rows == counts->good + counts->bad, "a line for each row");
}

}  // namespace norv::test
