// The one board whose older BIOS must not be asked for battery-care settings.
#pragma once

namespace norv::shared::battery {

// True on that board, unless its BIOS is known to be new enough. Never throws.
bool IsPlatformExcluded() noexcept;

}  // namespace norv::shared::battery
