#include "decode/DumpText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <system_error>
#include <utility>

#include "decode/BlockReader.h"
#include "decode/HexDigits.h"
#include "decode/Lines.h"
#include "output/EscapeText.h"

namespace norv::tool {

namespace {

constexpr std::string_view kTwoBlanks = "  ";
constexpr std::string_view kColon = ": ";

struct DumpLine {
  std::optional<std::uint64_t> offset;
  std::string bytes;
  std::string_view text;  // what stands behind the digits of xxd; its end shows the bytes as text
  std::string problem;    // empty when nothing is wrong
};

std::string ColumnText(std::size_t column) {
  return "column " + std::to_string(column) + ": ";
}

std::string OffsetText(std::uint64_t offset) {
  constexpr std::size_t kUsualDigits = 8;
  std::array<char, 2 * sizeof(offset)> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), offset, 16).ptr;
  const std::string text(static_cast<const char*>(digits.data()), end);
  return std::string(kUsualDigits - std::min(text.size(), kUsualDigits), '0') + text;
}

// Of an offset: the digits that a line begins with. Fewer than xxd and hexdump write are none.
std::string_view OffsetDigits(std::string_view line) {
  constexpr std::size_t kFewest = 8;
  const auto end = std::find_if(line.begin(), line.end(), [](char character) { return DigitValue(character) >= 16; });
  const auto count = static_cast<std::size_t>(end - line.begin());
  return line.substr(0, count < kFewest ? 0 : count);
}

DumpStyle StyleOf(std::string_view line) {
  const std::string_view offset = OffsetDigits(line);
  const std::string_view rest = line.substr(offset.size());
  if (offset.empty()) {
    return DumpStyle::Plain;
  }
  return rest.starts_with(kColon)       ? DumpStyle::Xxd
         : rest.starts_with(kTwoBlanks) ? DumpStyle::Canonical
                                        : DumpStyle::Plain;
}

// Appends the bytes of one group of digits, which begins at `column`.
void ReadGroup(std::string_view group, bool isOneByte, std::size_t column, DumpLine& line) {
  const auto stranger = std::find_if(group.begin(), group.end(), [](char digit) { return DigitValue(digit) >= 16; });
  if (stranger != group.end()) {
    line.problem = ColumnText(column + static_cast<std::size_t>(stranger - group.begin())) + "'" +
                   EscapeText({&*stranger, 1}) + "' is no hexadecimal digit";
    return;
  }
  if (isOneByte ? group.size() != 2 : group.size() % 2 != 0) {
    line.problem = ColumnText(column) + std::to_string(group.size()) +
                   " hexadecimal digits without a blank, expected " +
                   (isOneByte ? "2, which are a byte" : "2 for each byte");
    return;
  }
  for (std::size_t place = 0; place < group.size(); place += 2) {
    line.bytes += static_cast<char>(DigitValue(group[place]) << 4U | DigitValue(group[place + 1]));
  }
}

// `digits` begins at `column`.
void ReadGroups(std::string_view digits, bool areBytes, std::size_t column, DumpLine& line) {
  std::size_t begin = digits.find_first_not_of(kBlanks);
  while (begin != std::string_view::npos && line.problem.empty()) {
    const std::size_t end = std::min(digits.find_first_of(kBlanks, begin), digits.size());
    ReadGroup(digits.substr(begin, end - begin), areBytes, column + begin, line);
    begin = digits.find_first_not_of(kBlanks, end);
  }
}

// Reads the offset that `line` begins with. Returns what follows it and what it is separated by.
std::string_view ReadOffset(std::string_view line, DumpStyle style, DumpLine& found) {
  const std::string_view digits = OffsetDigits(line);
  const std::string_view separator = style == DumpStyle::Xxd ? kColon : kTwoBlanks;
  const std::string_view rest = line.substr(digits.size());
  std::uint64_t offset = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), offset, 16);
  const bool isEnd = rest.empty() && style == DumpStyle::Canonical;
  if (digits.empty() || result.ec != std::errc() || !(isEnd || rest.starts_with(separator))) {
    found.problem = std::string("expected an offset and ") + (style == DumpStyle::Xxd ? "a colon" : "two blanks");
    return {};
  }
  found.offset = offset;
  return isEnd ? rest : rest.substr(separator.size());
}

DumpLine ReadLine(std::string_view line, DumpStyle style) {
  DumpLine found;
  if (style == DumpStyle::Plain) {
    const bool areBytes = Trim(line).find_first_of(kBlanks) != std::string_view::npos;
    ReadGroups(line, areBytes, 1, found);
    return found;
  }
  const std::string_view rest = ReadOffset(line, style, found);
  const std::size_t end = std::min(style == DumpStyle::Xxd ? rest.find(kTwoBlanks) : rest.find('|'), rest.size());
  if (found.problem.empty()) {
    ReadGroups(rest.substr(0, end), style == DumpStyle::Canonical, line.size() - rest.size() + 1, found);
  }
  if (style == DumpStyle::Xxd) {
    found.text = rest.substr(end);
  }
  return found;
}

