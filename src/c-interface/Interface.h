// The C header as the library itself sees it: its functions are exported.
#pragma once

#include "battery/Export.h"

#define NORV_BATTERY_FUNCTION NORV_BATTERY_API
#include "battery/norv_battery.h"
