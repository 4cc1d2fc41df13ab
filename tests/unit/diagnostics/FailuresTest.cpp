// How failures become errors: system messages, exceptions, type names, text forms.
#include "diagnostics/Operation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <ios>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>
#include <vector>

#include "norv/platform/Platform.h"
#include "norv/simulator/SimulatedMachine.h"
#include "unit/support/LogCapture.h"
#include "unit/support/SystemText.h"

namespace norv::test {
namespace {

using shared::battery::diagnostics::ExceptionError;
using shared::battery::diagnostics::Operation;
using shared::battery::diagnostics::ReadExceptionError;
using shared::battery::diagnostics::SystemFailure;
using shared::battery::diagnostics::TypeName;
using shared::battery::diagnostics::WrongValue;
using shared::error::Error;
using shared::error::ErrorCategory;

// A system whose message formatting answers as a test tells it.
class Messages : public platform::PlatformWrapper {
 public:
  Messages() : PlatformWrapper(platform::Platform::Current()), scope_(*this) {}

  std::uint32_t FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) override {
    askedCode = code;
    askedSize = size;
    text.copy(buffer, size);
    return told;
  }
  std::uint32_t LastSystemCode() override { return lastCode; }

  std::string text;
  std::uint32_t told = 0;
  std::uint32_t lastCode = 0;
  std::uint32_t askedCode = 0;
  std::uint32_t askedSize = 0;

