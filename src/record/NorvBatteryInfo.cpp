#include "battery/NorvBatteryInfo.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <exception>
#include <iterator>
#include <optional>
#include <string_view>

#include "battery/NorvBatteryTestInfo.h"
#include "diagnostics/Operation.h"
#include "firmware/BatteryInformationBlock.h"
#include "norv/platform/Platform.h"
#include "record/Characters.h"
#include "record/CtNumber.h"
#include "record/DateTime.h"
#include "record/FixedText.h"
#include "record/ManufacturerText.h"
#include "record/OperatingSystemRates.h"
#include "record/Percentage.h"
#include "record/RecordMaker.h"
#include "record/Status.h"
#include "record/TrailingDate.h"
#include "record/Truncation.h"
#include "settings/BiosBatterySettings.h"
#include "test/ResultCodes.h"

namespace norv::shared::battery {

namespace {

constexpr const char* kCtNumberPattern = "^6[a-zA-Z0-9]{13}$";
constexpr const char* kInvalidSerialNumber = "Invalid battery serial number";
constexpr int kNoAge = -1;
constexpr double kSecondsPerDay = 86400.0;

// The identity has one code for all its defects, and none is logged.
void StoreDefect(const diagnostics::Operation& operation, const char* message) {
  constexpr int kCode = -1;
  operation.Store(diagnostics::WrongValue<int>(kCode, message));
}

template <std::size_t Capacity>
record::FixedText<Capacity> ReadText(const unsigned char* block, firmware::Field field) {
  return record::FixedText<Capacity>(firmware::Text(block, field));
}

// A device name that is not wholly letters and digits is none.
record::FixedText<firmware::kDeviceName.width> ReadDeviceName(const unsigned char* block) {
  const auto name = ReadText<firmware::kDeviceName.width>(block, firmware::kDeviceName);
  return record::AreLettersOrDigits(name.View()) ? name : record::FixedText<firmware::kDeviceName.width>();
}

// Midnight, local time, of a date; without one, the calendar time whose fields are all 0. A time before 1970 has no
// time value of its own: the runtime gives -1.
std::time_t MidnightOf(const std::optional<record::TrailingDate>& date) {
  std::tm calendar{};
  if (date) {
    calendar.tm_year = date->year - 1900;
    calendar.tm_mon = date->month - 1;
    calendar.tm_mday = date->day;
  }
  return std::max<std::time_t>(platform::Platform::Current().LocalTimeValue(calendar), -1);
}

// A field of the CT number in the buffer of its operation, which belongs to the whole process.
template <std::size_t Size>
const char* CopyCtField(std::string_view ctNumber, record::CtField field, char (&buffer)[Size]) {
  const auto characters = record::FindCtField(ctNumber, field);
  if (!characters) {
    return record::kNoCtField;
  }
  std::fill_n(buffer, Size, '\0');
  characters->copy(buffer, Size - 1);
  return buffer;
}

}  // namespace

struct NorvBatteryInfo::Holdings {
  record::FixedText<firmware::kSerialNumber.width> serialNumber;
  record::FixedText<firmware::kManufacturer.width> manufacturer;
  record::FixedText<firmware::kCtNumber.width> ctNumber;
  record::FixedText<firmware::kDeviceName.width> deviceName;
  record::DateTimeText manufacturingDate;
  record::DateTimeText warrantyDate;
  // Everything ever attached, the newest last.
  std::vector<std::unique_ptr<NorvBatteryCellSwellProtectionInfo>> cellSwellProtections;
  std::vector<std::unique_ptr<BiosBatterySettings>> settings;
};

// Leaves block and numbers unset.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
NorvBatteryInfo::NorvBatteryInfo()
    : cellSwellProtection_(nullptr),
      testInfo_(nullptr),
      chargeRate_(0),
      dischargeRate_(0),
      ctNumberPattern_(kCtNumberPattern),
      settings_(nullptr) {
}

NorvBatteryInfo::NorvBatteryInfo(const unsigned char* const block)
    : NorvBatteryInfo(block, record::ReadOperatingSystemRates()) {
}

template <typename Rates>
NorvBatteryInfo::NorvBatteryInfo(const unsigned char* const block, const Rates& rates)
    : designVoltage_(firmware::Word(block, firmware::kDesignVoltage)),
      designEnergyCapacity_(firmware::Word(block, firmware::kDesignCapacity)),
      fullEnergyCapacity_(firmware::Word(block, firmware::kFullChargeCapacity)),
      remainingCapacity_(firmware::Word(block, firmware::kRemainingCapacity)),
      maxErrorPercentage_(firmware::Word(block, firmware::kMaxError)),
      cycleCount_(firmware::Word(block, firmware::kCycleCount)),
      temperature_(firmware::Word(block, firmware::kTemperature)),
      voltage_(firmware::Word(block, firmware::kVoltage)),
      electricCurrent_(firmware::Word(block, firmware::kCurrent)),
      statusWord_(firmware::Word(block, firmware::kBatteryStatus)),
      cellSwellProtection_(nullptr),
      testInfo_(nullptr),
      chargeRate_(rates.charge),
      dischargeRate_(rates.discharge),
      ctNumberPattern_(kCtNumberPattern),
      settings_(nullptr),
      holdings_(std::make_shared<Holdings>()) {
  static_assert(sizeof block_ == firmware::kBlockSize);
  std::memcpy(block_, block, sizeof block_);
  std::transform(std::begin(firmware::kCellVoltages), std::end(firmware::kCellVoltages), std::begin(cellVoltages_),
                 [block](firmware::Field cell) { return firmware::Word(block, cell); });

  holdings_->serialNumber = ReadText<firmware::kSerialNumber.width>(block, firmware::kSerialNumber);
  holdings_->manufacturer = ReadText<firmware::kManufacturer.width>(block, firmware::kManufacturer);
  holdings_->ctNumber = ReadText<firmware::kCtNumber.width>(block, firmware::kCtNumber);
  holdings_->deviceName = ReadDeviceName(block);

  SetManufacturingDate(static_cast<unsigned short>(firmware::Word(block, firmware::kManufactureDate)));
  SetWarrantyDate();
}

std::unique_ptr<NorvBatteryInfo> record::RecordMaker::Make(const unsigned char* block, const Rates& rates) {
  return std::unique_ptr<NorvBatteryInfo>(new NorvBatteryInfo(block, rates));
}

NorvBatteryInfo::NorvBatteryInfo(const NorvBatteryInfo& other) = default;

NorvBatteryInfo& NorvBatteryInfo::operator=(const NorvBatteryInfo& other) = default;

NorvBatteryInfo::~NorvBatteryInfo() = default;

bool NorvBatteryInfo::IsValid() {
  const char* defect = nullptr;
  if (holdings_->manufacturer.View().empty()) {
    defect = "Invalid battery manufacturer";
  } else if (holdings_->serialNumber.View().empty()) {
    defect = kInvalidSerialNumber;
  } else if (holdings_->deviceName.View().empty()) {
    defect = "Invalid battery device name";
  } else if (!record::IsCtNumber(holdings_->ctNumber.View())) {
    defect = "Invalid battery CT number";
  }
  if (defect != nullptr) {
    StoreDefect(diagnostics::Operation("", error_), defect);
  }
  return !error_;
}

const char* NorvBatteryInfo::GetManufacturer() const {
  return holdings_->manufacturer.Terminated();
}

const char* NorvBatteryInfo::GetCtNumber() const {
  return holdings_->ctNumber.Terminated();
}

const char* NorvBatteryInfo::GetDeviceName() const {
  return holdings_->deviceName.Terminated();
}

const char* NorvBatteryInfo::GetSerialNumber() const {
  return holdings_->serialNumber.Terminated();
}

int NorvBatteryInfo::GetDesignVoltage() const {
  return designVoltage_;
}

int NorvBatteryInfo::GetDesignEnergyCapacity() const {
  return designEnergyCapacity_;
}

int NorvBatteryInfo::GetFullEnergyCapacity() const {
  return fullEnergyCapacity_;
}

float NorvBatteryInfo::GetFullEnergyCapacityPercentage() const {
  return record::TruncatedPercentage(GetFullEnergyCapacity(), GetDesignEnergyCapacity());
}

int NorvBatteryInfo::GetRemainingCapacity() const {
  return remainingCapacity_;
}

float NorvBatteryInfo::GetRemainingEnergyCapacityPercentage() const {
  return record::TruncatedPercentage(GetRemainingCapacity(), GetFullEnergyCapacity());
}

int NorvBatteryInfo::GetMaxErrorPercentage() const {
  return maxErrorPercentage_;
}

int NorvBatteryInfo::GetCycleCount() const {
  return cycleCount_;
}

int NorvBatteryInfo::GetTemperature() const {
  return temperature_;
}

int NorvBatteryInfo::GetVoltage() const {
  return voltage_;
}

int NorvBatteryInfo::GetElectricCurrent() const {
  return electricCurrent_;
}

int NorvBatteryInfo::GetStatusWord() const {
  return statusWord_;
}

void NorvBatteryInfo::GetCellVoltages(int* const voltages) {
  std::copy(std::begin(cellVoltages_), std::end(cellVoltages_), voltages);
}

const char* NorvBatteryInfo::GetManufacturingDate() {
  return holdings_->manufacturingDate.Terminated();
}

const char* NorvBatteryInfo::GetWarrantyDate() {
  return holdings_->warrantyDate.Terminated();
}

void NorvBatteryInfo::SetManufacturingDate(unsigned short packed) {
  holdings_->manufacturingDate = record::ComposeDateTime(record::UnpackDate(packed));
}

void NorvBatteryInfo::SetWarrantyDate() {
  // A derived class sees which of the two is asked for first.
  const std::string_view warrantyType = GetWarrantyType();
  const record::Date made = record::ReadDate(GetManufacturingDate());
  holdings_->warrantyDate = record::ComposeDateTime(record::AddWarranty(made, warrantyType));
}

// The parts of the manufacturer text and of the CT number are those of what the accessors give: a derived class that
// overrides one of these two changes its parts with it.
const char* NorvBatteryInfo::GetPackSupplier() const {
  return record::PackSupplier(GetManufacturer());
}

const char* NorvBatteryInfo::GetCellSupplier() const {
  return record::CellSupplier(GetManufacturer());
}

std::string NorvBatteryInfo::GetCalibrationType() const {
  return std::string(record::CalibrationType(GetManufacturer()));
}

int NorvBatteryInfo::GetOverCurrentProtection() const {
  const std::string_view manufacturer = GetManufacturer();
  return record::OverCurrentProtection(manufacturer, GetDesignEnergyCapacity());
}

const char* NorvBatteryInfo::GetWarrantyType() const {
  return record::WarrantyType(GetManufacturer());
}

const char* NorvBatteryInfo::GetDesignCycleCount() const {
  return record::DesignCycleCount(GetManufacturer());
}

const char* NorvBatteryInfo::GetCtAssembly() const {
  static char buffer[record::kCtAssembly.width + 1];
  return CopyCtField(GetCtNumber(), record::kCtAssembly, buffer);
}

const char* NorvBatteryInfo::GetCtRevision() const {
  static char buffer[record::kCtRevision.width + 1];
  return CopyCtField(GetCtNumber(), record::kCtRevision, buffer);
}

const char* NorvBatteryInfo::GetCtSupplier() const {
  static char buffer[record::kCtSupplier.width + 1];
  return CopyCtField(GetCtNumber(), record::kCtSupplier, buffer);
}

const char* NorvBatteryInfo::GetCtMfgWeek() const {
  static char buffer[record::kCtMfgWeek.width + 1];
  return CopyCtField(GetCtNumber(), record::kCtMfgWeek, buffer);
}

// A serial number that ends in no date is an error, and its age is counted all the same, from no date.
int NorvBatteryInfo::GetAge() {
  const diagnostics::Operation operation("norv::shared::battery::NorvBatteryInfo::GetAge", error_);
  const auto count = [this, &operation] {
    const std::string_view serialNumber = holdings_->serialNumber.View();
    if (serialNumber.size() < firmware::kSerialNumber.width) {
      StoreDefect(operation, kInvalidSerialNumber);
      return kNoAge;
    }
    const auto date = record::FindTrailingDate(serialNumber);
    if (!date) {
      StoreDefect(operation, kInvalidSerialNumber);
    }
    const double seconds = std::difftime(platform::Platform::Current().Now(), MidnightOf(date));
    return record::TruncateToInt(seconds / kSecondsPerDay);
  };
  return diagnostics::Guarded(count, [this, &operation](const std::exception_ptr& thrown) {
    error_ = diagnostics::ExceptionError(thrown, operation.Name());
    return kNoAge;
  });
}

NorvBatteryStatus NorvBatteryInfo::GetStatus() const {
  return record::DecodeStatus(GetStatusWord());
}

const char* NorvBatteryInfo::GetAdaptiveBatteryOptimizerInfo() const {
  return settings_ != nullptr ? settings_->GetAdaptiveBatteryOptimizerInfo() : "";
}

const char* NorvBatteryInfo::GetBatteryCareInfo() const {
  return settings_ != nullptr ? settings_->GetBatteryCareInfo() : "";
}

void NorvBatteryInfo::GetBiosBatterySettings() {
  settings_ = holdings_->settings.emplace_back(std::make_unique<BiosBatterySettings>()).get();
}

void NorvBatteryInfo::SetCellSwellProtectionInfo(const unsigned char* const block) {
  cellSwellProtection_ =
      holdings_->cellSwellProtections.emplace_back(std::make_unique<NorvBatteryCellSwellProtectionInfo>(block)).get();
}

const NorvBatteryCellSwellProtectionInfo* NorvBatteryInfo::GetCellSwellProtectionInfo() {
  return cellSwellProtection_;
}

void NorvBatteryInfo::SetBatteryTestInfo(const NorvBatteryTestInfo& info) {
  testInfo_ = &info;
}

int NorvBatteryInfo::GetBatteryTestResult() const {
  return testInfo_ != nullptr ? testInfo_->GetBatteryTestResult() : test::kNoVerdict;
}

const char* NorvBatteryInfo::GetBatteryTestResultLabel() const {
  return testInfo_ != nullptr ? testInfo_->GetBatteryTestResultLabel() : "";
}

const char* NorvBatteryInfo::GetBatteryTestVersion() const {
  return testInfo_ != nullptr ? testInfo_->GetBatteryTestVersion() : "";
}

unsigned int NorvBatteryInfo::GetBatteryChargeRate() {
  return chargeRate_;
}

unsigned int NorvBatteryInfo::GetBatteryDischargeRate() {
  return dischargeRate_;
}

const error::Error& NorvBatteryInfo::GetError() const {
  return error_;
}

}  // namespace norv::shared::battery