// xxd can turn the bytes of each group around (-e), which nothing but the text at the line's end tells.
bool IsShownBytes(const DumpLine& line) {
  if (line.text.size() < line.bytes.size()) {
    return true;  // there is none, or an editor has cut blanks off its end
  }
  const std::string_view shown = line.text.substr(line.text.size() - line.bytes.size());
  return std::equal(shown.begin(), shown.end(), line.bytes.begin(),
                    [](char character, char byte) { return character == (byte < ' ' || byte > '~' ? '.' : byte); });
}

// Takes the first line with anything in it off `text`.
std::string_view TakeLine(std::string_view& text) {
  std::string_view line;
  while (!text.empty() && IsBlankLine(line)) {
    line = FirstLine(text);
    text.remove_prefix(FirstLineSize(text));
  }
  return line;
}

}  // namespace

bool IsDump(std::string_view start) {
  constexpr std::array<std::size_t, 2> kPlainSizes = {30, 16};  // of a line of xxd -p, and of od
  const std::string_view line = TakeLine(start);
  const DumpStyle style = StyleOf(line);
  const DumpLine first = ReadLine(line, style);
  if (!first.problem.empty() || first.bytes.empty()) {
    return false;
  }
  if (style != DumpStyle::Plain) {
    return style == DumpStyle::Xxd || line.ends_with('|');
  }
  const DumpLine second = ReadLine(TakeLine(start), style);
  return second.problem.empty() && second.bytes.size() == first.bytes.size() &&
         std::find(kPlainSizes.begin(), kPlainSizes.end(), first.bytes.size()) != kPlainSizes.end();
}

std::optional<std::string> DumpText::Take(std::string_view line, std::vector<char>& blocks) {
  if (IsBlankLine(line)) {
    return std::nullopt;
  }
  if (!style_) {
    style_ = StyleOf(line);
  }
  if (line == "*" && style_ != DumpStyle::Plain) {
    isRepeating_ = true;
    return std::nullopt;
  }
  DumpLine found = ReadLine(line, *style_);
  if (!found.problem.empty()) {
    return GiveUp(found.problem);
  }
  if (!IsShownBytes(found)) {
    return GiveUp("the text at the line's end is that of other bytes");
  }
  if (found.offset) {
    if (const auto problem = GoTo(*found.offset, blocks)) {
      return GiveUp(*problem);
    }
    next_ = *found.offset + found.bytes.size();
  }
  if (!isSkipping_) {
    Append(found.bytes, blocks);
  }
  lastBytes_ = std::move(found.bytes);
  return std::nullopt;
}

std::optional<std::string> DumpText::GiveUp(const std::string& problem) {
  if (std::exchange(isSkipping_, true)) {
    return std::nullopt;
  }
  pending_.clear();
  isRepeating_ = false;
  return problem + (style_ == DumpStyle::Plain ? "; what follows is not decoded"
                                               : "; what follows is decoded from the next block's offset on");
}

std::optional<std::string> DumpText::ProblemAtEnd() const {
  if (isSkipping_) {
    return std::nullopt;
  }
  if (isRepeating_) {
    return "ends behind '*': expected the offset up to which the line above it is repeated";
  }
  return pending_.empty() ? std::nullopt
                          : std::optional("short block of " + std::to_string(pending_.size()) +
                                          " bytes at the end of the dump: expected 128");
}

// Prepares for bytes at `offset`. Returns what is wrong with it.
std::optional<std::string> DumpText::GoTo(std::uint64_t offset, std::vector<char>& blocks) {
  if (!origin_) {
    origin_ = next_ = offset;
  }
  const bool wasRepeating = std::exchange(isRepeating_, false);
  if (isSkipping_) {
    isSkipping_ = (offset - *origin_) % kBlockSize != 0;
    return std::nullopt;
  }
  if (wasRepeating) {
    return Repeat(offset, blocks);
  }
  const bool isAnotherDump = offset == *origin_ && pending_.empty();
  if (offset != next_ && !isAnotherDump) {
    return "offset " + OffsetText(offset) + ", expected " + OffsetText(next_);
  }
  return std::nullopt;
}

// A few characters must not become any number of blocks.
std::optional<std::string> DumpText::Repeat(std::uint64_t offset, std::vector<char>& blocks) {
  constexpr std::uint64_t kMost = Portion::kLargest;
  const std::uint64_t size = offset - next_;
  if (lastBytes_.empty() || size > kMost || size % lastBytes_.size() != 0) {
    return "offset " + OffsetText(offset) + " behind '*', expected one up to " + OffsetText(next_ + kMost) +
           " that whole lines lead to";
  }
  for (std::uint64_t count = size / lastBytes_.size(); count > 0; --count) {
    Append(lastBytes_, blocks);
  }
  return std::nullopt;
}

void DumpText::Append(std::string_view bytes, std::vector<char>& blocks) {
  pending_ += bytes;
  const auto whole = static_cast<std::ptrdiff_t>(pending_.size() - pending_.size() % kBlockSize);
  blocks.insert(blocks.end(), pending_.begin(), pending_.begin() + whole);
  pending_.erase(0, static_cast<std::size_t>(whole));
}

}  // namespace norv::tool
