// How operations are named and their arguments written, the same for the recorder and for faults.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace norv::simulator {

inline constexpr const char* kSendBiosCommand = "SendBiosCommand";
inline constexpr const char* kConnectWmi = "ConnectWmi";
inline constexpr const char* kQuery = "Query";
inline constexpr const char* kNext = "Next";
inline constexpr const char* kReadText = "ReadText";
inline constexpr const char* kReadNumber = "ReadNumber";
inline constexpr const char* kRunProgram = "RunProgram";
inline constexpr const char* kReadProductVersion = "ReadProductVersion";
inline constexpr const char* kLibraryPath = "LibraryPath";
inline constexpr const char* kModuleName = "ModuleName";
inline constexpr const char* kProgramDataFolder = "ProgramDataFolder";
inline constexpr const char* kFormatSystemMessage = "FormatSystemMessage";
inline constexpr const char* kLastSystemCode = "LastSystemCode";
inline constexpr const char* kReportInvalidParameter = "ReportInvalidParameter";
inline constexpr const char* kNow = "Now";
inline constexpr const char* kLocalTimeValue = "LocalTimeValue";
inline constexpr const char* kBatterySource = "BatterySource";
inline constexpr const char* kDriverStateOfCharge = "DriverStateOfCharge";

std::string BiosCommandText(std::uint32_t first, std::uint32_t second, std::uint32_t third, const unsigned char* input,
                            std::uint32_t inputSize);
std::string PathText(const char* path);
std::string CalendarTimeText(const std::tm& calendarTime);

}  // namespace norv::simulator
