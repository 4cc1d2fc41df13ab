#include "decode/BlockReader.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "base/Utf8.h"
#include "decode/Lines.h"
#include "decode/Recognise.h"

namespace norv::tool {

namespace {

constexpr const char* kEmpty = "is empty: expected blocks of 128 bytes, or lines of 256 hexadecimal digits";

std::string SystemMessage(int code) {
  return std::generic_category().message(code);
}

std::string_view ViewOf(const std::vector<char>& bytes) {
  return {bytes.data(), bytes.size()};
}

std::string LineText(std::uint64_t line) {
  return "line " + std::to_string(line);
}

}  // namespace

void BlockReader::CloseFile::operator()(std::FILE* file) const {
  if (file != stdin) {
    std::fclose(file);
  }
}

BlockReader::BlockReader(std::vector<std::string> sources, std::optional<InputKind> kind)
    : sources_(std::move(sources)), givenKind_(kind) {
}

bool BlockReader::Read(Portion& portion) {
  portion.bytes.clear();
  portion.problem.clear();
  portion.isNoInput = false;
  while (file_ == nullptr) {
    if (next_ == sources_.size()) {
      return false;
    }
    Open(portion);
    if (!portion.problem.empty()) {
      portion.isNoInput = true;
      file_.reset();
      return true;
    }
  }
  constexpr std::size_t kLongestLineEnd = 2;
  FillUp(Portion::kLargest + (kind_ == InputKind::Binary ? 0 : kLongestLineEnd));
  portion.source = source_;
  portion.kind = kind_ == InputKind::Hexadecimal ? InputKind::Hexadecimal : InputKind::Binary;
  portion.firstRow = row_;
  portion.firstPlace = place_;
  kind_ == InputKind::Binary ? TakeBlocks(portion) : TakeText(portion);
  if (isAtEnd_ && ahead_.empty()) {
    Close(portion);
  }
  return true;
}

// Leaves `portion` with a problem where there is nothing to be read.
void BlockReader::Open(Portion& portion) {
  const std::string& name = sources_[next_++];
  source_ = base::AsUtf8(name);
  portion.source = source_;
  portion.firstRow = row_ = 0;
  portion.firstPlace = place_ = 0;
  ahead_.clear();
  utf16_.reset();
  dump_ = DumpText();
  failure_.clear();
  isAtEnd_ = false;
  isInLongLine_ = false;
  file_.reset(name == "-" ? stdin : std::fopen(name.c_str(), "rb"));
  if (file_ == nullptr) {
    portion.problem = "cannot be opened: " + SystemMessage(errno);
    return;
  }
  FillUp(Portion::kLargest);
  if (ahead_.empty()) {
    portion.problem = failure_.empty() ? kEmpty : "cannot be read: " + failure_;
    return;
  }
  Recognise(portion);
}

// Behind the last bytes: what is wrong with the end becomes the problem of `portion`, which may have one already.
void BlockReader::Close(Portion& portion) {
  const auto add = [&portion](const std::string& problem) {
    portion.problem += (portion.problem.empty() ? "" : "; then ") + problem;
  };
  if (const auto problem = dump_.ProblemAtEnd()) {
    add(*problem);
  } else if (row_ == 0 && portion.problem.empty() && failure_.empty()) {
    add(kEmpty);
    portion.isNoInput = true;
  }
  if (!failure_.empty()) {
    add("cannot be read any further: " + failure_);
  }
  file_.reset();
}

void BlockReader::Recognise(Portion& portion) {
  const auto order = givenKind_ != InputKind::Binary ? Utf16OrderOf(ViewOf(ahead_)) : std::nullopt;
  if (order) {
    utf16_.emplace(*order);
    DropAhead(kUtf16MarkSize);
    DecodeFrom(0);
  }
  if (!givenKind_) {
    portion.problem = RefusalOf(ViewOf(ahead_));
  }
  kind_ = givenKind_ ? *givenKind_ : KindOf(ViewOf(ahead_));
  if (kind_ != InputKind::Binary) {
    place_ = 1;
    DropAhead(ahead_.size() - WithoutMark(ViewOf(ahead_)).size());
  }
}

void BlockReader::DropAhead(std::size_t size) {
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(size));
}

