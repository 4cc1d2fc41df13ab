#include "decode/DecodePortion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "base/Utf8.h"
#include "decode/HexDigits.h"
#include "decode/Lines.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

using firmware::Block;

// The answer of a slot that nothing was ever written to: every bit clear, or every bit set.
bool IsEmptyBlock(const unsigned char* block) {
  return (block[0] == 0x00 || block[0] == 0xFF) && std::memcmp(block, block + 1, kBlockSize - 1) == 0;
}

// Decodes the rows of one portion.
class Decoder {
 public:
  Decoder(const Portion& portion, RowFormat format, OutputBuffer& output)
      : portion_(portion), format_(format), output_(output), row_(portion.firstRow), place_(portion.firstPlace) {}

  RowCounts Decode() {
    const std::string_view bytes(portion_.bytes.data(), portion_.bytes.size());
    if (portion_.kind == InputKind::Binary) {
      DecodeBlocks(bytes);
    } else {
      ForEachLine(bytes, [this](std::string_view line) {
        DecodeLine(line);
        ++place_;
      });
    }
    if (!portion_.problem.empty()) {
      Bad(std::nullopt, portion_.problem);
      counts_.noInput += portion_.isNoInput ? 1 : 0;
    }
    return counts_;
  }

 private:
  void Good(std::optional<std::string_view> id, const unsigned char* block) {
    WriteRow(format_, {portion_.source, row_++, id}, block, output_);
    ++(IsEmptyBlock(block) ? counts_.empty : counts_.good);
  }

  void Bad(std::optional<std::string_view> id, std::string_view problem) {
    WriteBadRow(format_, {portion_.source, row_++, id}, problem, output_);
    ++counts_.bad;
  }

  void DecodeBlocks(std::string_view bytes) {
    for (; bytes.size() >= kBlockSize; bytes.remove_prefix(kBlockSize), place_ += kBlockSize) {
      Good(std::nullopt, reinterpret_cast<const unsigned char*>(bytes.data()));
    }
    if (!bytes.empty()) {
      Bad(std::nullopt, "short block of " + std::to_string(bytes.size()) + " bytes at offset " +
                            std::to_string(place_) + ": expected 128");
    }
  }

  // A line is a block, or an identifier, a comma and a block.
  void DecodeLine(std::string_view line) {
    if (IsBlankLine(line)) {
      return;
    }
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) {
      DecodeDigits(std::nullopt, line, 1);
      return;
    }
    const std::string_view id = Trim(line.substr(0, comma));
    const std::string_view digits = line.substr(comma + 1);
    if (base::IsUtf8(id)) {
      DecodeDigits(id, digits, comma + 2);
    } else {
      DecodeDigits(base::BytesToUtf8(id), digits, comma + 2);
    }
  }

  // `column` is that of the first digit in its line.
  void DecodeDigits(std::optional<std::string_view> id, std::string_view digits, std::size_t column) {
    Block block{};
    std::size_t count = 0;
    for (std::size_t position = 0; position < digits.size(); ++position) {
      const unsigned char value = DigitValue(digits[position]);
      if (value == kNoDigit) {
        Bad(id, "line " + std::to_string(place_) + ", column " + std::to_string(column + position) + ": '" +
                    EscapeText(digits.substr(position, 1)) + "' is no hexadecimal digit");
        return;
      }
      if (value != kBlank) {
        if (count < 2 * kBlockSize) {
          block[count / 2] = static_cast<unsigned char>(block[count / 2] << 4U | value);
        }
        ++count;
      }
    }
    if (count != 2 * kBlockSize) {
      Bad(id, "line " + std::to_string(place_) + ": " + std::to_string(count) +
                  " hexadecimal digits, expected 256 for a block of 128 bytes");
      return;
    }
    Good(id, block.data());
  }

  const Portion& portion_;
  RowFormat format_;
  OutputBuffer& output_;
  std::uint64_t row_;
  std::uint64_t place_;  // an offset, or a line's number
  RowCounts counts_;
};

}  // namespace

RowCounts& RowCounts::operator+=(const RowCounts& other) {
  good += other.good;
  bad += other.bad;
  empty += other.empty;
  noInput += other.noInput;
  return *this;
}

RowCounts DecodePortion(const Portion& portion, RowFormat format, OutputBuffer& output) {
  return Decoder(portion, format, output).Decode();
}

}  // namespace norv::tool
