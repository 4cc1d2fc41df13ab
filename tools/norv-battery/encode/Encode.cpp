#include "encode/Encode.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <istream>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "ExitStatus.h"
#include "Machine.h"
#include "decode/Utf16.h"
#include "encode/BlockFromJson.h"
#include "encode/Utf8Input.h"
#include "firmware/Commands.h"
#include "json/Describe.h"
#include "json/Parse.h"
#include "norv/platform/Platform.h"
#include "output/BinaryStreams.h"
#include "output/EscapeText.h"
#include "output/OutputTarget.h"
#include "output/StandardStreams.h"
#include "output/Terminal.h"
#include "report/Report.h"

namespace norv::tool {

namespace {

using json::Value;

// An input that cannot be encoded. what() says which, where and why.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class OutputError : public std::exception {};

// Writes blocks; what could not be written ends the command by an exception.
class BlockWriter {
 public:
  BlockWriter(OutputTarget& output, BlockFormat format) : output_(output), format_(format) {}

  // `id` is lost in a binary output.
  void Write(const std::optional<std::string>& id, const Block& block) {
    if (format_ == BlockFormat::Binary) {
      pending_.append(reinterpret_cast<const char*>(block.data()), block.size());
    } else {
      AppendLine(id, block);
    }
    constexpr std::size_t kMuch = 65536;
    if (pending_.size() >= kMuch) {
      Flush();
    }
  }

  void Complete() {
    Flush();
    if (!output_.Complete()) {
      throw OutputError();
    }
  }

 private:
  void AppendLine(const std::optional<std::string>& id, const Block& block) {
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    if (id) {
      pending_ += *id;
      pending_ += ',';
    }
    for (const unsigned char byte : block) {
      pending_ += kHexDigits[byte >> 4U];
      pending_ += kHexDigits[byte & 0x0FU];
    }
    pending_ += '\n';
  }

  void Flush() {
    if (!output_.Write(pending_)) {
      throw OutputError();
    }
    pending_.clear();
  }

