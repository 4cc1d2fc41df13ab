// Hex dumps, as xxd, hexdump and od write them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norv::tool {

enum class DumpStyle {
  Xxd,        // xxd: an offset and a colon, groups of digits, two blanks, the bytes as text
  Canonical,  // hexdump -C: an offset and two blanks, single bytes, the bytes as text between bars
  Plain,      // xxd -p: digits without a blank; or od -An -tx1: single bytes
};

// True for a text that begins with a line of one of the first two styles, or with two lines of xxd -p or od -An -tx1 as
// long as these make them. Lines of blocks never look like that.
bool IsDump(std::string_view start);

// Puts the bytes of a dump together. The offsets of several dumps, one after another, may start again and again.
class DumpText {
 public:
  // Appends the blocks that end within `line` to `blocks`. Otherwise returns what is wrong, and the block that the line
  // belongs to is given up; the line is then to be given once more, because it may be the one to go on with.
  std::optional<std::string> Take(std::string_view line, std::vector<char>& blocks);

  // Gives the block up for something else that is wrong with its line. Returns `problem` with what becomes of the rest;
  // nothing when the block had been given up before.
  std::optional<std::string> GiveUp(const std::string& problem);

  // What is wrong with the dump when it ends here.
  std::optional<std::string> ProblemAtEnd() const;

 private:
  std::optional<std::string> GoTo(std::uint64_t offset, std::vector<char>& blocks);
  std::optional<std::string> Repeat(std::uint64_t offset, std::vector<char>& blocks);
  void Append(std::string_view bytes, std::vector<char>& blocks);

  std::optional<DumpStyle> style_;       // nothing before the first line
  std::optional<std::uint64_t> origin_;  // the first offset, where blocks begin
  std::uint64_t next_ = 0;               // the offset that is to follow
  std::string lastBytes_;                // of the last line, which '*' repeats
  std::string pending_;                  // of the block that was begun
  bool isRepeating_ = false;             // behind '*', whose meaning the next offset tells
  bool isSkipping_ = false;              // up to the next offset that a block begins at
};

}  // namespace norv::tool
