// Any file as reports and decoded rows to be encoded: it is refused, or gives blocks that decode to what was in it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "encode/Encode.h"
#include "fuzz/Check.h"
#include "fuzz/InputFile.h"
#include "fuzz/Rows.h"
#include "json/Parse.h"

namespace {

using norv::test::Require;

// A block of texts that no battery has may decode to less than it was made of; what was decoded once stays the same.
void EncodeOne(const norv::json::Value& battery) {
  try {
    const auto block = norv::tool::BlockFromJson(battery);
    norv::test::RequireSameAgain(norv::test::RowOf(block));
  } catch (const norv::tool::BlockValueError& refusal) {
    Require(std::string(refusal.what()).find(": ") != std::string::npos, "a refusal that names the place");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const norv::test::InputFile file(data, size);
  norv::tool::EncodeOptions options;
  options.sources = {file.Path()};
  const int status = norv::tool::RunEncode(options);
  Require(status == 0 || status == 2, "the status of the command");

  try {
    const auto value = norv::json::Parse({reinterpret_cast<const char*>(data), size});
    if (value.Is<norv::json::Object>()) {
      EncodeOne(value);
    }
  } catch (const norv::json::ParseError&) {
    return 0;
  }
  return 0;
}
