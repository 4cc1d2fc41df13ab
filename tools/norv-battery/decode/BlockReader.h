// Reads saved blocks in portions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decode/DumpText.h"
#include "decode/Utf16.h"
#include "firmware/Block.h"

namespace norv::tool {

using firmware::kBlockSize;

enum class InputKind {
  Binary,
  Hexadecimal,  // a block a line
  Dump,         // of which portions have the blocks
};

// Some rows of one source: whole blocks or whole lines, unless the source ends within one.
struct Portion {
  // Of a portion of blocks; one of lines may have a line end more, and one of a dump's blocks twice as much. It is also
  // the longest line.
  static constexpr std::size_t kLargest = 256 * kBlockSize;

  std::string source;  // UTF-8
  InputKind kind = InputKind::Binary;
  std::uint64_t firstRow = 0;    // its index in the source
  std::uint64_t firstPlace = 0;  // of the first byte in the source, or the number of the first line
  std::vector<char> bytes;
  // What is wrong with the source behind these bytes; a row of its own. Empty when nothing is.
  std::string problem;
  bool isNoInput = false;  // the problem stands for a source that holds nothing to decode, or cannot be read
};

// Goes through sources one after another. What cannot be read becomes a portion's problem; nothing is thrown but the
// standard allocation exception.
class BlockReader {
 public:
  // "-" is standard input. Without a `kind` that of each source is told from its first bytes.
  BlockReader(std::vector<std::string> sources, std::optional<InputKind> kind);

  // Fills `portion`, whose memory is used again. False when all sources have been read.
  bool Read(Portion& portion);

  std::uint64_t BytesRead() const { return bytesRead_; }

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const;
  };

  void Open(Portion& portion);
  void Close(Portion& portion);
  void Recognise(Portion& portion);
  void DropAhead(std::size_t size);
  void FillUp(std::size_t size);
  void ReadMore(std::size_t size);
  void DecodeFrom(std::size_t place);
  void TakeBlocks(Portion& portion);
  void TakeText(Portion& portion);
  void TakeLines(Portion& portion, std::size_t size);
  void TakeDump(Portion& portion, std::size_t size);
  void SkipLine();

  std::vector<std::string> sources_;
  std::optional<InputKind> givenKind_;
  std::size_t next_ = 0;  // the source to be opened next

  std::unique_ptr<std::FILE, CloseFile> file_;  // null between two sources
  std::string source_;
  InputKind kind_ = InputKind::Binary;
  std::vector<char> ahead_;  // read, but not yet handed out
  std::optional<Utf16Decoder> utf16_;
  DumpText dump_;
  bool isAtEnd_ = false;  // no byte follows those of ahead_
  std::string failure_;   // why the source could not be read to its end
  bool isInLongLine_ = false;
  std::uint64_t row_ = 0;
  std::uint64_t place_ = 0;
  std::uint64_t bytesRead_ = 0;
};

}  // namespace norv::tool
