#include "norv/shared/error/Error.h"

#include <algorithm>
#include <utility>

namespace norv::shared::error {

Error::Error() : failed_(false), category_(ErrorCategory::UnknownException), code_(0) {
}

Error::Error(ErrorCategory category, std::int64_t code, std::string message, std::string typeText,
             std::string functionText)
    : failed_(true),
      category_(category),
      code_(code),
      message_(std::move(message)),
      typeText_(std::move(typeText)),
      functionText_(std::move(functionText)) {
}

Error::operator bool() const {
  return failed_;
}

ErrorCategory Error::GetCategory() const {
  return category_;
}

std::int64_t Error::GetCode() const {
  return code_;
}

const char* Error::GetMessageText() const {
  return message_.c_str();
}

const char* Error::GetTypeText() const {
  return typeText_.c_str();
}

const char* Error::GetFunctionText() const {
  return functionText_.c_str();
}

std::size_t Error::ToString(const Error& error, char* buffer) {
  std::string text;
  if (error.failed_) {
    text = "category " + std::to_string(static_cast<int>(error.category_)) + ", code " + std::to_string(error.code_) +
           ", message '" + error.message_ + "', type '" + error.typeText_ + "', function '" + error.functionText_ + "'";
  } else {
    text = "no error";
  }
  if (buffer != nullptr) {
    std::copy(text.begin(), text.end(), buffer);
  }
  return text.size();
}

}  // namespace norv::shared::error
