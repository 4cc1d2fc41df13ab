"""The C interface as ctypes sees it."""

from __future__ import annotations

import ctypes
import functools
import os
import pathlib
import sys
from ctypes import POINTER, c_char, c_char_p, c_double, c_int32, c_int64, c_size_t, c_uint8, c_uint32, c_void_p
from typing import NamedTuple, Optional

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
        ("key", c_char * 32),
        ("group", c_char * 24),
        ("label", c_char * 48),
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


# Where LoadLibraryEx looks for a DLL and for what that needs in turn. Neither has PATH or the current folder in it.
_SYSTEM32 = 0x800  # LOAD_LIBRARY_SEARCH_SYSTEM32
_OWN_FOLDER_AND_SYSTEM32 = 0x100 | _SYSTEM32  # LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR

# Where Linux systems keep libraries, those of an administrator's own installations first; each for Debian's names of
# architectures, for systems with both widths, and plain.
_LINUX_FOLDERS = ("/usr/local/lib", "/usr/lib")
_SONAME = "libnorv-battery-info.so.0"


class Candidate(NamedTuple):
    """A file that the library may be."""

    name: str
    winmode: Optional[int] = None  # how Windows searches; elsewhere the name is a whole path


def _windows_candidates(package: str) -> list[Candidate]:
    name = "norv-battery-info.dll"
    beside = str(pathlib.PureWindowsPath(package) / name)
    return [Candidate(beside, _OWN_FOLDER_AND_SYSTEM32), Candidate(name, _SYSTEM32)]


def _linux_candidates(package: str, architecture: Optional[str]) -> list[Candidate]:
    # Whole paths, because a name would be searched in LD_LIBRARY_PATH, where an empty entry means the current folder.
    endings = ([f"/{architecture}"] if architecture else []) + ["64", ""]
    installed = [f"{folder}{ending}/{_SONAME}" for folder in _LINUX_FOLDERS for ending in endings]
    return [Candidate(name) for name in (f"{package}/libnorv-battery-info.so", *installed)]


def candidates(platform: str, named: Optional[str], package: str, architecture: Optional[str]) -> list[Candidate]:
    """The files that the library may be; the first that can be loaded is it.

    platform      sys.platform
    named         the value of NORV_BATTERY_LIBRARY
    package       the folder of this package
    architecture  the name that Debian's systems have for it, "x86_64-linux-gnu"
    """
    is_windows = platform == "win32"
    if not named:
        return _windows_candidates(package) if is_windows else _linux_candidates(package, architecture)
    path = pathlib.PureWindowsPath(named) if is_windows else pathlib.PurePosixPath(named)
    if not path.is_absolute():
        raise OSError(
            f"NORV_BATTERY_LIBRARY names the library's file by its absolute path, not by {named!r}: "
            "what that is would depend on the current folder"
        )
    return [Candidate(str(path), _OWN_FOLDER_AND_SYSTEM32 if is_windows else None)]


def _load() -> ctypes.CDLL:
    package = str(pathlib.Path(__file__).resolve().parent)
    named = os.environ.get("NORV_BATTERY_LIBRARY")
    architecture = getattr(sys.implementation, "_multiarch", None)
    failures = []
    for candidate in candidates(sys.platform, named, package, architecture):
        try:
            return ctypes.CDLL(candidate.name, winmode=candidate.winmode)
        except OSError as failure:
            failures.append(f"  {failure}")
    raise OSError(
        "the library norv-battery-info could not be loaded; NORV_BATTERY_LIBRARY may name its file by an absolute path:\n"
        + "\n".join(failures)
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
