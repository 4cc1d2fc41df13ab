#include "recording/Redaction.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "SystemMessages.h"
#include "base/Utf8.h"
#include "battery/NorvBatteryTestXmlParser.h"
#include "calls/Operations.h"
#include "firmware/BatteryInformationBlock.h"
#include "firmware/Commands.h"
#include "machine/MachineDescription.h"
#include "machine/Text.h"
#include "norv/simulator/SimulatedMachine.h"
#include "play/WmiQuery.h"
#include "record/Characters.h"
#include "recording/RedactedBlock.h"
#include "system-battery/SystemBattery.h"

namespace norv::simulator {

namespace {

// The line ends and the end of a text in its buffer are no text, and the library looks for both.
std::string Masked(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c != '\r' && c != '\n' && c != '\0'; }, 'x');
  return text;
}

template <std::size_t Count>
bool IsAmong(std::string_view text, const std::array<std::string_view, Count>& texts) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// The product's own files, folded. A test program is looked for by its name.
constexpr std::array<std::string_view, 3> kOwnFiles = {"norv-battery-info.dll", "libnorv-battery-info.so",
                                                       "batterytest.exe"};

std::string MaskedFileName(const std::string& name) {
  return IsAmong(Folded(name), kOwnFiles) ? name : Masked(name);
}

// The separators stay: the library takes the folder of its own path by them, and puts another file there.
std::string MaskedPath(const std::string& path) {
  constexpr std::string_view kEnds("\\/\0", 3);
  std::string masked;
  while (masked.size() < path.size()) {
    const std::size_t start = masked.size();
    const std::size_t end = std::min(path.find_first_of(kEnds, start), path.size());
    masked += MaskedFileName(path.substr(start, end - start)) + path.substr(end, 1);
  }
  return masked;
}

// What is thrown keeps its kind and number. A category of somebody's own is thrown as the generic one again.
void Redact(std::optional<Thrown>& thrown) {
  if (thrown.has_value()) {
    thrown->text = Masked(thrown->text);
    thrown->category = thrown->category.empty() || thrown->category == "system" ? thrown->category : "generic";
  }
}

bool KeepCommand(RecordedCall& call, const KeyedHash& hash) {
  const bool isPlain =
      call.command[0] == firmware::kRead && call.command[2] == firmware::kOfBattery && ExtraInput(call.input).empty();
  const auto command = static_cast<firmware::Command>(call.command[1]);
  std::optional<Block>& block = call.outcome.block;
  if (isPlain && command == firmware::Command::BatteryInformation) {
    if (block.has_value()) {
      RedactBattery(*block, hash);
    }
    return true;
  }
  if (isPlain && command == firmware::Command::CellSwellProtection) {
    if (block.has_value()) {
      RedactCellSwell(*block);
    }
    return true;
  }
  return false;
}

// WMI.

// The one board that the exclusion of old BIOSes is about.
std::string KeptBoard(const std::string& product) {
  return product == "9XQ4" ? product : Masked(product);
}

// Of "F.17" the family, and what a number is read from.
std::string KeptBiosName(const std::string& name) {
  constexpr std::string_view kInNumbers = "0123456789+- \t\n\v\f\r";
  std::string kept = Masked(name);
  if (!name.starts_with('F')) {
    return kept;
  }
  kept[0] = 'F';
  for (std::size_t place = 2; place < std::min<std::size_t>(name.size(), 4); ++place) {
    kept[place] = kInNumbers.find(name[place]) != std::string_view::npos ? name[place] : kept[place];
  }
  return kept;
}

std::string KeptSetting(const std::string& value) {
  constexpr std::array<std::string_view, 6> kValues = {"Enable",        "Disable",  "Activated",
                                                       "Not Activated", "Balanced", "Full charge"};
  return IsAmong(value, kValues) ? value : Masked(value);
}

// What the library reads through WMI. The names are folded; a property without a rule for its text is a number.
struct PropertyRule {
  std::string_view wmiNamespace;
  std::string_view wmiClass;
  std::string_view setting;  // the name that is asked for; empty where all objects are
  std::string_view property;
  std::string (*keepText)(const std::string& text);
};

