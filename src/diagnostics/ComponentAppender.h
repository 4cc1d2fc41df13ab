// Carries the library's log records to the host.
#pragma once

#include <plog/Appenders/IAppender.h>

#include <string>

namespace norv::shared::common::logger {

// Copies each record, tagged with the library's name, to the host's appender.
class ComponentAppender : public plog::IAppender {
 public:
  // `target` stays the host's and must outlive the library's logger; null drops the records.
  ComponentAppender(std::wstring componentName, plog::IAppender* target);
  ~ComponentAppender() override;

  // The copy carries the record's function text also in the place of its file, and in the place of its object the
  // address of the component name's text.
  void write(const plog::Record& record) override;

 private:
  std::wstring componentName_;
  plog::IAppender* target_;
};

}  // namespace norv::shared::common::logger
