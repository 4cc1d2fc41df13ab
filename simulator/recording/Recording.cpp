#include "recording/Recording.h"

#include <algorithm>

#include "machine/HexText.h"

namespace norv::simulator {

std::string ExtraInput(std::span<const unsigned char> input) {
  const bool isPlain = std::all_of(input.begin(), input.end(),
                                   [&](const unsigned char& byte) { return &byte == input.data() || byte == 0; });
  return isPlain ? std::string() : HexText(input);
}

std::string CallKey(const std::string& operation, const std::string& argument, const std::string& wmiNamespace,
                    const std::string& extraInput) {
  std::string key;
  for (const std::string* part : {&operation, &argument, &wmiNamespace, &extraInput}) {
    key.append(*part).push_back('\0');
  }
  return key;
}

std::string CallKey(const RecordedCall& call) {
  return CallKey(call.operation, call.argument, call.wmiNamespace, ExtraInput(call.input));
}

}  // namespace norv::simulator