constexpr std::array<PropertyRule, 7> kProperties{{
    {"root\\wmi", "batterystatus", "", "chargerate", nullptr},
    {"root\\wmi", "batterystatus", "", "dischargerate", nullptr},
    {"root\\cimv2", "win32_baseboard", "", "product", KeptBoard},
    {"root\\cimv2", "win32_bios", "", "name", KeptBiosName},
    {"root\\norv\\instrumentedbios", "norv_biossetting", "adaptive battery extender", "currentvalue", KeptSetting},
    {"root\\norv\\instrumentedbios", "norv_biossetting", "adaptive battery extender status", "currentvalue",
     KeptSetting},
    {"root\\norv\\instrumentedbios", "norv_biossetting", "battery care function", "value", KeptSetting},
}};

bool KeepConnection(RecordedCall& call, const KeyedHash&) {
  return std::any_of(kProperties.begin(), kProperties.end(),
                     [key = NamespaceKey(call.argument)](const auto& rule) { return rule.wmiNamespace == key; });
}

std::vector<PropertyRule> RulesOf(const RecordedCall& call) {
  std::vector<PropertyRule> rules;
  const std::optional<WmiQuery> query = ParseWmiQuery(call.argument);
  if (!query.has_value() || (query->filter.has_value() && query->filter->property != "name")) {
    return rules;
  }
  const std::string setting = query->filter.has_value() ? Folded(query->filter->value) : "";
  std::copy_if(kProperties.begin(), kProperties.end(), std::back_inserter(rules), [&](const PropertyRule& rule) {
    return rule.wmiNamespace == NamespaceKey(call.wmiNamespace) && rule.wmiClass == query->wmiClass &&
           rule.setting == setting;
  });
  return rules;
}

PropertyReads KeptReads(PropertyReads reads, const PropertyRule& rule) {
  if (rule.keepText == nullptr) {
    reads.text.reset();
  } else {
    reads.number.reset();
  }
  if (reads.text.has_value()) {
    reads.text->value = rule.keepText(reads.text->value);
    Redact(reads.text->thrown);
  }
  if (reads.number.has_value()) {
    Redact(reads.number->thrown);
  }
  return reads;
}

RecordedRow KeptRow(const RecordedRow& row, const std::vector<PropertyRule>& rules) {
  RecordedRow kept;
  for (const auto& [property, reads] : row) {
    for (const PropertyRule& rule : rules) {
      if (Folded(property) == rule.property) {
        kept.emplace(property, KeptReads(reads, rule));
      }
    }
  }
  return kept;
}

bool KeepQuery(RecordedCall& call, const KeyedHash&) {
  const std::vector<PropertyRule> rules = RulesOf(call);
  for (RecordedRow& row : call.rows) {
    row = KeptRow(row, rules);
  }
  return !rules.empty();
}

// The battery test and the system.

bool KeepPath(RecordedCall& call, const KeyedHash&) {
  call.path = MaskedPath(call.path);
  call.argument = call.path;
  return true;
}

bool KeepPathAnswer(RecordedCall& call, const KeyedHash&) {
  call.outcome.text = MaskedPath(call.outcome.text.value_or(""));
  return true;
}

// A report with nothing in it but the row that the reader finds in this one.
std::string StatusRow(const std::string& report) {
  shared::battery::NorvBatteryTestXmlParser parser;
  const int status = parser.GetBatteryStatusFromXMLReport(report.c_str());
  const bool isNumber = !parser.GetError();
  return "<r i=\"6\">" + (isNumber ? std::to_string(status) : "no number") + "</r>";
}

bool KeepFolder(RecordedCall& call, const KeyedHash&) {
  call.folder.clear();
  if (call.outcome.text.has_value()) {
    call.outcome.text = StatusRow(*call.outcome.text);
  }
  return true;
}

