#include "PlainRecord.h"

#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <map>
#include <optional>
#include <regex>
#include <sstream>
#include <vector>

namespace norv::plain {

namespace {

const std::vector<std::string> kManufacturerShapes = {
    "[a-zA-Z0-9]{3}-[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}(-A)",
    "[a-zA-Z0-9]{3}-[a-zA-Z0-9]{2}-[a-zA-Z0-9]{1}(-A)",
    "[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}(-A)",
    "[a-zA-Z0-9]{3}-[a-zA-Z0-9]{2}(-A)",
    "[a-zA-Z0-9]{2}-[a-zA-Z0-9]{2}(-A)",
    "[a-zA-Z0-9]{5}(-A)",
};
const std::string kDeviceName = "[a-zA-Z0-9]+";
const std::string kCtNumber = "^6[a-zA-Z0-9]{13}$";
const std::string kDateTime = R"(\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}(\+|\-)\d{2}:\d{2})";
const std::string kYearFirst = R"((19|20\d\d)[- /.](0[1-9]|1[012])[- /.](0[1-9]|[12][0-9]|3[01])$)";
const std::string kMonthFirst = R"((0[1-9]|1[012])[-/ .](0[1-9]|[12][0-9]|3[01])[- /.](19|20\d\d)$)";

const std::map<char, std::string> kPackSuppliers = {
    {'1', "SIMPLO"},      {'2', "DYNAPACK"}, {'3', "STL_TECHNOLOGY"},  {'4', "LG_CHEMICAL"},
    {'5', "SAMSUNG_SDI"}, {'7', "CELXPERT"}, {'8', "PANASONIC_SANYO"}, {'9', "SONY"},
    {'A', "COSMX"},       {'B', "ATL"},      {'C', "SUNWODA"},
};
const std::map<char, std::string> kCellSuppliers = {
    {'1', "E-ONE_MOLI"},   {'2', "LG_CHEMICAL"}, {'3', "PANASONIC"}, {'4', "SAMSUNG_SDI"},
    {'5', "SANYO"},        {'6', "SONY"},        {'7', "ATL"},       {'8', "SKC"},
    {'9', "BOSTON_POWER"}, {'A', "BAK"},         {'B', "LISHEN"},    {'C', "COSLIGHT"},
};
const std::map<char, std::string> kWarrantyTypes = {
    {'0', "6_MONTHS"}, {'1', "1_YEAR"}, {'2', "2_YEARS"}, {'3', "3_YEARS"}};
const std::map<char, std::string> kDesignCycleCounts = {{'1', "300"}, {'2', "600"}, {'3', "1000"}};
const std::vector<std::string> kErrorCodes = {
    "OK", "Busy", "ReservedCommand", "UnsupportedCommand", "AccessDenied", "Overflow/Underflow", "BadSize"};

// How the two decoders come by a compiled pattern.
using Compile = const std::regex& (*)(const std::string& pattern);

const std::regex& CompileEachTime(const std::string& pattern) {
  thread_local std::regex compiled;
  compiled = std::regex(pattern);
  return compiled;
}

const std::regex& CompileOnce(const std::string& pattern) {
  thread_local std::map<const std::string*, std::regex> compiled;
  const auto found = compiled.find(&pattern);
  return found != compiled.end() ? found->second : compiled.emplace(&pattern, std::regex(pattern)).first->second;
}

int CutToInt(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) {
    return std::numeric_limits<int>::min();
  }
  return static_cast<int>(value);
}

std::string Look(const std::map<char, std::string>& table, char code) {
  const auto found = table.find(code);
  return found != table.end() ? found->second : "UNKNOWN";
}

class Decoder {
 public:
  Decoder(const unsigned char* block, std::time_t now, Compile compile) : block_(block), now_(now), compile_(compile) {}

  PlainRecord Decode() {
    Texts();
    Numbers();
    Manufacturer();
    Dates();
    CtFields();
    Validity();
    Age();
    return record_;
  }

 private:
  bool Matches(const std::string& text, const std::string& pattern) {
    return std::regex_match(text, compile_(pattern));
  }

  std::string Text(std::size_t offset, std::size_t width) {
    const std::string whole(reinterpret_cast<const char*>(block_) + offset, width);
    return whole.substr(0, whole.find('\0'));
  }

