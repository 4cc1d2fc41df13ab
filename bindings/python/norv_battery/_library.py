"""The C interface as ctypes sees it."""

from __future__ import annotations

import ctypes
import ctypes.util
import functools
import os
import pathlib
import sys
from ctypes import POINTER, c_char, c_char_p, c_double, c_int32, c_int64, c_size_t, c_uint8, c_uint32, c_void_p

INTERFACE_VERSION = 1
BLOCK_SIZE = 128
SLOT_COUNT = 2

Channel = ctypes.CFUNCTYPE(
    c_int32, c_void_p, c_uint32, c_uint32, c_uint32, POINTER(c_uint8), c_uint32, POINTER(c_uint8), POINTER(c_uint32)
)
Log = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_char_p, c_char_p)


class Options(ctypes.Structure):
    """norv_battery_options"""

    _fields_ = [
        ("size", c_uint32),
        ("flags", c_uint32),
        ("channel", Channel),
        ("channelContext", c_void_p),
        ("log", Log),
        ("logContext", c_void_p),
        ("logLevel", c_int32),
    ]


class ErrorStructure(ctypes.Structure):
    """norv_battery_error"""

    _fields_ = [("size", c_uint32), ("category", c_int32), ("code", c_int64)]


class DescriptionStructure(ctypes.Structure):
    """norv_battery_description"""

    _fields_ = [
        ("size", c_uint32),
        ("field", c_int32),
        ("kind", c_int32),
        ("source", c_int32),
        ("offset", c_uint32),
        ("width", c_uint32),
        ("bit", c_int32),
        ("name", c_char * 48),
        ("unit", c_char * 16),
    ]


class ValueStructure(ctypes.Structure):
    """norv_battery_value"""

    _fields_ = [
        ("size", c_uint32),
        ("field", c_int32),
        ("kind", c_int32),
        ("state", c_int32),
        ("number", c_int64),
        ("real", c_double),
        ("textSize", c_size_t),
    ]


_TEXT = [c_char_p, c_size_t, POINTER(c_size_t)]
_VALUE = [c_int32, POINTER(ValueStructure), c_char_p, c_size_t]

# Everything but the first two answers a status.
_ARGUMENTS = {
    "interface_version": [],
    "field_count": [],
    "status_text": [c_int32, *_TEXT],
    "open": [POINTER(Options), POINTER(c_void_p)],
    "close": [c_void_p],
    "get_record": [c_void_p, c_uint32, POINTER(c_void_p)],
    "decode": [c_char_p, c_size_t, c_char_p, c_size_t, POINTER(c_void_p)],
    "release": [c_void_p],
    "run_test": [c_void_p],
    "collection_error": [c_void_p, POINTER(ErrorStructure)],
    "collection_error_text": [c_void_p, c_int32, *_TEXT],
    "test_error": [c_void_p, POINTER(ErrorStructure)],
    "test_error_text": [c_void_p, c_int32, *_TEXT],
    "describe_field": [c_int32, POINTER(DescriptionStructure)],
    "read_field": [c_void_p, *_VALUE],
    "read_test": [c_void_p, *_VALUE],
    "read_bytes": [c_void_p, c_int32, c_char_p, c_size_t, POINTER(c_size_t)],
    "field_error": [c_void_p, c_int32, POINTER(ErrorStructure)],
    "field_error_text": [c_void_p, c_int32, c_int32, *_TEXT],
}


def _file_name() -> str:
    if sys.platform == "win32":
        return "norv-battery-info.dll"
    return "libnorv-battery-info.dylib" if sys.platform == "darwin" else "libnorv-battery-info.so"


def _candidates() -> list[str]:
    named = os.environ.get("NORV_BATTERY_LIBRARY")
    if named:
        return [named]
    beside = pathlib.Path(__file__).resolve().parent / _file_name()
    found = ctypes.util.find_library("norv-battery-info")
    return [*([str(beside)] if beside.exists() else []), *([found] if found else []), _file_name()]


def _load() -> ctypes.CDLL:
    failures = []
    for name in _candidates():
        try:
            return ctypes.CDLL(name)
        except OSError as failure:
            failures.append(f"  {failure}")
    raise OSError(
        "the library norv-battery-info was not found; NORV_BATTERY_LIBRARY may name its file:\n" + "\n".join(failures)
    )


class Library:
    """The loaded library: library.call("open", ...) is norv_battery_open(...)."""

    def __init__(self) -> None:
        self._library = _load()
        self._functions = {}
        for name, arguments in _ARGUMENTS.items():
            function = getattr(self._library, "norv_battery_" + name)
            function.argtypes = arguments
            function.restype = c_int32
            self._functions[name] = function
        version = self.call("interface_version")
        if version < INTERFACE_VERSION:
            raise OSError(f"the library has interface version {version}; this package needs {INTERFACE_VERSION}")

    def call(self, name: str, *arguments) -> int:
        """Calls a function of the library and gives what it answers."""
        return self._functions[name](*arguments)


@functools.lru_cache(maxsize=None)
def library() -> Library:
    """The library, loaded when it is first needed."""
    return Library()


def interface_version() -> int:
    """The version of the library's C interface."""
    return library().call("interface_version")