// Reads until `size` bytes are ahead, or the source is at its end.
void BlockReader::FillUp(std::size_t size) {
  while (!isAtEnd_ && ahead_.size() < size) {
    ReadMore(size - ahead_.size());
  }
}

void BlockReader::ReadMore(std::size_t size) {
  const std::size_t before = ahead_.size();
  ahead_.resize(before + size);
  errno = 0;
  const std::size_t count = std::fread(ahead_.data() + before, 1, size, file_.get());
  const int code = errno;
  ahead_.resize(before + count);
  bytesRead_ += count;
  isAtEnd_ = count < size;
  if (std::ferror(file_.get()) != 0) {
    failure_ = SystemMessage(code);
  }
  if (utf16_) {
    DecodeFrom(before);
  }
}

// Makes UTF-8 of the UTF-16 that is ahead from `place` on.
void BlockReader::DecodeFrom(std::size_t place) {
  const std::string bytes(ViewOf(ahead_).substr(place));
  ahead_.resize(place);
  utf16_->Append(bytes, isAtEnd_, ahead_);
}

// All that is ahead: whole blocks, because a portion is made of them, unless the source ends.
void BlockReader::TakeBlocks(Portion& portion) {
  portion.bytes.swap(ahead_);
  ahead_.clear();
  row_ += (portion.bytes.size() + kBlockSize - 1) / kBlockSize;
  place_ += portion.bytes.size();
}

// Whole lines that are ahead, and the last one without its line end where the source ends.
void BlockReader::TakeText(Portion& portion) {
  if (isInLongLine_) {
    SkipLine();
    return;
  }
  const std::string_view text = ViewOf(ahead_);
  if (FirstLine(text).size() > Portion::kLargest) {
    const std::string problem = LineText(place_) + " is longer than " + std::to_string(Portion::kLargest) +
                                " characters: expected 256 hexadecimal digits";
    portion.problem = kind_ == InputKind::Dump ? dump_.GiveUp(problem).value_or("") : problem;
    row_ += portion.problem.empty() ? 0U : 1U;
    isInLongLine_ = true;
    SkipLine();
    return;
  }
  // A line end is there: what is ahead is more than the longest line and its end.
  const std::size_t size = isAtEnd_ ? text.size() : text.rfind('\n') + 1;
  kind_ == InputKind::Dump ? TakeDump(portion, size) : TakeLines(portion, size);
}

// The lines of the next `size` bytes.
void BlockReader::TakeLines(Portion& portion, std::size_t size) {
  portion.bytes.assign(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(size));
  DropAhead(size);
  ForEachLine(ViewOf(portion.bytes), [this](std::string_view line) {
    row_ += IsBlankLine(line) ? 0U : 1U;
    ++place_;
  });
}

// The blocks of the lines of the next `size` bytes, up to the first that is wrong.
void BlockReader::TakeDump(Portion& portion, std::size_t size) {
  std::string_view text = ViewOf(ahead_).substr(0, size);
  while (!text.empty() && portion.bytes.size() < Portion::kLargest && portion.problem.empty()) {
    if (const auto problem = dump_.Take(FirstLine(text), portion.bytes)) {
      portion.problem = LineText(place_) + ": " + *problem;
    } else {
      text.remove_prefix(FirstLineSize(text));
      ++place_;
    }
  }
  DropAhead(size - text.size());
  row_ += portion.bytes.size() / kBlockSize + (portion.problem.empty() ? 0U : 1U);
}

// Drops what is ahead of the line's end; it may lie further on than that.
void BlockReader::SkipLine() {
  const std::size_t size = FirstLineSize(ViewOf(ahead_));
  isInLongLine_ = !ViewOf(ahead_).substr(0, size).ends_with('\n');
  place_ += isInLongLine_ ? 0U : 1U;
  DropAhead(size);
}

}  // namespace norv::tool
