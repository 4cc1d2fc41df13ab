#include "json/Parse.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "json/Describe.h"

namespace norv::json {

namespace {

using Library = nlohmann::json;

// "line 3, column 7" of the byte at `position`, counted from 1. Columns count bytes.
std::string LineAndColumn(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, position > 0 ? position - 1 : 0);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t lineBreak = before.rfind('\n');
  const std::size_t column = lineBreak == std::string_view::npos ? before.size() + 1 : before.size() - lineBreak;
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// The library's own words without its name, its error number and its idea of the place, cut where it quotes at length.
std::string Complaint(const Library::exception& failure) {
  constexpr std::size_t kLongest = 200;
  std::string_view words = failure.what();
  for (const std::string_view lead : {"] ", "syntax error while parsing "}) {
    const std::size_t found = words.find(lead);
    words.remove_prefix(found != std::string_view::npos ? found + lead.size() : 0);
  }
  return words.size() <= kLongest ? std::string(words) : std::string(words.substr(0, kLongest)) + "...";
}

// What is no JSON, before it is known in which text.
struct SyntaxError {
  std::size_t position;
  std::string complaint;
};

// Makes the tree of what the library reads: its own would take any depth, and of two keys of one name the last one.
class TreeBuilder {
 public:
  Value Take() { return std::move(root_); }

  // The library calls these by their names.
  // NOLINTBEGIN(readability-identifier-naming)
  bool null() { return Put(Value()); }
  bool boolean(bool truth) { return Put(truth); }
  bool number_integer(std::int64_t number) { return Put(number); }
  bool number_unsigned(std::uint64_t number) { return Put(number); }
  bool number_float(double number, const std::string&) { return Put(number); }
  bool string(std::string& text) { return Put(std::move(text)); }
  static bool binary(Library::binary_t&) { return false; }  // no text holds any
  bool start_object(std::size_t) { return Open(Object()); }
  bool start_array(std::size_t) { return Open(Array()); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  bool key(std::string& name) {
    Level& level = levels_.back();
    level.key = std::move(name);
    if (level.container->As<Object>()->Find(level.key) != nullptr) {
      Fail("this key stands twice, expected it once");
    }
    return true;
  }
  bool parse_error(std::size_t position, const std::string&, const Library::exception& failure) {
    constexpr int kNumberOverflow = 406;
    if (failure.id == kNumberOverflow) {
      Fail("expected a number that a double holds, got " + Complaint(failure));
    }
    throw SyntaxError{position, Complaint(failure)};
  }
  // NOLINTEND(readability-identifier-naming)

 private:
  // An array or object whose end was not met yet.
  struct Level {
    Value* container;
    std::string key;  // the last one
  };

  Value& Store(Value value) {
    if (levels_.empty()) {
      return root_ = std::move(value);
    }
    const Level& level = levels_.back();
    if (auto* const array = level.container->As<Array>()) {
      return array->emplace_back(std::move(value));
    }
    return (*level.container->As<Object>())[level.key] = std::move(value);
  }

  bool Put(Value value) {
    Store(std::move(value));
    return true;
  }

  bool Open(Value container) {
    if (levels_.size() == kDeepest) {
      Fail("expected no more than " + std::to_string(kDeepest) + " arrays and objects within each other");
    }
    levels_.push_back({&Store(std::move(container)), {}});
    return true;
  }

  bool Close() {
    levels_.pop_back();
    return true;
  }

  // At what is being read, which is not stored yet.
  [[noreturn]] void Fail(const std::string& message) const {
    std::string path;
    for (const Level& level : levels_) {
      if (const auto* const array = level.container->As<Array>()) {
        path = ItemPath(path, &level == &levels_.back() ? array->size() : array->size() - 1);
      } else {
        path = MemberPath(path, level.key);
      }
    }
    throw ParseError((path.empty() ? "" : path + ": ") + message);
  }

  Value root_;
  std::vector<Level> levels_;
};

// `text` is what has been read when it fails.
template <typename Iterator>
Value ParseBetween(Iterator begin, Iterator end, bool isAll, const auto& text) {
  TreeBuilder builder;
  try {
    Library::sax_parse(begin, end, &builder, Library::input_format_t::json, isAll);
  } catch (const SyntaxError& error) {
    throw ParseError(LineAndColumn(text, error.position) + ": expected JSON, got " + error.complaint);
  }
  return builder.Take();
}

// The bytes of a stream and those that were taken from it. The standard library's own iterator reads ahead, and what it
// takes then is lost for the next value.
class StreamBytes {
 public:
  // NOLINTBEGIN(readability-identifier-naming): the standard library's names
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = char;
  // NOLINTEND(readability-identifier-naming)

  StreamBytes() = default;  // the end
  StreamBytes(std::streambuf& source, std::string& taken) : source_(&source), taken_(&taken) {}

  char operator*() const { return std::streambuf::traits_type::to_char_type(source_->sgetc()); }

  StreamBytes& operator++() {
    if (taken_->size() == kLongestValue) {
      throw ParseError("expected a value of no more than " + std::to_string(kLongestValue >> 20U) + " MiB");
    }
    *taken_ += **this;
    source_->sbumpc();
    return *this;
  }

  bool operator==(const StreamBytes& other) const { return IsAtEnd() == other.IsAtEnd(); }

 private:
  bool IsAtEnd() const { return source_ == nullptr || source_->sgetc() == std::streambuf::traits_type::eof(); }

  std::streambuf* source_ = nullptr;
  std::string* taken_ = nullptr;
};

}  // namespace

Value Parse(std::string_view text) {
  return ParseBetween(text.begin(), text.end(), true, text);
}

std::optional<Value> ParseNext(std::istream& input) {
  if (!(input >> std::ws) || input.eof()) {
    return std::nullopt;
  }
  std::string taken;
  return ParseBetween(StreamBytes(*input.rdbuf(), taken), StreamBytes(), false, taken);
}

}  // namespace norv::json
