// What the opaque handles of the C interface are.
#pragma once

#include <array>
#include <memory>
#include <optional>

#include "access/BiosRead.h"
#include "battery/NorvBatteries.h"
#include "battery/NorvBatteryInfo.h"
#include "battery/NorvBatteryTestInfo.h"
#include "c-interface/Guard.h"
#include "c-interface/HostChannel.h"
#include "c-interface/HostLog.h"
#include "c-interface/Interface.h"
#include "fields/Field.h"

// A record of a collection refers to the collection's own, and is used when that is; a decoded one owns its own.
struct norv_battery_record {
  using UseMark = norv::shared::battery::c_interface::UseMark;

  explicit norv_battery_record(UseMark* use = nullptr) : collectionUse(use) {}

  UseMark* collectionUse;
  mutable UseMark ownUse;
  norv::shared::battery::NorvBatteryInfo* info = nullptr;
  std::unique_ptr<norv::shared::battery::NorvBatteryInfo> owned;
  norv::firmware::Block block{};
  std::optional<norv::firmware::Block> cellSwell;
  std::optional<norv::shared::battery::fields::Told> told;  // nothing: all

  bool IsDecoded() const { return owned != nullptr; }
  UseMark& Use() const { return collectionUse != nullptr ? *collectionUse : ownUse; }
};

struct norv_battery_collection {
  using Channel = norv::shared::battery::c_interface::HostChannel;
  using TestInfo = norv::shared::battery::NorvBatteryTestInfo;

  norv_battery_collection(const norv_battery_options& options, std::unique_ptr<Channel> hostChannel,
                          std::unique_ptr<TestInfo> testInfo);

  norv::shared::battery::c_interface::UseMark& Use() const { return use; }

  mutable norv::shared::battery::c_interface::UseMark use;
  norv::shared::battery::c_interface::HostLog log;
  Channel* channel;  // the batteries'
  TestInfo* test;    // the batteries'
  norv::shared::battery::NorvBatteries batteries;
  std::array<std::optional<norv_battery_record>, NORV_BATTERY_SLOT_COUNT> records;
};
