"""Fields: their names, descriptions and readings."""

from __future__ import annotations

import ctypes
import dataclasses
import enum
from typing import Callable, Optional, Union

from ._checks import number_between
from ._errors import Status, check
from ._library import DescriptionStructure, ValueStructure, library


class Field(enum.IntEnum):
    """Everything that a battery can answer."""

    MANUFACTURER = 1
    DEVICE_NAME = 2
    SERIAL_NUMBER = 3
    CT_NUMBER = 4
    DESIGN_CAPACITY = 5
    FULL_CHARGE_CAPACITY = 6
    FULL_CHARGE_CAPACITY_PERCENTAGE = 7
    REMAINING_CAPACITY = 8
    REMAINING_CAPACITY_PERCENTAGE = 9
    MAX_ERROR = 10
    CYCLE_COUNT = 11
    DESIGN_VOLTAGE = 12
    VOLTAGE = 13
    CURRENT = 14
    TEMPERATURE = 15
    CHARGE_RATE = 16
    DISCHARGE_RATE = 17
    CELL_VOLTAGE_1 = 18
    CELL_VOLTAGE_2 = 19
    CELL_VOLTAGE_3 = 20
    CELL_VOLTAGE_4 = 21
    STATUS_WORD = 22
    STATUS_ERROR_CODE = 23
    FULLY_DISCHARGED = 24
    FULLY_CHARGED = 25
    DISCHARGING = 26
    INITIALIZED = 27
    REMAINING_TIME_ALARM = 28
    REMAINING_CAPACITY_ALARM = 29
    RESERVED_BIT_10 = 30
    TERMINATE_DISCHARGE_ALARM = 31
    OVER_TEMPERATURE_ALARM = 32
    RESERVED_BIT_13 = 33
    TERMINATE_CHARGE_ALARM = 34
    OVER_CHARGED_ALARM = 35
    MANUFACTURING_DATE = 36
    WARRANTY_TYPE = 37
    WARRANTY_DATE = 38
    AGE = 39
    PACK_SUPPLIER = 40
    CELL_SUPPLIER = 41
    CALIBRATION_TYPE = 42
    OVER_CURRENT_PROTECTION = 43
    DESIGN_CYCLE_COUNT = 44
    CT_ASSEMBLY = 45
    CT_REVISION = 46
    CT_SUPPLIER = 47
    CT_MANUFACTURING_WEEK = 48
    ADAPTIVE_BATTERY_OPTIMIZER = 49
    BATTERY_CARE = 50
    TIME_CHARGE = 51
    TIME_DISCHARGE = 52
    TIME_RELAX = 53
    TIME_SLEEP = 54
    TIME_FULL_CHARGE = 55
    TIME_RSOC = 56
    LEVEL_A_TIME = 57
    LEVEL_B_TIME = 58
    LEVEL_A_RUNNING_TIME = 59
    LEVEL_B_RUNNING_TIME = 60
    LEVEL_A_TEMPERATURE_1_TIME = 61
    LEVEL_B_TEMPERATURE_1_TIME = 62
    LEVEL_A_TEMPERATURE_2_TIME = 63
    LEVEL_B_TEMPERATURE_2_TIME = 64
    TEST_RESULT = 65
    TEST_LABEL = 66
    TEST_VERSION = 67
    VALID = 68


class Kind(enum.IntEnum):
    """What a field is."""

    NUMBER = 1
    TEXT = 2
    FLAG = 3
    REAL = 4


class State(enum.IntEnum):
    """How far a value is to be trusted."""

    VALUE = 0
    ABSENT = 1  # there is none
    UNKNOWN = 2  # the firmware gave a code without a meaning
    INVALID = 3  # no such thing can be


class Source(enum.IntEnum):
    """Where a field comes from."""

    INFORMATION_BLOCK = 1
    CELL_SWELL_BLOCK = 2
    OPERATING_SYSTEM = 3
    BIOS_SETTINGS = 4
    BATTERY_TEST = 5


class LogLevel(enum.IntEnum):
    """How much of the log one wants."""

    NONE = 0
    ERROR = 2
    INFO = 4
    VERBOSE = 6


@dataclasses.dataclass(frozen=True)
class Description:
    """What there is to know of a field before it is read."""

    field: Field
    name: str  # "full charge capacity"
    kind: Kind
    unit: str  # "mV"; empty where there is none
    source: Source
    offset: int  # of the first byte in the source's block
    width: int  # in bytes; 0 when the field is not one place in a block
    bit: Optional[int]  # of the word there that a flag is


Plain = Union[int, float, bool, str]


@dataclasses.dataclass(frozen=True)
class Reading:
    """What a field answered. In every state value and text are what the library's own accessor answers."""

    field: Field
    state: State
    value: Plain
    text: str


def field_of(value: Field) -> Field:
    """The field, which the library would see as the one of another number if its own does not fit."""
    return Field(number_between(value, "a field", min(Field), max(Field)))


def describe(field: Field) -> Description:
    """Describes a field. TypeError for what is no field's number, ValueError for a number that is none of a field."""
    structure = DescriptionStructure(size=ctypes.sizeof(DescriptionStructure))
    check(library().call("describe_field", field_of(field), ctypes.byref(structure)))
    return Description(
        field=Field(structure.field),
        name=structure.name.decode("ascii"),
        kind=Kind(structure.kind),
        unit=structure.unit.decode("ascii"),
        source=Source(structure.source),
        offset=structure.offset,
        width=structure.width,
        bit=structure.bit if structure.bit >= 0 else None,
    )


def fields() -> list[Description]:
    """Describes all fields that this package knows."""
    count = library().call("field_count")
    return [describe(field) for field in Field if field <= count]


def _plain(structure: ValueStructure, text: str) -> Plain:
    if structure.kind == Kind.TEXT:
        return text
    if structure.kind == Kind.REAL:
        return structure.real
    return bool(structure.number) if structure.kind == Kind.FLAG else structure.number


def read(call: Callable[..., int]) -> Reading:
    """The reading that call(value, text, size) gives. Few texts are longer than the first buffer."""
    structure = ValueStructure(size=ctypes.sizeof(ValueStructure))
    buffer = ctypes.create_string_buffer(64)
    status = call(ctypes.byref(structure), buffer, len(buffer))
    if status == Status.BUFFER_TOO_SMALL:
        buffer = ctypes.create_string_buffer(structure.textSize)
        status = call(ctypes.byref(structure), buffer, len(buffer))
    check(status)
    text = buffer.value.decode("utf-8")
    return Reading(Field(structure.field), State(structure.state), _plain(structure, text), text)
