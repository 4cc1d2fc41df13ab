// An appender that keeps what it is given.
#pragma once

#include <plog/Appenders/IAppender.h>

#include <cwchar>
#include <string>
#include <vector>

struct Entry {
  plog::Severity severity;
  std::string function;
  std::string file;
  std::wstring object;
  std::string message;
};

class Collector : public plog::IAppender {
 public:
  void write(const plog::Record& record) override {
    // Copied one by one: a record makes its function text anew each time it is asked.
    Entry entry;
    entry.severity = record.getSeverity();
    entry.function = record.getFunc();
    entry.file = record.getFile();
    if (record.getObject() != nullptr) {
      entry.object = static_cast<const wchar_t*>(record.getObject());
    }
    entry.message = record.getMessage();
    entries_.push_back(entry);
  }

  const std::vector<Entry>& Entries() const { return entries_; }

 private:
  std::vector<Entry> entries_;
};
