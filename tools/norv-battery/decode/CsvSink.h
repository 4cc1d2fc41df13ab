// Writes the rows of `norv-battery decode` as comma-separated values.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decode/Digits.h"
#include "decode/OutputBuffer.h"
#include "norv/shared/error/Error.h"

namespace norv::tool {

// What becomes of a text that a terminal or a spreadsheet would obey.
enum class CsvTexts { Harmless, Raw };

// The same calls as JsonSink's; a null is an empty field, a failure its message.
class CsvSink {
 public:
  explicit CsvSink(OutputBuffer& output, CsvTexts texts = CsvTexts::Harmless) : output_(output), texts_(texts) {}

  void BeginRow() {}
  void EndRow() { output_.ReplaceLast('\n'); }
  void Open(const char* /*key*/) {}
  void Close() {}

  template <std::integral Integer>
  void Number(const char* /*key*/, Integer value) {
    char* to = PutNumber(output_.Reserve(kMostDigits + 1), value);
    *to++ = ',';
    output_.ExtendTo(to);
  }
  void Number(const char* key, std::optional<int> value) { value ? Number(key, *value) : Null(key); }
  void Percentage(const char* key, std::optional<float> value) {
    if (!value) {
      Null(key);
      return;
    }
    char* to = PutPercentage(output_.Reserve(kMostDigits + 1), *value);
    *to++ = ',';
    output_.ExtendTo(to);
  }
  template <std::size_t Count>
  void Numbers(const char* key, const std::array<int, Count>& values) {
    for (const int value : values) {
      Number(key, value);
    }
  }
  void Boolean(const char* /*key*/, bool value) {
    output_.Append(value ? std::string_view("true,") : std::string_view("false,"));
  }
  void Null(const char* /*key*/) { output_.Append(','); }
  void Bytes(const char* key, std::string_view bytes);
  void Utf8(const char* key, std::string_view text);
  void Utf8(const char* key, const std::optional<std::string_view>& text) { text ? Utf8(key, *text) : Null(key); }
  void Failure(const char* key, const shared::error::Error* error) {
    error != nullptr ? Bytes(key, error->GetMessageText()) : Null(key);
  }

 private:
  void Plain(std::string_view text);
  void Special(std::string_view text);
  void Quoted(std::string_view text);

  OutputBuffer& output_;
  CsvTexts texts_;
};

// Writes the head line: the path of each field, "cells.voltages[0]".
class CsvHeadSink {
 public:
  explicit CsvHeadSink(OutputBuffer& output) : output_(output) {}

  void BeginRow() {}
  void EndRow() { output_.ReplaceLast('\n'); }
  void Open(const char* key) { path_.push_back(std::string(key) + '.'); }
  void Close() { path_.pop_back(); }

  template <std::integral Integer>
  void Number(const char* key, Integer /*value*/) {
    Name(key);
  }
  void Number(const char* key, std::optional<int> /*value*/) { Name(key); }
  void Percentage(const char* key, std::optional<float> /*value*/) { Name(key); }
  template <std::size_t Count>
  void Numbers(const char* key, const std::array<int, Count>& /*values*/) {
    for (std::size_t index = 0; index < Count; ++index) {
      Name(key + ('[' + std::to_string(index) + ']'));
    }
  }
  void Boolean(const char* key, bool /*value*/) { Name(key); }
  void Bytes(const char* key, std::string_view /*bytes*/) { Name(key); }
  void Utf8(const char* key, std::string_view /*text*/) { Name(key); }
  void Utf8(const char* key, const std::optional<std::string_view>& /*text*/) { Name(key); }
  void Null(const char* key) { Name(key); }
  void Failure(const char* key, const shared::error::Error* /*error*/) { Name(key); }

 private:
  void Name(const std::string& key) {
    for (const std::string& part : path_) {
      output_.Append(part);
    }
    output_.Append(key);
    output_.Append(',');
  }

  OutputBuffer& output_;
  std::vector<std::string> path_;
};

}  // namespace norv::tool
