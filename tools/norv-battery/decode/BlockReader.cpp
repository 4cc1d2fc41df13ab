#include "decode/BlockReader.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "decode/Utf8.h"

namespace norv::tool {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string SystemMessage(int code) {
  return std::generic_category().message(code);
}

// A text has no control characters but tabs and line ends; a block has no battery without bytes of zero.
bool IsText(std::string_view start) {
  return std::none_of(start.begin(), start.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < ' ' && character != '\t' && character != '\r' && character != '\n';
  });
}

// Up to its line end, or all of it where there is none.
std::string_view FirstLine(std::string_view text) {
  std::string_view line = text.substr(0, text.find('\n'));
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  return line;
}

std::string_view ViewOf(const std::vector<char>& bytes) {
  return {bytes.data(), bytes.size()};
}

}  // namespace

void ForEachLine(std::string_view text, const std::function<void(std::string_view)>& visit) {
  while (!text.empty()) {
    const std::string_view line = FirstLine(text);
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    visit(line);
  }
}

bool IsBlankLine(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos;
}

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
  while (file_ == nullptr) {
    if (next_ == sources_.size()) {
      return false;
    }
    Open(portion);
    if (!portion.problem.empty()) {
      return true;
    }
  }
  constexpr std::size_t kLongestLineEnd = 2;
  FillUp(Portion::kLargest + (kind_ == InputKind::Binary ? 0 : kLongestLineEnd));
  portion.source = source_;
  portion.kind = kind_;
  portion.firstRow = row_;
  portion.firstPlace = place_;
  kind_ == InputKind::Binary ? TakeBlocks(portion) : TakeLines(portion);
  if (isAtEnd_ && ahead_.empty()) {
    if (!failure_.empty()) {
      portion.problem += (portion.problem.empty() ? "" : "; then ") + ("cannot be read any further: " + failure_);
    }
    Close();
  }
  return true;
}

// Leaves `portion` with a problem where there is nothing to be read.
void BlockReader::Open(Portion& portion) {
  const std::string& name = sources_[next_++];
  source_ = ToUtf8(name);
  portion.source = source_;
  portion.firstRow = row_ = 0;
  portion.firstPlace = place_ = 0;
  ahead_.clear();
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
    portion.problem = failure_.empty() ? "is empty: expected blocks of 128 bytes, or lines of 256 hexadecimal digits"
                                       : "cannot be read: " + failure_;
    Close();
    return;
  }
  Recognise();
}

void BlockReader::Close() {
  file_.reset();
}

void BlockReader::Recognise() {
  constexpr std::size_t kEnough = 1024;
  const bool isText = IsText(ViewOf(ahead_).substr(0, kEnough));
  kind_ = givenKind_.value_or(isText ? InputKind::Hexadecimal : InputKind::Binary);
  if (kind_ == InputKind::Hexadecimal) {
    place_ = 1;
    if (ViewOf(ahead_).starts_with(kByteOrderMark)) {
      ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(kByteOrderMark.size()));
    }
  }
}

// Reads until `size` bytes are ahead, or the source is at its end.
void BlockReader::FillUp(std::size_t size) {
  if (isAtEnd_) {
    return;
  }
  const std::size_t before = ahead_.size();
  ahead_.resize(size);
  errno = 0;
  const std::size_t count = std::fread(ahead_.data() + before, 1, size - before, file_.get());
  const int code = errno;
  ahead_.resize(before + count);
  bytesRead_ += count;
  isAtEnd_ = ahead_.size() < size;
  if (std::ferror(file_.get()) != 0) {
    failure_ = SystemMessage(code);
  }
}

// All that is ahead: whole blocks, because a portion is made of them, unless the source ends.
void BlockReader::TakeBlocks(Portion& portion) {
  portion.bytes.swap(ahead_);
  ahead_.clear();
  row_ += (portion.bytes.size() + kBlockSize - 1) / kBlockSize;
  place_ += portion.bytes.size();
}

// All whole lines that are ahead, and the last one without its line end where the source ends.
void BlockReader::TakeLines(Portion& portion) {
  if (isInLongLine_) {
    SkipLine();
    return;
  }
  const std::string_view text = ViewOf(ahead_);
  if (FirstLine(text).size() > Portion::kLargest) {
    portion.problem = "line " + std::to_string(place_) + " is longer than " + std::to_string(Portion::kLargest) +
                      " characters: expected 256 hexadecimal digits";
    isInLongLine_ = true;
    ++row_;
    SkipLine();
    return;
  }
  // A line end is there: what is ahead is more than the longest line and its end.
  const auto size = static_cast<std::ptrdiff_t>(isAtEnd_ ? text.size() : text.rfind('\n') + 1);
  portion.bytes.assign(ahead_.begin(), ahead_.begin() + size);
  ahead_.erase(ahead_.begin(), ahead_.begin() + size);
  ForEachLine(ViewOf(portion.bytes), [this](std::string_view line) {
    row_ += IsBlankLine(line) ? 0U : 1U;
    ++place_;
  });
}

// Drops what is ahead of the line's end; it may lie further on than that.
void BlockReader::SkipLine() {
  const std::size_t end = ViewOf(ahead_).find('\n');
  if (end == std::string_view::npos) {
    ahead_.clear();
    return;
  }
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(end) + 1);
  isInLongLine_ = false;
  ++place_;
}

}  // namespace norv::tool
