// The one seam between the library and the outside world.
#pragma once

#include <bitset>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>

#include "battery/Export.h"

namespace norv::platform {

// A connection to one WMI namespace. Used by one thread at a time; destroying it ends the connection.
class NORV_BATTERY_API WmiConnection {
 public:
  WmiConnection() = default;
  WmiConnection(const WmiConnection&) = delete;
  WmiConnection& operator=(const WmiConnection&) = delete;
  virtual ~WmiConnection();

  // Runs a WQL query. Returns 0, or the code of the failure; after a failure there are no objects.
  virtual long Query(const std::wstring& wql) = 0;

  // Moves to the next object of the last query. False when none is left.
  virtual bool Next() = 0;

  // Reads a property of the current object as UTF-8 text. Returns 0, or the code of the failure with `value` unchanged.
  virtual long ReadText(const std::wstring& property, std::string& value) = 0;

  // Reads a property of the current object as a number, by conversion where it is of another kind. False, with `value`
  // unchanged, when it cannot be read or converted.
  virtual bool ReadNumber(const std::wstring& property, std::uint32_t& value) = 0;
};

// The product version of a program file.
struct ProductVersion {
  std::uint16_t major = 0;
  std::uint16_t minor = 0;
  std::uint16_t build = 0;
  std::uint16_t revision = 0;
};

// Where the answers of SendBiosCommand for one slot come from, and what its source tells besides. Texts are UTF-8, as
// the source gives them and whole, and empty where it gives none.
struct SlotDescription {
  // The bytes of the battery-information block. A field is told where the bytes of its place are: what stands at any
  // other is a 0 that nobody told, or follows from other fields.
  using Told = std::bitset<128>;

  std::string source;                          // a few words for people ("the system's battery driver")
  Told told = Told().set();                    // all of them, as a BIOS tells them
  std::optional<std::uint32_t> stateOfCharge;  // percent, the source's own relative state of charge
  std::string modelName;
  std::string serialNumber;
  std::string manufacturer;
  std::string technology;  // "Li-ion", "LiP"
  // mWh and mW, where the source counts energy. The power is negative while the battery discharges.
  std::optional<std::int64_t> designEnergy;
  std::optional<std::int64_t> fullChargeEnergy;
  std::optional<std::int64_t> remainingEnergy;
  std::optional<std::int64_t> power;
};

inline bool operator==(const SlotDescription& left, const SlotDescription& right) {
  return left.source == right.source && left.told == right.told && left.stateOfCharge == right.stateOfCharge &&
         left.modelName == right.modelName && left.serialNumber == right.serialNumber &&
         left.manufacturer == right.manufacturer && left.technology == right.technology &&
         left.designEnergy == right.designEnergy && left.fullChargeEnergy == right.fullChargeEnergy &&
         left.remainingEnergy == right.remainingEnergy && left.power == right.power;
}

inline bool operator!=(const SlotDescription& left, const SlotDescription& right) {
  return !(left == right);
}

// Everything the outside world does for the library. A platform reports facts and codes; what they mean, how a failure
// is worded and what happens next is decided by the library.
//
// Threads: the operations may be called from several threads at once. Which platform is the current one belongs to the
// whole process: it is changed (ScopedPlatform) only while no other thread uses the library.
//
// Codes are the numbers Windows uses, on every platform. Texts are 8-bit, in the system's own encoding, unless an
// operation says otherwise.
class NORV_BATTERY_API Platform {
 public:
  Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
  virtual ~Platform();

  // The platform in force: the innermost ScopedPlatform's, otherwise the running system's, which lives as long as the
  // process does.
  static Platform& Current();

  // Sends a command to the BIOS. Returns the status of the channel in HRESULT form, 0 when the BIOS answered; then
  // `*returnCode` holds its return code and, where that is 0, `output` the 128 bytes of its answer. Otherwise both keep
  // what they held. The caller owns all three buffers.
  virtual std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                       const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                       std::uint32_t* returnCode) = 0;

