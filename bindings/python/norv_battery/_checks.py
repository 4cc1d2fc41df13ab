"""Values on their way to the library: ctypes cuts a number that is too large and takes what is no number for an address."""

from __future__ import annotations

import operator
from typing import Any, Callable, Optional


def whole_number(value: Any, what: str) -> int:
    """The value as an int. True and False are no numbers here."""
    if isinstance(value, bool) or not hasattr(type(value), "__index__"):
        raise TypeError(f"{what} is a whole number, not {value!r}")
    return operator.index(value)


def number_between(value: Any, what: str, lowest: int, highest: int) -> int:
    """The value as an int that is neither below `lowest` nor above `highest`."""
    number = whole_number(value, what)
    if not lowest <= number <= highest:
        raise ValueError(f"{what} is {lowest} to {highest}, not {number}")
    return number


def flag(value: Any, what: str) -> bool:
    """The value, which is True or False: a text such as "no" would be taken for True."""
    if not isinstance(value, bool):
        raise TypeError(f"{what} is True or False, not {value!r}")
    return value


def function(value: Any, what: str) -> Optional[Callable]:
    """The value, which can be called or is None."""
    if value is not None and not callable(value):
        raise TypeError(f"{what} is a function or None, not {value!r}")
    return value


def bytes_of(value: Any, what: str) -> bytes:
    """A copy of the bytes of anything that has some: bytes, a bytearray, a memoryview."""
    try:
        return memoryview(value).tobytes()
    except TypeError:
        raise TypeError(f"{what} is bytes, not {value!r}") from None
