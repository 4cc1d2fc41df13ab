#include "SupplyListing.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "FileDescriptor.h"

namespace norv::platform::posix {

namespace {

constexpr std::string_view kBlanks = " \t";

// Takes the first line off the text, without what ends it.
std::string_view TakeLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  return line.substr(std::min(line.find_first_not_of(kBlanks), line.size()));
}

// grep tells of what it cannot read, and of bytes that are no text, among its lines.
bool IsRemark(std::string_view line) {
  constexpr std::array<std::string_view, 3> kStarts = {"#", "grep: ", "Binary file "};
  return line.empty() ||
         std::any_of(kStarts.begin(), kStarts.end(), [line](auto start) { return line.starts_with(start); });
}

// A folder that devices lie in may have colons in its name. Otherwise what is behind the first colon is of the value.
std::string_view WithoutFolder(std::string_view line) {
  constexpr std::string_view kClass = "/power_supply/";
  constexpr std::string_view kHere = "./";
  if (line.starts_with(kClass.substr(1))) {
    return line.substr(kClass.size() - 1);
  }
  const std::size_t place = line.find(kClass);
  if (place != std::string_view::npos && (line.starts_with('/') || place < line.find(':'))) {
    return line.substr(place + kClass.size());
  }
  return line.substr(line.starts_with(kHere) ? kHere.size() : 0);
}

}  // namespace

struct SupplyListing::Entry {
  std::string_view supply;
  std::string_view attribute;
  std::string_view value;

  // The supply's name may have colons in it, that of an attribute has none.
  static std::optional<Entry> Parse(std::string_view line) {
    const std::string_view text = WithoutFolder(line);
    const std::size_t slash = text.find('/');
    const std::size_t colon = slash != std::string_view::npos ? text.find(':', slash) : slash;
    if (colon == std::string_view::npos || slash == 0 || colon == slash + 1 || text.find_first_of(kBlanks) < colon) {
      return std::nullopt;
    }
    return Entry{text.substr(0, slash), text.substr(slash + 1, colon - slash - 1), text.substr(colon + 1)};
  }

  bool IsOfSameAttribute(const Entry& other) const { return supply == other.supply && attribute == other.attribute; }
  bool IsInFolderOfSupply() const { return attribute.find('/') != std::string_view::npos; }
};

SupplyListing::SupplyListing(std::string_view text) {
  Entry before;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = TakeLine(text);
    if (IsRemark(line)) {
      continue;
    }
    const std::optional<Entry> entry = Entry::Parse(line);
    const std::optional<std::string> expected =
        entry ? Add(*entry, entry->IsOfSameAttribute(before)) : "SUPPLY/ATTRIBUTE:VALUE, such as BAT0/capacity:97";
    if (expected) {
      SetDefect("line " + std::to_string(number) + ": expected " + *expected);
      return;
    }
    before = *entry;
  }
}

SupplyListing SupplyListing::FromFile(const std::string& path) {
  constexpr std::size_t kLargest = std::size_t{1} << 20U;
  std::string text;
  if (const int failure = ReadOrdinaryFileAt(AT_FDCWD, path.c_str(), kLargest, text)) {
    SupplyListing none;
    none.SetDefect("cannot be read: " + std::generic_category().message(failure) +
                   "; expected a folder, or a file of at most 1 MiB that is no link");
    return none;
  }
  return SupplyListing(text);
}

std::vector<std::string> SupplyListing::Names() const {
  std::vector<std::string> names;
  names.reserve(supplies_.size());
  for (const auto& [name, attributes] : supplies_) {
    names.push_back(name);
  }
  return names;
}

AttributeReader SupplyListing::Open(const std::string& name) const {
  const auto supply = supplies_.find(name);
  return [this, supply](const char* attribute) -> std::optional<std::string> {
    if (supply == supplies_.end()) {
      return std::nullopt;
    }
    const auto value = supply->second.find(attribute);
    return value != supply->second.end() ? std::optional(value->second) : std::nullopt;
  };
}

void SupplyListing::SetDefect(std::string defect) {
  supplies_.clear();
  defect_ = std::move(defect);
}

// What was expected where the entry cannot be.
std::optional<std::string> SupplyListing::Add(const Entry& entry, bool continues) {
  if (entry.IsInFolderOfSupply()) {
    return std::nullopt;
  }
  auto& attributes = supplies_[std::string(entry.supply)];
  if (supplies_.size() > kMostSupplies) {
    return "at most " + std::to_string(kMostSupplies) + " supplies";
  }
  const auto [place, isNew] = attributes.emplace(entry.attribute, entry.value);
  if (!isNew && !continues) {
    return "each attribute once, all its lines in a row";
  }
  if (continues) {
    place->second.append("\n").append(entry.value);
  }
  const bool fits = place->second.size() <= kLongestAttribute;
  return fits ? std::nullopt : std::optional("a value of at most " + std::to_string(kLongestAttribute) + " bytes");
}

}  // namespace norv::platform::posix
