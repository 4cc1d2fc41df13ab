"""Battery information for one maker's notebook computers.

    import norv_battery

    with norv_battery.open() as batteries:
        for battery in batteries:
            print(battery.slot, battery.serial_number, battery.full_charge_capacity)

The package is pure Python and calls the shared library norv-battery-info. It loads the file whose absolute path is in the
environment variable NORV_BATTERY_LIBRARY; without that the file beside this package, or else the one in the system's own
folders for libraries. Neither PATH nor the current folder is searched.

One thread at a time uses a Batteries object and its Battery objects, which raise InUseError otherwise; different ones may be
used in parallel. Neither can be copied or pickled; what is read from them can.
"""

from ._batteries import Answer, Batteries, open  # pylint: disable=redefined-builtin
from ._battery import Battery, decode
from ._errors import (
    BatteryError,
    Error,
    Category,
    InUseError,
    NoBatteryError,
    NoVerdictError,
    Status,
)
from ._fields import Description, Field, Kind, LogLevel, Reading, Source, State, describe, fields
from ._library import interface_version

__all__ = [
    "Answer",
    "Batteries",
    "Battery",
    "BatteryError",
    "Category",
    "Description",
    "Error",
    "Field",
    "InUseError",
    "Kind",
    "LogLevel",
    "NoBatteryError",
    "NoVerdictError",
    "Reading",
    "Source",
    "State",
    "Status",
    "decode",
    "describe",
    "fields",
    "interface_version",
    "open",
]