  int Word(std::size_t offset) { return block_[offset] + 256 * block_[offset + 1]; }

  void Texts() {
    record_.serialNumber = Text(0x1C, 16);
    record_.manufacturer = Text(0x2C, 18);
    record_.ctNumber = Text(0x3E, 16);
    record_.deviceName = Text(0x4F, 7);
    if (!Matches(record_.deviceName, kDeviceName)) {
      record_.deviceName = "";
    }
  }

  static float Percentage(int part, int whole) {
    const float thousandths = static_cast<float>(part) / static_cast<float>(whole) * 100.0F * 1000.0F;
    return static_cast<float>(CutToInt(static_cast<double>(thousandths))) / 1000.0F;
  }

  void Numbers() {
    record_.designCapacity = Word(0x00);
    record_.fullChargeCapacity = Word(0x02);
    record_.remainingCapacity = Word(0x04);
    record_.maxError = Word(0x06);
    record_.cycleCount = Word(0x08);
    record_.temperature = Word(0x0A);
    record_.voltage = Word(0x0C);
    record_.current = Word(0x0E);
    record_.designVoltage = Word(0x10);
    record_.statusWord = Word(0x12);
    for (std::size_t cell = 0; cell < 4; ++cell) {
      record_.cellVoltages[cell] = Word(0x14 + 2 * cell);
    }
    record_.fullChargeCapacityPercentage = Percentage(record_.fullChargeCapacity, record_.designCapacity);
    record_.remainingCapacityPercentage = Percentage(record_.remainingCapacity, record_.fullChargeCapacity);
    const auto code = static_cast<std::size_t>(record_.statusWord % 16);
    record_.status.errorCode = code < kErrorCodes.size() ? kErrorCodes[code] : "UnknownError";
    for (std::size_t bit = 4; bit < 16; ++bit) {
      record_.status.flags[bit - 4] = (record_.statusWord >> bit) % 2 != 0;
    }
  }

  // 1 to 6; 0 for none. As the accessors do it, each value finds the shape anew.
  std::size_t Shape() {
    for (std::size_t shape = 0; shape < kManufacturerShapes.size(); ++shape) {
      if (Matches(record_.manufacturer, kManufacturerShapes[shape])) {
        return shape + 1;
      }
    }
    return 0;
  }

  // The character at the place that belongs to the text's shape; the places are those of the shapes 1, 2 and 4, of 6,
  // and of 3 and 5.
  char Code(std::size_t long3, std::size_t run5, std::size_t long2) {
    switch (Shape()) {
      case 1:
      case 2:
      case 4:
        return record_.manufacturer[long3];
      case 6:
        return record_.manufacturer[run5];
      case 3:
      case 5:
        return record_.manufacturer[long2];
      default:
        return '0';
    }
  }

  void Manufacturer() {
    record_.warrantyType = Look(kWarrantyTypes, Code(0, 0, 0));
    record_.designCycleCount = Look(kDesignCycleCounts, Code(2, 2, 1));
    record_.packSupplier = Look(kPackSuppliers, Code(4, 3, 3));
    record_.cellSupplier = Look(kCellSuppliers, Code(5, 4, 4));
    const std::size_t shape = Shape();
    if (shape == 1 || shape == 2 || shape == 4 || shape == 6) {
      record_.calibrationType = record_.manufacturer.substr(2, 1);
    }
    OverCurrent();
  }

  void OverCurrent() {
    const std::size_t shape = Shape();
    int code = 0;
    if (shape == 1 || shape == 2 || shape == 3) {
      const std::size_t place = shape == 3 ? 6 : 7;
      code = 10 * (record_.manufacturer[place] - '0') + (record_.manufacturer[place + 1] - '0');
    }
    if (code >= 0 && code < 200) {
      record_.overCurrentProtection = (code / 100 + 1) * record_.designCapacity;
    } else if (code >= 200 && code < 220) {
      record_.overCurrentProtection = CutToInt((code / 20.0 - 10.0) * record_.designCapacity);
    }
  }

