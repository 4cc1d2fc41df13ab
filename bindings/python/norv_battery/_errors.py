"""Statuses, errors and exceptions."""

from __future__ import annotations

import ctypes
import dataclasses
import enum
from typing import Callable, Optional

from ._library import ErrorStructure, library


class Status(enum.IntEnum):
    """What a function of the C interface answers."""

    OK = 0
    INVALID_ARGUMENT = 1
    INVALID_SIZE = 2
    INVALID_SLOT = 3
    UNKNOWN_FIELD = 4
    NO_BATTERY = 5
    NO_BYTES = 6
    NO_VERDICT = 7
    BUFFER_TOO_SMALL = 8
    STOPPED = 9
    BORROWED = 10
    OUT_OF_MEMORY = 11
    INTERNAL_ERROR = 12
    IN_USE = 13


class Category(enum.IntEnum):
    """Where a failure came from."""

    UNKNOWN_EXCEPTION = 1
    STANDARD_EXCEPTION = 2
    SYSTEM_MESSAGE = 3
    WRONG_VALUE = 5


@dataclasses.dataclass(frozen=True)
class Error:
    """A failure that the library stored."""

    category: Category
    code: int  # a return code, a system code or a status, as the category says
    message: str
    type: str  # of the value that carried the code, or of the exception
    function: str  # the qualified name of the operation that failed, or empty

    def __str__(self) -> str:
        place = f" in {self.function}" if self.function else ""
        return f"{self.message.rstrip()} (code {self.code}){place}"


class BatteryError(Exception):
    """A function of the library failed.

    `status` says how, and `error` holds the parts of the library's own error where it stored one.
    """

    def __init__(self, status: Status, error: Optional[Error] = None) -> None:
        super().__init__(status, error)  # what an exception is copied and pickled by
        self.status = status
        self.error = error

    def __str__(self) -> str:
        return status_text(self.status) + (f": {self.error}" if self.error else "")


class NoBatteryError(BatteryError):
    """The slot holds no battery, or it could not be read."""


class NoVerdictError(BatteryError):
    """The battery test gave no verdict."""


class InUseError(RuntimeError):
    """The batteries are in use: by another thread, or by the call that runs the callback this one comes from."""


def read_text(copy: Callable[..., int]) -> str:
    """What copy(buffer, size, needed) gives, however long it is."""
    needed = ctypes.c_size_t()
    check(copy(None, 0, ctypes.byref(needed)))
    buffer = ctypes.create_string_buffer(needed.value)
    check(copy(buffer, needed.value, None))
    return buffer.value.decode("utf-8")


def status_text(status: int) -> str:
    """What a status means, in a few words."""
    return read_text(lambda *buffer: library().call("status_text", status, *buffer))


def check(status: int) -> None:
    """Raises what is not OK."""
    if status == Status.OUT_OF_MEMORY:
        raise MemoryError
    if status != Status.OK:
        raise BatteryError(Status(status))


def read_error(function: str, *handle) -> Optional[Error]:
    """The error that norv_battery_<function>(*handle, ...) tells; None when nothing failed."""
    structure = ErrorStructure(size=ctypes.sizeof(ErrorStructure))
    check(library().call(function, *handle, ctypes.byref(structure)))
    if structure.category == 0:
        return None

    def part(number: int) -> str:
        return read_text(lambda *buffer: library().call(function + "_text", *handle, number, *buffer))

    return Error(Category(structure.category), structure.code, part(0), part(1), part(2))
