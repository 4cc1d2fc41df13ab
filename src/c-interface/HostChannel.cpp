#include "c-interface/HostChannel.h"

#include <algorithm>

namespace norv::shared::battery::c_interface {

namespace {

constexpr std::uint32_t kNoReturnCode = 0xFFFFFFFF;

}  // namespace

HostChannel::HostChannel(norv_battery_channel callback, void* context) : callback_(callback), context_(context) {
}

HostChannel::~HostChannel() = default;

std::int32_t HostChannel::ExecuteCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                         const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                         std::uint32_t* returnCode) {
  const std::int32_t status =
      callback_ != nullptr ? AskHost(first, second, third, input, inputSize, output, returnCode)
                           : PrivateBiosWmi::ExecuteCommand(first, second, third, input, inputSize, output, returnCode);
  if (status == 0 && *returnCode == firmware::kSuccess) {
    Blocks& blocks =
        second == static_cast<std::uint32_t>(firmware::Command::CellSwellProtection) ? cellSwell_ : information_;
    std::copy_n(output, firmware::kBlockSize, blocks.at(input[0]).emplace().begin());
  }
  return status;
}

std::int32_t HostChannel::AskHost(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                  const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                  std::uint32_t* returnCode) {
  // A callback that ends early, as a script's does when it is interrupted, must not pass for a battery of zeros.
  *returnCode = kNoReturnCode;
  return callback_(context_, first, second, third, input, inputSize, output, returnCode);
}

}  // namespace norv::shared::battery::c_interface
