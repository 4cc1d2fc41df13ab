#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "../OrdinaryFile.h"
#include "../SystemCodes.h"
#include "../SystemMessages.h"
#include "../SystemPlatform.h"
#include "../system-battery/SystemBattery.h"
#include "ErrnoCodes.h"
#include "OwnModule.h"
#include "PowerSupply.h"
#include "RunProgram.h"
#include "SupplyFolder.h"

namespace norv::platform {

namespace {

// Why the last operation of this thread failed. errno is 0 beside it: a later failure of the C library shows there.
thread_local std::uint32_t lastCode = 0;

void SetLastCode(std::uint32_t code) {
  lastCode = code;
  errno = 0;
}

// The library joins folder and program with a backslash; any other one is a character of a name. Nothing for a path
// that does not begin at the root: the working folder is not for the library to run programs from, and without a folder
// is what the library makes of its own path when that is not known.
std::optional<std::string> NativeProgram(const char* path) {
  std::string native = path != nullptr ? path : "";
  if (!native.starts_with('/')) {
    SetLastCode(kBadPathName);
    return std::nullopt;
  }
  native[native.find_last_of("\\/")] = '/';
  return native;
}

// False, with the reason as the last code, for everything but an ordinary file.
bool IsOrdinaryFile(const std::string& path) {
  struct stat status {};
  const int failure = stat(path.c_str(), &status) != 0 ? errno : S_ISREG(status.st_mode) ? 0 : EACCES;
  if (failure != 0) {
    SetLastCode(posix::SystemCode(failure));
  }
  return failure == 0;
}

// "1.2.3.4" in the first line, and no more than blanks behind it.
std::optional<ProductVersion> ParseVersion(std::string_view text) {
  std::array<std::uint16_t, 4> numbers{};
  const char* position = text.data();
  const char* const end = position + std::min(text.find('\n'), text.size());
  for (std::size_t index = 0; index < numbers.size(); ++index) {
    if (index > 0 && (position == end || *position++ != '.')) {
      return std::nullopt;
    }
    const auto [rest, failure] = std::from_chars(position, end, numbers[index]);
    if (failure != std::errc()) {
      return std::nullopt;
    }
    position = rest;
  }
  const bool whole = std::all_of(position, end, [](char blank) { return blank == ' ' || blank == '\r'; });
  return whole ? std::optional(ProductVersion{numbers[0], numbers[1], numbers[2], numbers[3]}) : std::nullopt;
}

std::optional<SystemBattery> ReadBattery(std::uint32_t slot) {
  return posix::ReadBattery(posix::SupplyFolder(posix::kPowerSupplyFolder), slot);
}

// Linux: no WMI and no BIOS that knows the commands, but batteries that the kernel knows, and Windows' numbers for
// everything that fails.
class PosixPlatform : public Platform {
 public:
  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override {
    return AnswerBiosCommand(first, second, third, input, inputSize, output, returnCode, ReadBattery);
  }

  long ConnectWmi(const std::wstring& /*namespacePath*/, std::unique_ptr<WmiConnection>& /*connection*/) override {
    return kClassNotRegistered;
  }

  bool RunProgram(const char* path) override {
    const std::optional<std::string> program = NativeProgram(path);
    if (!program.has_value()) {
      return false;
    }
    const int failure = posix::RunProgram(program->c_str());
    if (failure != 0) {
      SetLastCode(posix::SystemCode(failure));
    }
    return failure == 0;
  }

  // A program file has no version resource here; a text file beside it, with ".version" behind the program's name, does
  // its work.
  bool ReadProductVersion(const char* path, ProductVersion& version) override {
    const std::optional<std::string> program = NativeProgram(path);
    if (!program.has_value() || !IsOrdinaryFile(*program)) {
      return false;
    }
    constexpr std::size_t kLongestVersionFile = 4096;
    const auto parsed =
        ParseVersion(ReadOrdinaryFile((*program + ".version").c_str(), kLongestVersionFile).value_or(""));
    if (!parsed) {
      SetLastCode(kResourceDataNotFound);
      return false;
    }
    version = *parsed;
    return true;
  }

  // A backslash in the file's own name would be taken for the end of the folder: then the path is not known.
  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override {
    if (size == 0) {
      return 0;
    }
    const bool canBeTold = posix::OwnName().find('\\') == std::string::npos;
    const std::string path = canBeTold ? posix::OwnPath().value_or("") : "";
    const std::size_t length = path.copy(buffer, size - 1);
    buffer[length] = '\0';
    return static_cast<std::uint32_t>(length);
  }

  std::wstring ModuleName() override { return std::filesystem::path(posix::OwnName()).wstring(); }

  std::optional<std::string> ProgramDataFolder() override {
    const char* folder = std::getenv("ProgramData");
    return folder != nullptr && *folder != '\0' ? std::optional<std::string>(folder) : std::nullopt;
  }

  std::uint32_t FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) override {
    const auto text = SystemMessage(code);
    if (!text) {
      SetLastCode(kMessageNotFound);
      return 0;
    }
    if (text->size() >= size) {
      SetLastCode(kInsufficientBuffer);
      return 0;
    }
    buffer[text->copy(buffer, text->size())] = '\0';
    return static_cast<std::uint32_t>(text->size());
  }

  std::uint32_t LastSystemCode() override { return errno != 0 ? posix::SystemCode(errno) : lastCode; }

  std::time_t Now() override { return std::time(nullptr); }

  std::time_t LocalTimeValue(const std::tm& calendarTime) override {
    std::tm normalised = calendarTime;
    return std::mktime(&normalised);
  }

  SlotDescription DescribeSlot(std::uint32_t slot) override { return DescribeBattery(ReadBattery(slot)); }
};

}  // namespace

Platform& SystemPlatform() {
  return OnlyOne<PosixPlatform>();
}

}  // namespace norv::platform