  bool IsDateTime(const std::string& text) {
    if (!Matches(text, kDateTime)) {
      return false;
    }
    std::tm parsed{};
    std::istringstream stream(text.substr(0, 19));
    stream.imbue(std::locale::classic());
    stream >> std::get_time(&parsed, "%Y-%m-%dT%H:%M:%S");
    return !stream.fail();
  }

  std::string Compose(int year, int month, int day) {
    std::ostringstream stream;
    stream << std::setfill('0') << std::setw(4) << year << '-' << std::setw(2) << month << '-' << std::setw(2) << day
           << "T00:00:00+00:00";
    return IsDateTime(stream.str()) ? stream.str() : "";
  }

  void Dates() {
    const int packed = Word(0x5C);
    record_.manufacturingDate = Compose((packed >> 9) + 1980, (packed >> 5) % 16, packed % 32);
    int year = 0;
    int month = 0;
    int day = 0;
    if (IsDateTime(record_.manufacturingDate)) {
      year = std::stoi(record_.manufacturingDate.substr(0, 4));
      month = std::stoi(record_.manufacturingDate.substr(5, 2));
      day = std::stoi(record_.manufacturingDate.substr(8, 2));
    }
    if (record_.warrantyType == "6_MONTHS") {
      month += 6;
      if (month > 12) {
        year += month / 12;
        month -= 12;
      }
    } else if (record_.warrantyType == "1_YEAR") {
      year += 1;
    } else if (record_.warrantyType == "2_YEARS") {
      year += 2;
    } else if (record_.warrantyType == "3_YEARS") {
      year += 3;
    }
    record_.warrantyDate = Compose(year, month, day);
  }

  std::string CtField(std::size_t atLeast, std::size_t position, std::size_t width) const {
    if (record_.ctNumber.size() < atLeast) {
      return "NA";
    }
    return position < record_.ctNumber.size() ? record_.ctNumber.substr(position, width) : "";
  }

  void CtFields() {
    record_.ctAssembly = CtField(4, 0, 4);
    record_.ctRevision = CtField(6, 4, 2);
    record_.ctSupplier = CtField(6, 6, 2);
    record_.ctManufacturingWeek = CtField(6, 8, 2);
  }

  void Validity() {
    if (record_.manufacturer.empty()) {
      record_.defect = "Invalid battery manufacturer";
    } else if (record_.serialNumber.empty()) {
      record_.defect = "Invalid battery serial number";
    } else if (record_.deviceName.empty()) {
      record_.defect = "Invalid battery device name";
    } else if (!Matches(record_.ctNumber, kCtNumber)) {
      record_.defect = "Invalid battery CT number";
    }
    record_.isValid = record_.defect.empty();
  }

  void Age() {
    if (record_.serialNumber.size() < 16) {
      record_.age = -1;
      record_.ageError = "Invalid battery serial number";
      return;
    }
    std::tm calendar{};
    std::smatch found;
    int year = 0;
    if (std::regex_search(record_.serialNumber, found, compile_(kYearFirst))) {
      year = std::stoi(found[1]);
      calendar.tm_mon = std::stoi(found[2]) - 1;
      calendar.tm_mday = std::stoi(found[3]);
    } else if (std::regex_search(record_.serialNumber, found, compile_(kMonthFirst))) {
      calendar.tm_mon = std::stoi(found[1]) - 1;
      calendar.tm_mday = std::stoi(found[2]);
      year = std::stoi(found[3]);
    } else {
      record_.ageError = "Invalid battery serial number";
    }
    if (record_.ageError.empty()) {
      calendar.tm_year = year - 1900;
    }
    // What lies before 1970 has no time value where these batteries are at home.
    const std::time_t midnight = std::max<std::time_t>(std::mktime(&calendar), -1);
    record_.age = CutToInt(std::difftime(now_, midnight) / 86400.0);
  }

  const unsigned char* block_;
  std::time_t now_;
  Compile compile_;
  PlainRecord record_;
};

}  // namespace

PlainRecord DecodeCompilingEachTime(const unsigned char* block, std::time_t now) {
  return Decoder(block, now, &CompileEachTime).Decode();
}

PlainRecord DecodeCompilingOnce(const unsigned char* block, std::time_t now) {
  return Decoder(block, now, &CompileOnce).Decode();
}

}  // namespace norv::plain
