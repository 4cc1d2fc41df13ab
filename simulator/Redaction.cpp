#include "Redaction.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "OperationText.h"
#include "Text.h"

namespace norv::simulator {

namespace {

struct Field {
  std::size_t offset;
  std::size_t width;
};

// Of the battery-information block.
constexpr Field kSerialNumber{0x1C, 16};
constexpr Field kCtNumber{0x3E, 16};

// Assembly, revision, supplier and week of a CT number: thousands of packs share them.
constexpr std::size_t kSharedCtLength = 10;

// What is shorter stands in too many texts by chance.
constexpr std::size_t kShortestKnown = 4;

// Properties that hold such a number have one of these in their name.
constexpr std::array<std::string_view, 6> kSerialProperties = {"serial",   "identifyingnumber", "uuid",
                                                               "assettag", "ctnumber",          "uniqueid"};

// The folder below these is a user's, unless it is one of those that every machine has.
constexpr std::array<std::string_view, 3> kHomes = {"users", "home", "documents and settings"};
constexpr std::array<std::string_view, 4> kSharedUsers = {"public", "default", "all users", "default user"};

template <std::size_t Count>
bool IsAmong(const std::string& name, const std::array<std::string_view, Count>& names) {
  return std::find(names.begin(), names.end(), Folded(name)) != names.end();
}

bool IsWordCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}

// A way to write a date: '#' stands for a digit and '-' for any separator.
struct DateShape {
  std::string_view layout;
  std::size_t month;
  std::size_t day;
};

// In the order in which a record looks for them.
constexpr std::array<DateShape, 4> kDateShapes{{
    {"20##-##-##", 5, 8},
    {"19-##-##", 3, 6},
    {"##-##-20##", 0, 3},
    {"##-##-19", 0, 3},
}};

bool HasLayout(std::string_view text, std::string_view layout) {
  return std::equal(text.begin(), text.end(), layout.begin(), layout.end(), [](char c, char wanted) {
    if (wanted == '#') {
      return c >= '0' && c <= '9';
    }
    return wanted == '-' ? std::string_view("- /.").find(c) != std::string_view::npos : c == wanted;
  });
}

int TwoDigits(std::string_view text) {
  return 10 * (text[0] - '0') + (text[1] - '0');
}

// A character of the same kind; other characters stay.
char Replacement(char c, unsigned char random) {
  if (c >= '0' && c <= '9') {
    return static_cast<char>('0' + random % 10);
  }
  if (c >= 'A' && c <= 'Z') {
    return static_cast<char>('A' + random % 26);
  }
  return c >= 'a' && c <= 'z' ? static_cast<char>('a' + random % 26) : c;
}

class Redactor {
 public:
  explicit Redactor(const KeyedHash& hash) : hash_(hash) {}

  // The number without its date and what belongs between the two. A replacement that another date could be read from is
  // not taken.
  std::string Serial(const std::string& number) {
    const std::size_t date = TrailingDateLength(number);
    std::string replacement;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      replacement = Mask("serial" + std::to_string(attempt), number, 0, date);
      if (TrailingDateLength(replacement) == date) {
        break;
      }
    }
    Know(number, replacement);
    const std::size_t stem = number.find_last_not_of("- /.", number.size() - date - 1);
    if (date > 0 && date < number.size() && stem != std::string::npos) {
      Know(number.substr(0, stem + 1), replacement.substr(0, stem + 1));
    }
    return replacement;
  }

  std::string CtNumber(const std::string& number) {
    std::string replacement = Mask("ct", number, std::min(kSharedCtLength, number.size()), 0);
    Know(number, replacement);
    return replacement;
  }

  std::string Path(const std::string& path) {
    std::string redacted;
    std::string parent;
    for (std::size_t start = 0; start <= path.size();) {
      const std::size_t end = std::min(path.find_first_of("\\/", start), path.size());
      const std::string name = path.substr(start, end - start);
      const bool isUser = IsAmong(parent, kHomes) && !name.empty() && !IsAmong(name, kSharedUsers);
      redacted += isUser ? User(name) : name;
      redacted += path.substr(end, 1);
      parent = name;
      start = end + 1;
    }
    return redacted;
  }

  void BatteryBlock(Block& block) {
    ReplaceField(block, kSerialNumber, [this](const std::string& text) { return Serial(text); });
    ReplaceField(block, kCtNumber, [this](const std::string& text) { return CtNumber(text); });
  }

  // What was replaced before, wherever it stands as a whole word.
  std::string Known(std::string text) const {
    for (const auto& [value, replacement] : known_) {
      for (std::size_t at = text.find(value); at != std::string::npos; at = text.find(value, at + value.size())) {
        const bool isWord = (at == 0 || !IsWordCharacter(text[at - 1])) &&
                            (at + value.size() == text.size() || !IsWordCharacter(text[at + value.size()]));
        if (isWord) {
          text.replace(at, value.size(), replacement);
        }
      }
    }
    return text;
  }

 private:
  static constexpr int kAttempts = 256;

  // What stands in bytes outside ASCII becomes small letters: a name keeps its length, and no accent tells of it.
  std::string User(const std::string& name) {
    std::string plain = name;
    std::replace_if(
        plain.begin(), plain.end(), [](char c) { return (c & 0x80) != 0; }, 'x');
    std::string replacement = Mask("user", plain, 0, 0, name);
    Know(name, replacement);
    return replacement;
  }

