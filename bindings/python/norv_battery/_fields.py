"""Fields: their names, descriptions and readings."""

from __future__ import annotations

import ctypes
import dataclasses
import enum
from typing import Callable, Optional, Union

from ._catalogue import Field
from ._checks import number_between
from ._errors import Status, check
from ._library import DescriptionStructure, ValueStructure, library


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
    NOT_TOLD = 4  # where the record was read nobody knows this field


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
    key: str  # in a report as JSON, "fullChargeCapacity"
    group: str  # the JSON object that it lies in, "capacity"
    label: str  # for people, "Full charge capacity"


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
        key=structure.key.decode("ascii"),
        group=structure.group.decode("ascii"),
        label=structure.label.decode("ascii"),
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
