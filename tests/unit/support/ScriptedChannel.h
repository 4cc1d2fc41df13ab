// A BIOS command channel that answers as a test tells it and remembers what it was asked.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "TestBlock.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace norv::test {

struct ChannelAnswer {
  std::int32_t status = 0;
  std::uint32_t returnCode = 0;
  TestBlock block{};
  std::function<void()> before{};  // may throw
};

struct ChannelCommand {
  std::uint32_t first;
  std::uint32_t second;
  std::uint32_t third;
  std::vector<unsigned char> input;
};

inline constexpr std::uint32_t kBatteryInformation = 7;
inline constexpr std::uint32_t kCellSwellProtection = 86;

class ScriptedChannel : public shared::norvbios::PrivateBiosWmi {
 public:
  // `alive` counts the channels that exist.
  explicit ScriptedChannel(int* alive = nullptr) : alive_(alive) {
    if (alive_ != nullptr) {
      ++*alive_;
    }
  }
  ~ScriptedChannel() override {
    if (alive_ != nullptr) {
      --*alive_;
    }
  }

  // What the command answers for a slot; 6, no battery, for what is not scripted.
  ScriptedChannel& Answer(std::uint32_t command, unsigned char slot, ChannelAnswer answer) {
    answers_[{command, slot}] = std::move(answer);
    return *this;
  }

  ScriptedChannel& Battery(unsigned char slot, const TestBlock& block) {
    return Answer(kBatteryInformation, slot, {.block = block});
  }

  const std::vector<ChannelCommand>& Commands() const { return commands_; }

  int ValidateCalls() const { return validateCalls_; }

  std::int32_t ExecuteCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                              const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                              std::uint32_t* returnCode) override {
    commands_.push_back({first, second, third, {input, input + inputSize}});
    const auto found = answers_.find({second, input[0]});
    const ChannelAnswer answer = found != answers_.end() ? found->second : ChannelAnswer{.returnCode = 6};
    if (answer.before) {
      answer.before();
    }
    if (answer.status == 0) {
      *returnCode = answer.returnCode;
      std::memcpy(output, answer.block.Data(), answer.block.Bytes().size());
    }
    return answer.status;
  }

  std::int32_t ValidateInput(std::uint32_t first, std::uint32_t second, std::uint32_t third, const unsigned char* input,
                             std::uint32_t inputSize, unsigned char* output, std::uint32_t* returnCode) override {
    ++validateCalls_;
    return PrivateBiosWmi::ValidateInput(first, second, third, input, inputSize, output, returnCode);
  }

 private:
  int* alive_;
  std::map<std::pair<std::uint32_t, unsigned char>, ChannelAnswer> answers_;
  std::vector<ChannelCommand> commands_;
  int validateCalls_ = 0;
};

}  // namespace norv::test
