// The BIOS command channel.
#pragma once

#include <cstdint>

#include "battery/Export.h"

namespace norv::shared::norvbios {

// Sends commands to the machine's BIOS. A host may derive from it and hand its own channel to NorvBatteries.
// One thread at a time uses a channel; different channels may be used in parallel.
class NORV_BATTERY_API PrivateBiosWmi {
 public:
  PrivateBiosWmi();
  PrivateBiosWmi(const PrivateBiosWmi&) = delete;
  PrivateBiosWmi& operator=(const PrivateBiosWmi&) = delete;
  virtual ~PrivateBiosWmi();

  // Sends the command (first, second, third) with `inputSize` bytes of `input` and waits for the answer.
  //
  // Returns the status of the channel in HRESULT form: 0 when the BIOS answered. Then `*returnCode` holds the return
  // code of the BIOS (0: success) and, on success, the 128 bytes at `output` hold the answered block. With any other
  // status `output` and `*returnCode` keep what they held. Nothing is kept of the pointers after the call.
  virtual std::int32_t ExecuteCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                      const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                      std::uint32_t* returnCode);

  // Tells whether ExecuteCommand would accept the same arguments: 0, or E_INVALIDARG (0x80070057) for a null pointer.
  // Sends nothing.
  virtual std::int32_t ValidateInput(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                     const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                                     std::uint32_t* returnCode);
};

}  // namespace norv::shared::norvbios
