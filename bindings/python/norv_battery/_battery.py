"""One battery."""

from __future__ import annotations

import ctypes
from typing import Iterator, Optional

from ._catalogue import Properties
from ._checks import bytes_of
from ._errors import Error, Status, check, read_error
from ._fields import Field, Plain, Reading, State, field_of, read
from ._handle import Handle, Held
from ._library import library

class Battery(Properties, Held):
    """The record of one battery: of a slot while its Batteries are open, or of a decoded block.

    Each field is a property, which is None unless the field has a value to be trusted. read() tells more: the state, and
    what the library's own accessor answers in every state.

    It can be neither copied nor pickled (TypeError). It is used by one thread at a time, together with its Batteries
    (InUseError), and not after they are closed (ValueError). What takes a field raises TypeError for what is no whole
    number and ValueError for the number of no field.
    """

    def __init__(self, handle: Handle, record: int, slot: Optional[int] = None) -> None:
        """Not for hosts: a battery comes from a Batteries object or from decode()."""
        if not isinstance(handle, Handle):
            raise TypeError("a battery comes from a Batteries object or from decode()")
        self._handle = handle  # the collection's, or the decoded record's own
        self._record = record
        self.slot = slot  # None for a decoded block

    @property
    def cell_voltages(self) -> tuple[int, int, int, int]:
        """The voltages of the four cells; 0 for a cell that the pack lacks."""
        first = Field.CELL_VOLTAGE_1
        return tuple(self.read(Field(first + cell)).value for cell in range(4))

    @property
    def validity_error(self) -> Optional[Error]:
        """Why the battery is not valid."""
        return self.error(Field.VALID)

    @property
    def age_error(self) -> Optional[Error]:
        """Why the battery has no age."""
        return self.error(Field.AGE)

    def read(self, field: Field) -> Reading:
        """Reads a field."""
        number = field_of(field)
        with self._handle:
            return read(lambda *target: library().call("read_field", self._record, number, *target))

    def value(self, field: Field) -> Optional[Plain]:
        """What a field's property gives: its value, or None where the battery has none to be trusted."""
        reading = self.read(field)
        return reading.value if reading.state == State.VALUE else None

    def readings(self) -> Iterator[Reading]:
        """Reads all fields, one after another."""
        count = library().call("field_count")
        return (self.read(field) for field in Field if field <= count)

    def bytes(self, field: Field) -> Optional[bytes]:
        """The firmware's bytes that a field is read from; None when it is not one place of a block that is there."""
        number = field_of(field)
        needed = ctypes.c_size_t()
        with self._handle:
            status = library().call("read_bytes", self._record, number, None, 0, ctypes.byref(needed))
            if status == Status.NO_BYTES:
                return None
            check(status)
            buffer = ctypes.create_string_buffer(needed.value)
            check(library().call("read_bytes", self._record, number, buffer, needed.value, None))
        return buffer.raw

    def error(self, field: Field) -> Optional[Error]:
        """Why a field is not what one would wish; None where nothing failed."""
        number = field_of(field)
        with self._handle:
            return read_error("field_error", self._record, number)


def decode(block: bytes, cell_swell: Optional[bytes] = None) -> Battery:
    """Decodes a block of 128 bytes that was read earlier or elsewhere, and the battery's cell swell protection block.

    Anything that has bytes will do, a bytearray or a memoryview, and is copied; TypeError for anything else, a
    BatteryError with Status.INVALID_SIZE for another number of bytes.
    """
    block = bytes_of(block, "a block")
    cell_swell = None if cell_swell is None else bytes_of(cell_swell, "a cell swell protection block")
    record = ctypes.c_void_p()
    check(library().call("decode", block, len(block), cell_swell, len(cell_swell or b""), ctypes.byref(record)))
    return Battery(Handle("release", record.value), record.value)
