// The BIOS channel of a collection that was opened through the C interface.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "access/BiosRead.h"
#include "c-interface/Interface.h"
#include "norv/shared/norvbios/PrivateBiosWmi.h"

namespace norv::shared::battery::c_interface {

// Asks the host's callback, or the machine where there is none, and keeps the blocks of each slot that were answered:
// a record does not hand out its bytes.
class HostChannel : public norvbios::PrivateBiosWmi {
 public:
  using Blocks = std::array<std::optional<firmware::Block>, NORV_BATTERY_SLOT_COUNT>;

  HostChannel(norv_battery_channel callback, void* context);
  ~HostChannel() override;

  std::int32_t ExecuteCommand(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                              const unsigned char* input, std::uint32_t inputSize, unsigned char* output,
                              std::uint32_t* returnCode) override;

  const Blocks& Information() const { return information_; }
  const Blocks& CellSwell() const { return cellSwell_; }

 private:
  std::int32_t AskHost(std::uint32_t first, std::uint32_t second, std::uint32_t third, const unsigned char* input,
                       std::uint32_t inputSize, unsigned char* output, std::uint32_t* returnCode);

  norv_battery_channel callback_;
  void* context_;
  Blocks information_;
  Blocks cellSwell_;
};

}  // namespace norv::shared::battery::c_interface
