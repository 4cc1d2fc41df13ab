// A temporary program-data folder.
#pragma once

#include <filesystem>
#include <mutex>
#include <string>

namespace norv::simulator {

// Where the battery test program leaves its report, below the program-data folder.
inline constexpr const char* kReportFile = "/Quellbrook/Tavenhall/Resources/Temp/Battery.xml";

// Made on first use under the system's temporary folder, readable by its owner only, and removed with everything in it
// when the object is destroyed.
class PrivateFolder {
 public:
  PrivateFolder() = default;
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  ~PrivateFolder();

  // Empty when it cannot be made.
  std::string Path();

  // Leaves `report` where the battery test program leaves its report. Where that cannot be written there is none, as
  // with the real program.
  void WriteReport(const std::string& report);

  // Takes away the report that lies there, if there is one.
  void RemoveReport();

 private:
  std::mutex mutex_;
  std::filesystem::path path_;
};

}  // namespace norv::simulator
