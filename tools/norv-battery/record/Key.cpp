#include "record/Key.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

#include "output/EscapeText.h"

namespace norv::tool {

namespace {

constexpr std::size_t kLargestFile = 4096;

[[noreturn]] void Refuse(const std::string& source, const std::string& problem) {
  throw std::runtime_error(source + ": " + problem);
}

std::string Checked(const std::string& source, const std::string& key) {
  if (key.size() < kShortestKey) {
    Refuse(source, "expected a key of at least " + std::to_string(kShortestKey) + " characters, found " +
                       std::to_string(key.size()));
  }
  return key;
}

// Editors end a file with a line end, which is not of the key.
std::string WithoutLineEnd(std::string text) {
  for (const char end : {'\n', '\r'}) {
    if (text.ends_with(end)) {
      text.pop_back();
    }
  }
  return text;
}

std::string ReadKeyFile(const std::string& name) {
  const std::string source = "--key-file " + Quote(name);
  const std::filesystem::path path(std::u8string(name.begin(), name.end()));
  std::error_code problem;
  const std::filesystem::file_status status = std::filesystem::status(path, problem);
  if (!std::filesystem::exists(status)) {
    Refuse(source, "there is no such file");
  }
  // Others may never end, or not let themselves be opened without a writer.
  if (!std::filesystem::is_regular_file(status)) {
    Refuse(source, "expected a regular file");
  }
  std::ifstream file(path, std::ios::binary);
  std::array<char, kLargestFile + 1> bytes{};
  file.read(bytes.data(), bytes.size());
  if (!file.is_open() || file.bad()) {
    Refuse(source, "the file cannot be read");
  }
  const auto size = static_cast<std::size_t>(file.gcount());
  if (size > kLargestFile) {
    Refuse(source, "expected a file of at most " + std::to_string(kLargestFile) + " bytes");
  }
  return Checked(source, WithoutLineEnd({bytes.data(), size}));
}

}  // namespace

std::optional<std::string> GivenKey(const std::optional<std::string>& file) {
  if (file.has_value()) {
    return ReadKeyFile(*file);
  }
  const char* const key = std::getenv(kKeyVariable);
  return key != nullptr ? std::optional(Checked(std::string("the environment variable ") + kKeyVariable, key))
                        : std::nullopt;
}

std::string MakeKey() {
  std::random_device random;
  std::string key;
  for (int i = 0; i < 4; ++i) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%08x", random());
    key += digits.data();
  }
  return key;
}

}  // namespace norv::tool
