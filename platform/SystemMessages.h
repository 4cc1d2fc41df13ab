// The fixed texts that Windows has, in English, for system codes. They are the same on every machine.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace norv::platform {

struct SystemMessageText {
  std::uint32_t code;
  std::string_view text;
};

inline constexpr std::array kSystemMessages{
    SystemMessageText{0, "The operation completed successfully.\r\n"},
    SystemMessageText{1, "Incorrect function.\r\n"},
    SystemMessageText{2, "The system cannot find the file specified.\r\n"},
    SystemMessageText{3, "The system cannot find the path specified.\r\n"},
    SystemMessageText{4, "The system cannot open the file.\r\n"},
    SystemMessageText{5, "Access is denied.\r\n"},
    SystemMessageText{6, "The handle is invalid.\r\n"},
    SystemMessageText{8, "Not enough memory resources are available to process this command.\r\n"},
    SystemMessageText{11, "An attempt was made to load a program with an incorrect format.\r\n"},
    SystemMessageText{12, "The access code is invalid.\r\n"},
    SystemMessageText{13, "The data is invalid.\r\n"},
    SystemMessageText{14, "Not enough memory resources are available to complete this operation.\r\n"},
    SystemMessageText{15, "The system cannot find the drive specified.\r\n"},
    SystemMessageText{18, "There are no more files.\r\n"},
    SystemMessageText{19, "The media is write protected.\r\n"},
    SystemMessageText{20, "The system cannot find the device specified.\r\n"},
    SystemMessageText{21, "The device is not ready.\r\n"},
    SystemMessageText{22, "The device does not recognize the command.\r\n"},
    SystemMessageText{23, "Data error (cyclic redundancy check).\r\n"},
    SystemMessageText{24, "The program issued a command but the command length is incorrect.\r\n"},
    SystemMessageText{29, "The system cannot write to the specified device.\r\n"},
    SystemMessageText{30, "The system cannot read from the specified device.\r\n"},
    SystemMessageText{31, "A device attached to the system is not functioning.\r\n"},
    SystemMessageText{32, "The process cannot access the file because it is being used by another process.\r\n"},
    SystemMessageText{
        33, "The process cannot access the file because another process has locked a portion of the file.\r\n"},
    SystemMessageText{38, "Reached the end of the file.\r\n"},
    SystemMessageText{50, "The request is not supported.\r\n"},
    SystemMessageText{53, "The network path was not found.\r\n"},
    SystemMessageText{55, "The specified network resource or device is no longer available.\r\n"},
    SystemMessageText{80, "The file exists.\r\n"},
    SystemMessageText{82, "The directory or file cannot be created.\r\n"},
    SystemMessageText{87, "The parameter is incorrect.\r\n"},
    SystemMessageText{109, "The pipe has been ended.\r\n"},
    SystemMessageText{110, "The system cannot open the device or file specified.\r\n"},
    SystemMessageText{111, "The file name is too long.\r\n"},
    SystemMessageText{112, "There is not enough space on the disk.\r\n"},
    SystemMessageText{120, "This function is not supported on this system.\r\n"},
    SystemMessageText{121, "The semaphore timeout period has expired.\r\n"},
    SystemMessageText{122, "The data area passed to a system call is too small.\r\n"},
    SystemMessageText{123, "The filename, directory name, or volume label syntax is incorrect.\r\n"},
    SystemMessageText{126, "The specified module could not be found.\r\n"},
    SystemMessageText{127, "The specified procedure could not be found.\r\n"},
    SystemMessageText{161, "The specified path is invalid.\r\n"},
    SystemMessageText{170, "The requested resource is in use.\r\n"},
    SystemMessageText{183, "Cannot create a file when that file already exists.\r\n"},
    SystemMessageText{193, "%1 is not a valid Win32 application.\r\n"},
    SystemMessageText{203, "The system could not find the environment option that was entered.\r\n"},
    SystemMessageText{206, "The filename or extension is too long.\r\n"},
    SystemMessageText{
        216,
        "This version of %1 is not compatible with the version of Windows you're running. Check your computer's "
        "system information and then contact the software publisher.\r\n"},
    SystemMessageText{223, "The file size exceeds the limit allowed and cannot be saved.\r\n"},
    SystemMessageText{230, "The pipe state is invalid.\r\n"},
    SystemMessageText{234, "More data is available.\r\n"},
    SystemMessageText{258, "The wait operation timed out.\r\n"},
    SystemMessageText{259, "No more data is available.\r\n"},
    SystemMessageText{267, "The directory name is invalid.\r\n"},
    SystemMessageText{487, "Attempt to access invalid address.\r\n"},
    SystemMessageText{
        995, "The I/O operation has been aborted because of either a thread exit or an application request.\r\n"},
    SystemMessageText{997, "Overlapped I/O operation is in progress.\r\n"},
    SystemMessageText{998, "Invalid access to memory location.\r\n"},
    SystemMessageText{1004, "Invalid flags.\r\n"},
    SystemMessageText{1060, "The specified service does not exist as an installed service.\r\n"},
    SystemMessageText{1117, "The request could not be performed because of an I/O device error.\r\n"},
    SystemMessageText{1168, "Element not found.\r\n"},
    SystemMessageText{1223, "The operation was canceled by the user.\r\n"},
    SystemMessageText{1314, "A required privilege is not held by the client.\r\n"},
    SystemMessageText{1359, "An internal error occurred.\r\n"},
    SystemMessageText{1450, "Insufficient system resources exist to complete the requested service.\r\n"},
    SystemMessageText{1460, "This operation returned because the timeout period expired.\r\n"},
    SystemMessageText{1722, "The RPC server is unavailable.\r\n"},
    SystemMessageText{1812, "The specified image file did not contain a resource section.\r\n"},
    SystemMessageText{1813, "The specified resource type cannot be found in the image file.\r\n"},
    SystemMessageText{1921, "The name of the file cannot be resolved by the system.\r\n"},
    SystemMessageText{0x80004001U, "Not implemented\r\n"},
    SystemMessageText{0x80004002U, "No such interface supported\r\n"},
    SystemMessageText{0x80004003U, "Invalid pointer\r\n"},
    SystemMessageText{0x80004004U, "Operation aborted\r\n"},
    SystemMessageText{0x80004005U, "Unspecified error\r\n"},
    SystemMessageText{0x8000FFFFU, "Catastrophic failure\r\n"},
    SystemMessageText{0x80040154U, "Class not registered\r\n"},
    SystemMessageText{0x800401F0U, "CoInitialize has not been called.\r\n"},
    SystemMessageText{0x80070005U, "Access is denied.\r\n"},
    SystemMessageText{0x80070006U, "The handle is invalid.\r\n"},
    SystemMessageText{0x8007000EU, "Not enough memory resources are available to complete this operation.\r\n"},
    SystemMessageText{0x80070057U, "The parameter is incorrect.\r\n"},
    SystemMessageText{0x800706BAU, "The RPC server is unavailable.\r\n"},
};

// The message text of a system code, with its closing line break; nothing when the code is not known.
inline std::optional<std::string_view> SystemMessage(std::uint32_t code) {
  const auto* known = std::find_if(kSystemMessages.begin(), kSystemMessages.end(),
                                   [code](const SystemMessageText& entry) { return entry.code == code; });
  return known != kSystemMessages.end() ? std::optional(known->text) : std::nullopt;
}

}  // namespace norv::platform
