// Decoded rows, and the blocks that they were decoded from.
#pragma once

#include <string>

#include "decode/Decode.h"
#include "encode/BlockFromJson.h"
#include "json/Value.h"

namespace norv::test {

// An output that is kept.
class KeptOutput : public tool::OutputTarget {
 public:
  bool Write(std::string_view bytes) override {
    text_ += bytes;
    return true;
  }
  bool Complete() override { return true; }

  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

// The row of a block, as a JSON value.
json::Value RowOf(const tool::Block& block);

// Requires that `row`, a good one, encodes to a block that decodes to the same row, but for where it came from.
void RequireSameAgain(const json::Value& row);

// Decodes the input as the command does and checks each row. `kind` is how the input is read.
void DecodeAndCheck(const std::uint8_t* data, std::size_t size, tool::InputKind kind);

}  // namespace norv::test