  OutputTarget& output_;
  BlockFormat format_;
  std::string pending_;
};

// What is wrong with an identifier that a line begins with; null where it is read as it was written.
const char* DefectOf(std::string_view id) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  constexpr std::size_t kMost = Portion::kLargest - 2 * kBlockSize - 1;  // of a line, less the digits and the comma
  if (id.size() > kMost) {
    return "makes the line too long";
  }
  if (id.find(',') != std::string_view::npos) {
    return "holds a comma";
  }
  if (EscapeControls(id) != id) {
    return "holds a control character";
  }
  if (id.starts_with(kMark)) {
    return "begins with a byte order mark";
  }
  return id.starts_with(' ') || id.ends_with(' ') ? "begins or ends with a blank" : nullptr;
}

// The identifier of a decoded row, which is read again as it is; nothing where it has none.
std::optional<std::string> ReadId(const Value& row) {
  const Value& id = row["id"];
  if (id.IsNull()) {
    return std::nullopt;
  }
  const auto* const text = id.As<std::string>();
  if (text == nullptr) {
    throw BlockValueError("id: expected null or a text");
  }
  if (const char* const defect = DefectOf(*text)) {
    throw BlockValueError("id: expected a text that a line can begin with, but " + Quote(*text) + " " + defect);
  }
  return *text;
}

void EncodeRow(const Value& row, BlockWriter& writer) {
  if (!row["rowError"].IsNull()) {
    throw BlockValueError("rowError: the row stands for an input that was no block");
  }
  writer.Write(ReadId(row), BlockFromJson(row));
}

void EncodeReport(const Value& report, const std::optional<int>& slot, BlockWriter& writer) {
  const auto* const batteries = report["batteries"].As<json::Array>();
  if (batteries == nullptr) {
    throw BlockValueError("batteries: expected an array");
  }
  bool isAny = false;
  for (std::size_t index = 0; index < batteries->size(); ++index) {
    const Value& battery = (*batteries)[index];
    if (battery.IsNull() || (slot && static_cast<std::size_t>(*slot) != index)) {
      continue;
    }
    try {
      writer.Write(std::nullopt, BlockFromJson(battery));
    } catch (const BlockValueError& failure) {
      throw BlockValueError(json::ItemPath("batteries", index) + "." + failure.what());
    }
    isAny = true;
  }
  if (!isAny) {
    throw BlockValueError(slot ? "batteries[" + std::to_string(*slot) + "]: there is no battery"
                               : std::string("batteries: there is no battery"));
  }
}

void EncodeValue(const Value& value, const std::optional<int>& slot, BlockWriter& writer) {
  const auto has = [object = value.As<json::Object>()](const char* key) {
    return object != nullptr && object->Find(key) != nullptr;
  };
  if (has("batteries")) {
    EncodeReport(value, slot, writer);
  } else if (has("slots")) {
    throw BlockValueError("this is a machine file, which --machine takes");
  } else if (has("identity") || has("rowError")) {
    EncodeRow(value, writer);
  } else {
    throw BlockValueError("expected a JSON report or a decoded row: an object with \"batteries\" or \"identity\"");
  }
}

// One JSON value after another, until the end of `input`.
void EncodeStream(const std::string& name, std::istream& input, const std::optional<int>& slot, BlockWriter& writer) {
  Utf8Input bytes(*input.rdbuf());
  if (IsUtf16WithoutMark(bytes.Start())) {
    throw InputError(Quote(name) + " is a text in UTF-16 without a byte order mark: expected the mark, or UTF-8");
  }
  std::istream text(&bytes);
  std::uint64_t number = 1;
  const auto refusal = [&name, &number](const std::string& message) {
    return InputError(Quote(name) + ", JSON value " + std::to_string(number) + ": " + message);
  };
  try {
    for (; const auto value = json::ParseNext(text); ++number) {
      EncodeValue(*value, slot, writer);
    }
  } catch (const json::ParseError& failure) {
    throw refusal(failure.what());
  } catch (const BlockValueError& failure) {
    throw refusal(failure.what());
  }
  if (number == 1) {
    throw InputError(Quote(name) + " is empty: expected a JSON report or decoded rows");
  }
}

void EncodeSource(const std::string& name, const std::optional<int>& slot, BlockWriter& writer) {
  if (name == "-") {
    EncodeStream("standard input", std::cin, slot, writer);
    return;
  }
  errno = 0;
  std::ifstream file(name, std::ios::binary);
  if (!file || (file.peek() == std::ifstream::traits_type::eof() && errno != 0)) {
    throw InputError(Quote(name) + " cannot be read: " + std::generic_category().message(errno));
  }
  file.clear();
  EncodeStream(name, file, slot, writer);
}

// What the BIOS of the machine answers for a slot; nothing when it reads no battery there.
std::optional<Block> AskForBlock(platform::Platform& machine, int slot) {
  constexpr auto kBatteryInformation = static_cast<std::uint32_t>(firmware::Command::BatteryInformation);
  Block input{};
  input[0] = static_cast<unsigned char>(slot);
  Block block{};
  std::uint32_t returnCode = 0;
  const std::int32_t status = machine.SendBiosCommand(firmware::kRead, kBatteryInformation, firmware::kOfBattery,
                                                      input.data(), kBlockSize, block.data(), &returnCode);
  return status == 0 && returnCode == firmware::kSuccess ? std::optional(block) : std::nullopt;
}

void EncodeMachine(const std::string& name, const std::optional<int>& slot, BlockWriter& writer) {
  const Machine machine = ChooseMachine(name);
  bool isAny = false;
  for (int index = 0; index < kSlotCount; ++index) {
    const auto block =
        slot.value_or(index) == index ? AskForBlock(machine.simulated->AsPlatform(), index) : std::nullopt;
    if (block) {
      writer.Write(std::nullopt, *block);
      isAny = true;
    }
  }
  if (!isAny) {
    throw InputError(Quote(name) + " has no battery" + (slot ? " in slot " + std::to_string(*slot) : ""));
  }
}

void EncodeAll(const EncodeOptions& options, BlockWriter& writer) {
  if (options.machine) {
    EncodeMachine(*options.machine, options.slot, writer);
    return;
  }
  const std::vector<std::string> standardInput{"-"};
  for (const std::string& source : options.sources.empty() ? standardInput : options.sources) {
    EncodeSource(source, options.slot, writer);
  }
}

}  // namespace

int RunEncode(const EncodeOptions& options) {
  if (!options.output && options.format == BlockFormat::Binary && StandardOutputIsTerminal()) {
    Complain("--format bin: blocks are no text for a terminal: name a file with --output, or redirect standard output");
    return kUnusable;
  }
  UseBinaryStreams();
  const auto output = OpenOutput(options.output);
  if (output == nullptr) {
    return kUnusable;
  }
  try {
    BlockWriter writer(*output, options.format);
    EncodeAll(options, writer);
    writer.Complete();
  } catch (const InputError& failure) {
    Complain(failure.what());
    return kUnusable;
  } catch (const OutputError&) {
    return kUnusable;  // it has been said
  }
  return kSuccess;
}

}  // namespace norv::tool