  // Connects to a WMI namespace. Returns 0 and hands over the connection, which the caller then owns; or the code of
  // the failure, with `connection` unchanged.
  virtual long ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<WmiConnection>& connection) = 0;

  // Starts the program file `path` without arguments and waits, without a time limit, until it has ended. True once it
  // has; its exit code is not looked at. False when it could not be started: LastSystemCode() says why. A path that is
  // not a full one is refused. Its last separator may be a backslash on every system, which is how the library joins
  // its folder and the program; elsewhere than on Windows a backslash further up is a character of a folder's name.
  virtual bool RunProgram(const char* path) = 0;

  // Reads the product version of the program file `path`, which is a path as above. False, with `version` unchanged,
  // when it has none or cannot be read: LastSystemCode() says why.
  virtual bool ReadProductVersion(const char* path, ProductVersion& version) = 0;

  // Writes the full path of the file that the library was loaded from, zero-terminated and cut to `size` bytes. Returns
  // the number of characters written, 0 (and `buffer` holding an empty text) when it is not known or not the path of
  // that file any more.
  virtual std::uint32_t LibraryPath(char* buffer, std::uint32_t size) = 0;

  // The name, without its folder, of the file that the library was loaded from; empty when it is not known.
  virtual std::wstring ModuleName() = 0;

  // The machine-wide folder for program data (the value of "ProgramData"); nothing when there is none.
  virtual std::optional<std::string> ProgramDataFolder() = 0;

  // Writes the system's message text for `code`, zero-terminated, into `size` bytes at `buffer`. Returns its length
  // without the terminator. Returns 0 on failure, with `buffer` unspecified: LastSystemCode() is then 317 when the code
  // has no text and 122 when the text does not fit.
  virtual std::uint32_t FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) = 0;

  // Why the last system operation of this thread failed. Meaningful directly after a failure only, be it one of an
  // operation above or of a file that could not be read.
  virtual std::uint32_t LastSystemCode() = 0;

  // Reports a null pointer where a function of the C runtime would have refused it: errno becomes EINVAL and, on
  // Windows, the runtime's invalid-parameter handler is called. Elsewhere errno is all there is, which is the default.
  virtual void ReportInvalidParameter();

  // Seconds since 1 January 1970 00:00:00 UTC.
  virtual std::time_t Now() = 0;

  // The time value of a calendar time in the machine's local time, its daylight-saving flag taken as given. -1 when the
  // platform cannot represent it.
  virtual std::time_t LocalTimeValue(const std::tm& calendarTime) = 0;

  // What hosts asked for before there was DescribeSlot(): the source that slot 0 has, and the state of charge of a
  // slot.
  virtual std::string BatterySource();
  virtual std::optional<std::uint32_t> DriverStateOfCharge(std::uint32_t slot);

  // What is known of the source of a slot. The default knows nothing but that it tells all. Of a slot without a battery
  // a source that tells only some fields tells none.
  virtual SlotDescription DescribeSlot(std::uint32_t slot);
};

// Makes a platform the current one for as long as the object lives, then puts the one before it back. The platform
// stays the caller's and must outlive the scope. Scopes nest and end in reverse order.
class NORV_BATTERY_API ScopedPlatform {
 public:
  explicit ScopedPlatform(Platform& platform);
  ScopedPlatform(const ScopedPlatform&) = delete;
  ScopedPlatform& operator=(const ScopedPlatform&) = delete;
  ~ScopedPlatform();

 private:
  Platform* previous_;
};

// Forwards everything to another platform, which must outlive it. A recorder or a fault injector derives from it and
// overrides only what it changes.
class NORV_BATTERY_API PlatformWrapper : public Platform {
 public:
  explicit PlatformWrapper(Platform& inner);
  ~PlatformWrapper() override;

  std::int32_t SendBiosCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                               const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                               std::uint32_t* returnCode) override;
  long ConnectWmi(const std::wstring& namespacePath, std::unique_ptr<WmiConnection>& connection) override;
  bool RunProgram(const char* path) override;
  bool ReadProductVersion(const char* path, ProductVersion& version) override;
  std::uint32_t LibraryPath(char* buffer, std::uint32_t size) override;
  std::wstring ModuleName() override;
  std::optional<std::string> ProgramDataFolder() override;
  std::uint32_t FormatSystemMessage(std::uint32_t code, char* buffer, std::uint32_t size) override;
  std::uint32_t LastSystemCode() override;
  void ReportInvalidParameter() override;
  std::time_t Now() override;
  std::time_t LocalTimeValue(const std::tm& calendarTime) override;
  std::string BatterySource() override;
  std::optional<std::uint32_t> DriverStateOfCharge(std::uint32_t slot) override;
  SlotDescription DescribeSlot(std::uint32_t slot) override;

 protected:
  Platform& Inner() { return inner_; }

 private:
  Platform& inner_;
};

}  // namespace norv::platform
