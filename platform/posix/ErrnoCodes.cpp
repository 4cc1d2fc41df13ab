#include "ErrnoCodes.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "../SystemCodes.h"

namespace norv::platform::posix {

namespace {

struct Translation {
  int errorNumber;
  std::uint32_t code;
};

constexpr std::array kTranslations{
    Translation{ENOENT, kFileNotFound},  // ERROR_FILE_NOT_FOUND
    Translation{ENOTDIR, 3},             // ERROR_PATH_NOT_FOUND
    Translation{EMFILE, 4},              // ERROR_TOO_MANY_OPEN_FILES
    Translation{ENFILE, 4},              // ERROR_TOO_MANY_OPEN_FILES
    Translation{EACCES, 5},              // ERROR_ACCESS_DENIED
    Translation{EPERM, 5},               // ERROR_ACCESS_DENIED
    Translation{EISDIR, 5},              // ERROR_ACCESS_DENIED
    Translation{EBADF, 6},               // ERROR_INVALID_HANDLE
    Translation{ENOMEM, 8},              // ERROR_NOT_ENOUGH_MEMORY
    Translation{EAGAIN, 8},              // ERROR_NOT_ENOUGH_MEMORY: no room for another process
    Translation{EROFS, 19},              // ERROR_WRITE_PROTECT
    Translation{ENODEV, 20},             // ERROR_BAD_UNIT
    Translation{ETXTBSY, 32},            // ERROR_SHARING_VIOLATION
    Translation{EINVAL, 87},             // ERROR_INVALID_PARAMETER
    Translation{ENOSPC, 112},            // ERROR_DISK_FULL
    Translation{EBUSY, 170},             // ERROR_BUSY
    Translation{ENOEXEC, 193},           // ERROR_BAD_EXE_FORMAT
    Translation{ENAMETOOLONG, 206},      // ERROR_FILENAME_EXCED_RANGE
    Translation{EFBIG, 223},             // ERROR_FILE_TOO_LARGE
    Translation{EIO, 1117},              // ERROR_IO_DEVICE
    Translation{ELOOP, 1921},            // ERROR_CANT_RESOLVE_FILENAME
};

constexpr std::uint32_t kGeneralFailure = 31;  // ERROR_GEN_FAILURE

}  // namespace

std::uint32_t SystemCode(int errorNumber) {
  const auto* known = std::find_if(kTranslations.begin(), kTranslations.end(), [errorNumber](const Translation& entry) {
    return entry.errorNumber == errorNumber;
  });
  return known != kTranslations.end() ? known->code : kGeneralFailure;
}

}  // namespace norv::platform::posix
