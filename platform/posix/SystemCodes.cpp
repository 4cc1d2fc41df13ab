#include "SystemCodes.h"

#include <algorithm>
#include <array>
#include <cerrno>

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

struct Message {
  std::uint32_t code;
  std::string_view text;
};

constexpr std::array kMessages{
    Message{0, "The operation completed successfully.\r\n"},
    Message{1, "Incorrect function.\r\n"},
    Message{2, "The system cannot find the file specified.\r\n"},
    Message{3, "The system cannot find the path specified.\r\n"},
    Message{4, "The system cannot open the file.\r\n"},
    Message{5, "Access is denied.\r\n"},
    Message{6, "The handle is invalid.\r\n"},
    Message{8, "Not enough memory resources are available to process this command.\r\n"},
    Message{11, "An attempt was made to load a program with an incorrect format.\r\n"},
    Message{12, "The access code is invalid.\r\n"},
    Message{13, "The data is invalid.\r\n"},
    Message{14, "Not enough memory resources are available to complete this operation.\r\n"},
    Message{15, "The system cannot find the drive specified.\r\n"},
    Message{18, "There are no more files.\r\n"},
    Message{19, "The media is write protected.\r\n"},
    Message{20, "The system cannot find the device specified.\r\n"},
    Message{21, "The device is not ready.\r\n"},
    Message{22, "The device does not recognize the command.\r\n"},
    Message{23, "Data error (cyclic redundancy check).\r\n"},
    Message{24, "The program issued a command but the command length is incorrect.\r\n"},
    Message{29, "The system cannot write to the specified device.\r\n"},
    Message{30, "The system cannot read from the specified device.\r\n"},
    Message{31, "A device attached to the system is not functioning.\r\n"},
    Message{32, "The process cannot access the file because it is being used by another process.\r\n"},
    Message{33, "The process cannot access the file because another process has locked a portion of the file.\r\n"},
    Message{38, "Reached the end of the file.\r\n"},
    Message{50, "The request is not supported.\r\n"},
    Message{53, "The network path was not found.\r\n"},
    Message{55, "The specified network resource or device is no longer available.\r\n"},
    Message{80, "The file exists.\r\n"},
    Message{82, "The directory or file cannot be created.\r\n"},
    Message{87, "The parameter is incorrect.\r\n"},
    Message{109, "The pipe has been ended.\r\n"},
    Message{110, "The system cannot open the device or file specified.\r\n"},
    Message{111, "The file name is too long.\r\n"},
    Message{112, "There is not enough space on the disk.\r\n"},
    Message{120, "This function is not supported on this system.\r\n"},
    Message{121, "The semaphore timeout period has expired.\r\n"},
    Message{122, "The data area passed to a system call is too small.\r\n"},
    Message{123, "The filename, directory name, or volume label syntax is incorrect.\r\n"},
    Message{126, "The specified module could not be found.\r\n"},
    Message{127, "The specified procedure could not be found.\r\n"},
    Message{161, "The specified path is invalid.\r\n"},
    Message{170, "The requested resource is in use.\r\n"},
    Message{183, "Cannot create a file when that file already exists.\r\n"},
    Message{193, "%1 is not a valid Win32 application.\r\n"},
    Message{203, "The system could not find the environment option that was entered.\r\n"},
    Message{206, "The filename or extension is too long.\r\n"},
    Message{216,
            "This version of %1 is not compatible with the version of Windows you're running. Check your computer's "
            "system information and then contact the software publisher.\r\n"},
    Message{223, "The file size exceeds the limit allowed and cannot be saved.\r\n"},
    Message{230, "The pipe state is invalid.\r\n"},
    Message{234, "More data is available.\r\n"},
    Message{258, "The wait operation timed out.\r\n"},
    Message{259, "No more data is available.\r\n"},
    Message{267, "The directory name is invalid.\r\n"},
    Message{487, "Attempt to access invalid address.\r\n"},
    Message{995, "The I/O operation has been aborted because of either a thread exit or an application request.\r\n"},
    Message{997, "Overlapped I/O operation is in progress.\r\n"},
    Message{998, "Invalid access to memory location.\r\n"},
    Message{1004, "Invalid flags.\r\n"},
    Message{1060, "The specified service does not exist as an installed service.\r\n"},
    Message{1117, "The request could not be performed because of an I/O device error.\r\n"},
    Message{1168, "Element not found.\r\n"},
    Message{1223, "The operation was canceled by the user.\r\n"},
    Message{1314, "A required privilege is not held by the client.\r\n"},
    Message{1359, "An internal error occurred.\r\n"},
    Message{1450, "Insufficient system resources exist to complete the requested service.\r\n"},
    Message{1460, "This operation returned because the timeout period expired.\r\n"},
    Message{1722, "The RPC server is unavailable.\r\n"},
    Message{1812, "The specified image file did not contain a resource section.\r\n"},
    Message{1813, "The specified resource type cannot be found in the image file.\r\n"},
    Message{1921, "The name of the file cannot be resolved by the system.\r\n"},
    Message{0x80004001U, "Not implemented\r\n"},
    Message{0x80004002U, "No such interface supported\r\n"},
    Message{0x80004003U, "Invalid pointer\r\n"},
    Message{0x80004004U, "Operation aborted\r\n"},
    Message{0x80004005U, "Unspecified error\r\n"},
    Message{0x8000FFFFU, "Catastrophic failure\r\n"},
    Message{0x80040154U, "Class not registered\r\n"},
    Message{0x800401F0U, "CoInitialize has not been called.\r\n"},
    Message{0x80070005U, "Access is denied.\r\n"},
    Message{0x80070006U, "The handle is invalid.\r\n"},
    Message{0x8007000EU, "Not enough memory resources are available to complete this operation.\r\n"},
    Message{0x80070057U, "The parameter is incorrect.\r\n"},
    Message{0x800706BAU, "The RPC server is unavailable.\r\n"},
};

}  // namespace

std::uint32_t SystemCode(int errorNumber) {
  const auto* known = std::find_if(kTranslations.begin(), kTranslations.end(), [errorNumber](const Translation& entry) {
    return entry.errorNumber == errorNumber;
  });
  return known != kTranslations.end() ? known->code : kGeneralFailure;
}

std::optional<std::string_view> SystemMessage(std::uint32_t code) {
  const auto* known =
      std::find_if(kMessages.begin(), kMessages.end(), [code](const Message& entry) { return entry.code == code; });
  return known != kMessages.end() ? std::optional(known->text) : std::nullopt;
}

}  // namespace norv::platform::posix