bool KeepMessage(RecordedCall& call, const KeyedHash&) {
  const std::string text = call.outcome.text.value_or("");
  const bool isFixed = platform::SystemMessage(call.code) == text;
  call.outcome.text = isFixed ? text : Masked(text);
  return true;
}

// What the kernel and the battery class of Windows call the technologies.
constexpr std::array<std::string_view, 13> kTechnologies = {"NiMH", "Li-ion", "Li-poly", "LiFe", "NiCd", "LiMn", "LION",
                                                            "Li-I", "LiP",    "PbAc",    "NiZn", "RAM",  "LIP"};

// Its numbers stay, and of the texts what the block keeps, too: a manufacturer that it holds whole, and the name of a
// kind of battery, which is of letters and digits alone.
platform::SlotDescription KeptDescription(platform::SlotDescription slot, const KeyedHash& hash) {
  slot.source = slot.source == platform::kSystemBatterySource ? slot.source : Masked(slot.source);
  slot.modelName =
      shared::battery::record::AreLettersOrDigits(slot.modelName) ? slot.modelName : Masked(slot.modelName);
  slot.serialNumber = base::AsUtf8(MaskedSerialNumber(slot.serialNumber, hash));
  slot.manufacturer =
      slot.manufacturer.size() <= firmware::kManufacturer.width ? slot.manufacturer : Masked(slot.manufacturer);
  slot.technology = IsAmong(slot.technology, kTechnologies) ? slot.technology : Masked(slot.technology);
  return slot;
}

bool KeepDescription(RecordedCall& call, const KeyedHash& hash) {
  if (call.outcome.slot.has_value()) {
    call.outcome.slot = KeptDescription(*call.outcome.slot, hash);
  }
  return true;
}

// Answered by numbers alone, a version's four included.
bool KeepNumbers(RecordedCall&, const KeyedHash&) {
  return true;
}

struct CallRule {
  std::string_view operation;
  bool (*keep)(RecordedCall& call, const KeyedHash& hash);  // false where the call is dropped
};

constexpr std::array kCalls{
    CallRule{kSendBiosCommand, KeepCommand},
    CallRule{kConnectWmi, KeepConnection},
    CallRule{kQuery, KeepQuery},
    CallRule{kRunProgram, KeepPath},
    CallRule{kReadProductVersion, KeepPath},
    CallRule{kLibraryPath, KeepPathAnswer},
    CallRule{kModuleName, KeepPathAnswer},
    CallRule{kProgramDataFolder, KeepFolder},
    CallRule{kFormatSystemMessage, KeepMessage},
    CallRule{kLastSystemCode, KeepNumbers},
    CallRule{kReportInvalidParameter, KeepNumbers},
    CallRule{kNow, KeepNumbers},
    CallRule{kLocalTimeValue, KeepNumbers},
    CallRule{kDescribeSlot, KeepDescription},
};

bool Keep(RecordedCall& call, const KeyedHash& hash) {
  const auto* const rule = std::find_if(kCalls.begin(), kCalls.end(),
                                        [&](const CallRule& entry) { return entry.operation == call.operation; });
  Redact(call.outcome.thrown);
  Redact(call.end);
  if (call.outcome.left.has_value()) {
    Redact(call.outcome.left->thrown);
  }
  return rule != kCalls.end() && rule->keep(call, hash);
}

}  // namespace

std::vector<RecordedCall> Redacted(std::vector<RecordedCall> calls, const KeyedHash& hash) {
  calls.erase(std::remove_if(calls.begin(), calls.end(), [&](RecordedCall& call) { return !Keep(call, hash); }),
              calls.end());
  return calls;
}

Origin Redacted(const Origin& origin) {
  const std::vector<SampleMachine> samples = SampleMachines();
  const auto sample = std::find_if(samples.begin(), samples.end(), [&](const SampleMachine& entry) {
    return origin.kind == "sample" && entry.name == origin.name;
  });
  return sample != samples.end() ? Origin{origin.kind, sample->name, sample->description}
                                 : Origin{origin.kind, Masked(origin.name), ""};
}

}  // namespace norv::simulator
