#pragma once

#include <optional>
#include <string>

#include "decode/Decode.h"
#include "encode/Encode.h"
#include "record/Record.h"
#include "watch/Watch.h"

namespace norv::tool {

enum class Command { Report, Machines, Decode, Encode, Record, Watch };
enum class Format { Text, Json };

struct Arguments {
  Command command = Command::Report;
  std::optional<std::string> machine;      // a sample's name or a file; nothing for the running machine
  std::optional<std::string> powerSupply;  // a folder or a listing, in the place of the running machine's batteries
  Format format = Format::Text;
  unsigned int logSeverity = 0;  // a plog severity
  bool cellSwell = false;
  bool test = false;
  DecodeOptions decode;
  EncodeOptions encode;
  RecordOptions record;
  WatchOptions watch;
};

// What the command line asks for.
struct ParsedArguments {
  std::optional<Arguments> arguments;  // nothing when there is nothing left to do but to print
  std::string output;                  // for standard output: the help or the version asked for
  std::string complaint;               // what is wrong with the command line
};

ParsedArguments ParseArguments(int argc, const char* const* argv);

}  // namespace norv::tool