 private:
  platform::ScopedPlatform scope_;
};

Error ErrorFor(const Messages& /*system*/, std::int32_t status) {
  return SystemFailure(status).Of("who");
}

TEST(SystemMessage, KeepsTheTextWithItsLineBreak) {
  Messages system;
  system.text = "It failed.\r\n";
  system.told = 12;
  EXPECT_TRUE(IsError(ErrorFor(system, 5), ErrorCategory::SystemMessage, 5, "It failed.\r\n", "long", "who"));
  EXPECT_EQ(system.askedCode, 5U);
  EXPECT_EQ(system.askedSize, 2018U);
}

TEST(SystemMessage, UnwrapsFacilityEightOnly) {
  Messages system;
  struct Row {
    std::uint32_t status;
    std::uint32_t code;
  };
  for (const Row& row : {Row{0x80080005U, 5U}, Row{0x00080007U, 7U}, Row{0xE008FFFFU, 0xFFFFU},
                         Row{0x80070005U, 0x80070005U}, Row{0x80090005U, 0x80090005U}, Row{0x90080005U, 0x90080005U},
                         Row{0x80180005U, 0x80180005U}, Row{0x80000005U, 0x80000005U}}) {
    const Error error = ErrorFor(system, static_cast<std::int32_t>(row.status));
    EXPECT_EQ(error.GetCode(), static_cast<std::int32_t>(row.code)) << row.status;
    EXPECT_EQ(system.askedCode, row.code);
  }
}

TEST(SystemMessage, FallsBackWhenTheSystemHasNoText) {
  Messages system;
  system.lastCode = 317;
  EXPECT_STREQ(ErrorFor(system, 12345).GetMessageText(),
               "The system cannot find message text for error code 12345\r\n");
  EXPECT_STREQ(ErrorFor(system, -5).GetMessageText(), "The system cannot find message text for error code -5\r\n");
}

TEST(SystemMessage, FallsBackWhenTheTextIsTooLong) {
  Messages system;
  system.lastCode = 122;
  EXPECT_STREQ(ErrorFor(system, 7).GetMessageText(),
               "Message text for error code 7 is larger than max buffer size of 2018\r\n");
}

TEST(SystemMessage, FallsBackWhenFormattingFailsOtherwise) {
  Messages system;
  system.lastCode = 8;
  EXPECT_STREQ(ErrorFor(system, 7).GetMessageText(),
               "Could not format message for error code 7 due to new error 8\r\n");
}

TEST(SystemMessage, TrustsNoTextWithoutAnEndWithinItsLength) {
  Messages system;
  system.text = "abcdef";
  system.told = 5;  // the sixth character stands where the end should be
  EXPECT_STREQ(ErrorFor(system, 7).GetMessageText(), "");
  system.told = 6;
  EXPECT_STREQ(ErrorFor(system, 7).GetMessageText(), "abcdef");
  system.told = 100;  // more than there is
  EXPECT_STREQ(ErrorFor(system, 7).GetMessageText(), "abcdef");
  system.text = std::string(2018, 'x');
  system.told = 0xFFFFFFFF;
  EXPECT_STREQ(ErrorFor(system, 7).GetMessageText(), "");
}

TEST(SystemMessage, AnEmptyTextStaysEmpty) {
  Messages system;
  system.told = 3;
  EXPECT_TRUE(IsError(ErrorFor(system, 7), ErrorCategory::SystemMessage, 7, "", "long", "who"));
}

TEST(SystemMessage, IsTheSystemsOwnOnTheRunningPlatform) {
  ASSERT_NE(SystemText(5), "");
  EXPECT_EQ(SystemFailure(5).message, SystemText(5));
  EXPECT_EQ(SystemFailure(static_cast<std::int32_t>(0x80080005U)).message, SystemText(5));
  EXPECT_EQ(SystemFailure(0x2FFFFFFF).message, "The system cannot find message text for error code 805306367\r\n");
}

template <typename Thrown>
Error Converted(const Thrown& thrown) {
  return ExceptionError(std::make_exception_ptr(thrown), "who");
}

TEST(ExceptionConversion, ASystemErrorTellsItsCode) {
  const std::system_error thrown(std::error_code(2, std::generic_category()), "open");
  EXPECT_TRUE(IsError(Converted(thrown), ErrorCategory::StandardException, 1,
                      std::string("message: '") + thrown.what() + "' system code : 'generic:2'", "std::system_error",
                      "who"));
}

TEST(ExceptionConversion, WhatDerivesFromASystemErrorIsOne) {
  const std::ios_base::failure thrown("stream", std::error_code(1, std::iostream_category()));
  const Error error = Converted(thrown);
  EXPECT_EQ(error.GetMessageText(), std::string("message: '") + thrown.what() + "' system code : 'iostream:1'");
}

TEST(ExceptionConversion, OtherStandardExceptionsKeepTheirMessage) {
  EXPECT_TRUE(IsError(Converted(std::runtime_error("text")), ErrorCategory::StandardException, 1, "text",
                      "std::runtime_error", "who"));
  EXPECT_TRUE(IsError(Converted(std::bad_alloc()), ErrorCategory::StandardException, 1, std::bad_alloc().what(),
                      "std::bad_alloc", "who"));
}

TEST(ExceptionConversion, TheTypeIsTheDynamicOne) {
  struct Own : std::logic_error {
    using logic_error::logic_error;
  };
  const Error error = Converted(Own("mine"));
  EXPECT_EQ(error.GetTypeText(), TypeName<Own>());
  EXPECT_NE(error.GetTypeText(), std::string("std::logic_error"));
}

TEST(ExceptionConversion, ThrownNumbersAreCodes) {
  EXPECT_TRUE(IsError(Converted(-3), ErrorCategory::Value, -3, "", "int", "who"));
  EXPECT_TRUE(IsError(Converted(4000000000UL), ErrorCategory::Value, 4000000000, "", "unsigned long", "who"));
}

TEST(ExceptionConversion, ThrownTextsAreMessages) {
  EXPECT_TRUE(IsError(Converted(std::string("x")), ErrorCategory::Value,
                      static_cast<std::int64_t>(typeid(std::string).hash_code()), "x", TypeName<std::string>(), "who"));
  EXPECT_TRUE(IsError(Converted<const char*>("y"), ErrorCategory::Value,
                      static_cast<std::int64_t>(typeid(const char*).hash_code()), "y", "char const*", "who"));
  const char* const nothing = nullptr;
  EXPECT_STREQ(Converted(nothing).GetMessageText(), "");
}

TEST(ExceptionConversion, AnythingElseIsUnknown) {
  struct Odd {};
  for (const Error& error : {Converted(Odd()), Converted(1.5), Converted(7L), Converted(8U), Converted('c')}) {
    EXPECT_TRUE(IsError(error, ErrorCategory::UnknownException, 0, "Unknown exception type.", "Unknown", "who"));
  }
}

TEST(ExceptionConversion, AReadTakesStandardExceptionsByTheirOwnMessage) {
  const std::system_error thrown(std::error_code(2, std::generic_category()), "open");
  EXPECT_TRUE(IsError(ReadExceptionError(std::make_exception_ptr(thrown)), ErrorCategory::StandardException, 1,
                      thrown.what(), "std::system_error", ""));
  EXPECT_TRUE(IsError(ReadExceptionError(std::make_exception_ptr(3)), ErrorCategory::Value, 3, "", "int", ""));
}

TEST(Operation, GivesTheBodysAnswer) {
  Error stored;
  const Operation operation("who", stored);
  EXPECT_TRUE(operation.Run([] { return true; }));
  EXPECT_FALSE(operation.Run([] { return false; }));
  EXPECT_TRUE(operation.Run([] {})) << "a body without an answer";
  EXPECT_FALSE(stored);
}

TEST(Operation, FailsWithWhatIsThrown) {
  Error stored;
  const Operation operation("who", stored);
  LogCapture log;
  EXPECT_FALSE(operation.Run([] { throw std::bad_alloc(); }));
  EXPECT_TRUE(IsError(stored, ErrorCategory::StandardException, 1, std::bad_alloc().what(), "std::bad_alloc", "who"));
  EXPECT_EQ(log.Lines().back(), (LogLine{plog::error, "who", TextForm(stored)}));
}

TEST(Operation, NamesItselfInWhatItStoresAndLogs) {
  Error stored;
  const Operation operation("who", stored);
  LogCapture log;
  operation.LogStarted(" ");
  EXPECT_FALSE(operation.Store(WrongValue<int>(1, "kept to itself")));
  EXPECT_TRUE(IsError(stored, ErrorCategory::Value, 1, "kept to itself", "int", "who"));
  EXPECT_FALSE(operation.Fail(WrongValue<unsigned long>(2, "told")));
  EXPECT_TRUE(IsError(stored, ErrorCategory::Value, 2, "told", "unsigned long", "who"));
  operation.LogFinished();
  EXPECT_EQ(log.Lines(), (std::vector<LogLine>{{plog::info, "who", "Started who "},
                                               {plog::error, "who", TextForm(stored)},
                                               {plog::info, "who", "Finished who"}}));
}

TEST(TypeNames, AreReadable) {
  EXPECT_EQ(TypeName<int>(), "int");
  EXPECT_EQ(TypeName<long>(), "long");
  EXPECT_EQ(TypeName<unsigned long>(), "unsigned long");
  EXPECT_EQ(TypeName(typeid(std::runtime_error)), "std::runtime_error");
}

TEST(ErrorValue, NothingFailedAtFirst) {
  const Error error;
  EXPECT_FALSE(error);
  EXPECT_STREQ(error.GetMessageText(), "");
  EXPECT_STREQ(error.GetTypeText(), "");
  EXPECT_STREQ(error.GetFunctionText(), "");
  EXPECT_EQ(error.GetCode(), 0);
  EXPECT_EQ(TextForm(error), "no error");
}

TEST(ErrorValue, HoldsItsFiveParts) {
  const Error error(ErrorCategory::Value, -1234567890123, "message", "type", "function");
  EXPECT_TRUE(error);
  EXPECT_EQ(error.GetCategory(), ErrorCategory::Value);
  EXPECT_EQ(error.GetCode(), -1234567890123);
  EXPECT_STREQ(error.GetMessageText(), "message");
  EXPECT_STREQ(error.GetTypeText(), "type");
  EXPECT_STREQ(error.GetFunctionText(), "function");
  EXPECT_EQ(static_cast<int>(ErrorCategory::UnknownException), 1);
  EXPECT_EQ(static_cast<int>(ErrorCategory::StandardException), 2);
  EXPECT_EQ(static_cast<int>(ErrorCategory::SystemMessage), 3);
  EXPECT_EQ(static_cast<int>(ErrorCategory::Value), 5);
}

TEST(ErrorValue, AZeroCodeIsAFailureAllTheSame) {
  EXPECT_TRUE(Error(ErrorCategory::UnknownException, 0, "", "", ""));
}

TEST(ErrorValue, TextFormWritesExactlyItsLength) {
  const Error error(ErrorCategory::Value, 6, "PrivateBiosWMI error", "unsigned long", "Read");
  const std::string expected =
      "category 5, code 6, message 'PrivateBiosWMI error', type 'unsigned long', function 'Read'";
  EXPECT_EQ(Error::ToString(error, nullptr), expected.size());
  std::string buffer(expected.size() + 2, '-');
  EXPECT_EQ(Error::ToString(error, buffer.data()), expected.size());
  EXPECT_EQ(buffer, expected + "--");
}

}  // namespace
}  // namespace norv::test