  std::string Mask(const std::string& label, const std::string& text, std::size_t first, std::size_t last) const {
    return Mask(label, text, first, last, text);
  }

  // Replaces all but `first` characters at the start of `text` and `last` at its end, by the hash of `value`.
  std::string Mask(const std::string& label, std::string text, std::size_t first, std::size_t last,
                   const std::string& value) const {
    std::array<unsigned char, 32> random{};
    for (std::size_t i = first; i + last < text.size(); ++i) {
      const std::size_t place = i % random.size();
      if (place == 0 || i == first) {
        std::string message = label;
        message.append(1, '\0').append(std::to_string(i / random.size())).append(1, '\0').append(value);
        random = hash_(message);
      }
      text[i] = Replacement(text[i], random[place]);
    }
    return text;
  }

  // The text up to its end by `replace`, and what firmware left behind the end by its kind alone.
  template <typename Replace>
  void ReplaceField(Block& block, const Field& field, Replace replace) {
    const auto start = block.begin() + static_cast<std::ptrdiff_t>(field.offset);
    const std::string whole(start, start + static_cast<std::ptrdiff_t>(field.width));
    const std::size_t end = std::min(whole.find('\0'), whole.size());
    const std::string rest = whole.substr(end);
    const std::string text = end > 0 ? replace(whole.substr(0, end)) : std::string();
    const std::string replaced = text + Mask("rest", rest, 0, 0);
    std::transform(replaced.begin(), replaced.end(), start, [](char c) { return static_cast<unsigned char>(c); });
  }

  void Know(const std::string& value, const std::string& replacement) {
    if (value.size() >= kShortestKnown) {
      known_.emplace(value, replacement);
    }
  }

  const KeyedHash& hash_;
  // Longer ones first where one begins with the other.
  std::map<std::string, std::string, std::greater<>> known_;
};

bool IsBattery(const RecordedCall& call) {
  return call.operation == kSendBiosCommand && call.argument.starts_with("1,7,1") && call.outcome.block.has_value();
}

bool IsSerialProperty(const std::string& property) {
  const std::string folded = Folded(property);
  return std::any_of(kSerialProperties.begin(), kSerialProperties.end(),
                     [&](std::string_view part) { return folded.find(part) != std::string::npos; });
}

void RedactNumbers(Redactor& redactor, RecordedCall& call) {
  if (IsBattery(call)) {
    redactor.BatteryBlock(*call.outcome.block);
  }
  for (RecordedRow& row : call.rows) {
    for (auto& [property, reads] : row) {
      if (IsSerialProperty(property) && reads.text.has_value() && !reads.text->value.empty()) {
        reads.text->value = redactor.Serial(reads.text->value);
        reads.number.reset();
      }
    }
  }
}

void RedactPaths(Redactor& redactor, RecordedCall& call) {
  call.folder = redactor.Path(call.folder);
  if (call.operation == kRunProgram || call.operation == kReadProductVersion) {
    call.path = redactor.Path(call.path);
    call.argument = redactor.Path(call.argument);
  } else if (call.operation == kLibraryPath && call.outcome.text.has_value()) {
    call.outcome.text = redactor.Path(*call.outcome.text);
  }
}

// Every other text may repeat what was found in its own place.
void RedactTexts(const Redactor& redactor, RecordedCall& call) {
  if (call.outcome.thrown.has_value()) {
    call.outcome.thrown->text = redactor.Known(call.outcome.thrown->text);
  }
  if (call.outcome.text.has_value() && call.operation != kLibraryPath) {
    call.outcome.text = redactor.Known(*call.outcome.text);
  }
  if (call.outcome.block.has_value() && !IsBattery(call)) {
    Block& block = *call.outcome.block;
    const std::string redacted = redactor.Known(std::string(block.begin(), block.end()));
    std::transform(redacted.begin(), redacted.end(), block.begin(),
                   [](char c) { return static_cast<unsigned char>(c); });
  }
  for (RecordedRow& row : call.rows) {
    for (auto& [property, reads] : row) {
      if (reads.text.has_value() && !IsSerialProperty(property)) {
        reads.text->value = redactor.Known(reads.text->value);
      }
    }
  }
}

}  // namespace

std::size_t TrailingDateLength(const std::string& serialNumber) {
  for (const DateShape& shape : kDateShapes) {
    if (serialNumber.size() >= shape.layout.size()) {
      const std::string_view end = std::string_view(serialNumber).substr(serialNumber.size() - shape.layout.size());
      const int month = TwoDigits(end.substr(shape.month));
      const int day = TwoDigits(end.substr(shape.day));
      if (HasLayout(end, shape.layout) && month >= 1 && month <= 12 && day >= 1 && day <= 31) {
        return shape.layout.size();
      }
    }
  }
  return 0;
}

std::vector<RecordedCall> Redacted(std::vector<RecordedCall> calls, const KeyedHash& hash) {
  Redactor redactor(hash);
  for (RecordedCall& call : calls) {
    RedactNumbers(redactor, call);
    RedactPaths(redactor, call);
  }
  for (RecordedCall& call : calls) {
    RedactTexts(redactor, call);
  }
  return calls;
}

Origin Redacted(Origin origin, const KeyedHash& hash) {
  Redactor redactor(hash);
  origin.name = redactor.Path(origin.name);
  return origin;
}

}  // namespace norv::simulator
