#include "json/Describe.h"

#include <algorithm>

#include "json/Write.h"

namespace norv::json {

namespace {

bool IsPlainKey(const std::string& key) {
  const auto isPlain = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$';
  };
  return !key.empty() && std::all_of(key.begin(), key.end(), isPlain);
}

}  // namespace

std::string MemberPath(const std::string& path, const std::string& key) {
  if (IsPlainKey(key)) {
    return path.empty() ? key : path + "." + key;
  }
  return path + "[" + QuoteInAscii(key) + "]";
}

std::string ItemPath(const std::string& path, std::size_t index) {
  return path + "[" + std::to_string(index) + "]";
}

std::string Describe(const Value& value) {
  if (value.Is<Object>()) {
    return "an object";
  }
  if (const auto* const array = value.As<Array>()) {
    return "an array of " + std::to_string(array->size()) + (array->size() == 1 ? " entry" : " entries");
  }
  const auto* const text = value.As<std::string>();
  return Shortened(text != nullptr ? QuoteInAscii(*text) : Write(value));
}

std::string Shortened(const std::string& text) {
  constexpr std::size_t kShown = 60;
  return text.size() <= kShown ? text : text.substr(0, kShown) + "...";
}

}  // namespace norv::json
