#include "norv/shared/norvbios/PrivateBiosWmi.h"

#include "SystemCodes.h"
#include "norv/platform/Platform.h"

namespace norv::shared::norvbios {

PrivateBiosWmi::PrivateBiosWmi() = default;

PrivateBiosWmi::~PrivateBiosWmi() = default;

std::int32_t PrivateBiosWmi::ExecuteCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                            const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                            std::uint32_t* returnCode) {
  return platform::Platform::Current().SendBiosCommand(first, second, third, input, inputSize, output, returnCode);
}

std::int32_t PrivateBiosWmi::ValidateInput(std::uint32_t /*first*/, std::uint32_t /*second*/, std::uint32_t /*third*/,
                                           const unsigned char* input, std::uint32_t /*inputSize*/,
                                           unsigned char* output, std::uint32_t* returnCode) {
  return input == nullptr || output == nullptr || returnCode == nullptr ? platform::kInvalidArgument : 0;
}

}  // namespace norv::shared::norvbios
