#include "c-interface/ErrorParts.h"

#include "base/Utf8.h"
#include "c-interface/Guard.h"
#include "c-interface/Texts.h"

namespace norv::shared::battery::c_interface {

namespace {

const char* Part(const error::Error& failure, std::int32_t part) {
  switch (part) {
    case NORV_BATTERY_ERROR_MESSAGE:
      return failure.GetMessageText();
    case NORV_BATTERY_ERROR_TYPE:
      return failure.GetTypeText();
    case NORV_BATTERY_ERROR_FUNCTION:
      return failure.GetFunctionText();
    default:
      return nullptr;
  }
}

}  // namespace

norv_battery_status WriteError(const error::Error& failure, norv_battery_error* target) {
  const norv_battery_status status = CheckStructure(target);
  if (status == NORV_BATTERY_OK) {
    target->category = failure ? static_cast<std::int32_t>(failure.GetCategory()) : NORV_BATTERY_NOTHING_FAILED;
    target->code = failure ? failure.GetCode() : 0;
  }
  return status;
}

norv_battery_status CopyErrorText(const error::Error& failure, std::int32_t part, char* buffer, std::size_t bufferSize,
                                  std::size_t* needed) {
  const char* const text = Part(failure, part);
  return text != nullptr ? CopyText(base::BytesToUtf8(text), buffer, bufferSize, needed)
                         : NORV_BATTERY_INVALID_ARGUMENT;
}

}  // namespace norv::shared::battery::c_interface
