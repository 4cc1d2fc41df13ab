#include "play/WmiQuery.h"

#include <algorithm>

#include "machine/Text.h"

namespace norv::simulator {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

class QueryReader {
 public:
  explicit QueryReader(std::string_view text) : rest_(text) {}

  std::optional<WmiQuery> Read() {
    WmiQuery query;
    if (!TakeWord("select") || !TakeSign('*') || !TakeWord("from") || !TakeName(query.wmiClass)) {
      return std::nullopt;
    }
    if (TakeWord("where")) {
      query.filter.emplace();
      if (!TakeName(query.filter->property) || !TakeSign('=') || !TakeQuoted(query.filter->value)) {
        return std::nullopt;
      }
    }
    SkipBlanks();
    return rest_.empty() ? std::optional(query) : std::nullopt;
  }

 private:
  void SkipBlanks() { rest_.remove_prefix(LengthOf(IsBlank)); }

  template <typename Kind>
  std::size_t LengthOf(Kind kind) const {
    return static_cast<std::size_t>(std::find_if_not(rest_.begin(), rest_.end(), kind) - rest_.begin());
  }

  bool TakeName(std::string& folded) {
    SkipBlanks();
    const std::size_t length = LengthOf(IsNameCharacter);
    folded = Folded(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return length > 0;
  }

  bool TakeWord(std::string_view keyword) {
    const std::string_view before = rest_;
    std::string word;
    if (TakeName(word) && word == keyword) {
      return true;
    }
    rest_ = before;
    return false;
  }

  bool TakeSign(char sign) {
    SkipBlanks();
    if (rest_.empty() || rest_.front() != sign) {
      return false;
    }
    rest_.remove_prefix(1);
    return true;
  }

  // A text in either kind of quotes, where a backslash takes the next character as it is.
  bool TakeQuoted(std::string& text) {
    const char quote = TakeSign('\'') ? '\'' : '"';
    if (quote == '"' && !TakeSign('"')) {
      return false;
    }
    while (!rest_.empty() && rest_.front() != quote) {
      if (rest_.front() == '\\' && rest_.size() > 1) {
        rest_.remove_prefix(1);
      }
      text.push_back(rest_.front());
      rest_.remove_prefix(1);
    }
    return TakeSign(quote);
  }

  std::string_view rest_;
};

}  // namespace

std::optional<WmiQuery> ParseWmiQuery(std::string_view wql) {
  return QueryReader(wql).Read();
}

}  // namespace norv::simulator
