#include "calls/OperationText.h"

#include <cstdio>

namespace norv::simulator {

std::string BiosCommandText(std::uint32_t first, std::uint32_t second, std::uint32_t third, const unsigned char* input,
                            std::uint32_t inputSize) {
  std::string text = std::to_string(first) + "," + std::to_string(second) + "," + std::to_string(third);
  if (input != nullptr && inputSize > 0) {
    text += " slot " + std::to_string(*input);
  }
  return text;
}

std::string PathText(const char* path) {
  return path != nullptr ? path : "";
}

std::string CalendarTimeText(const std::tm& calendarTime) {
  char text[80];
  std::snprintf(text, sizeof text, "%04lld-%02lld-%02d %02d:%02d:%02d", calendarTime.tm_year + 1900LL,
                calendarTime.tm_mon + 1LL, calendarTime.tm_mday, calendarTime.tm_hour, calendarTime.tm_min,
                calendarTime.tm_sec);
  return text;
}

}  // namespace norv::simulator
