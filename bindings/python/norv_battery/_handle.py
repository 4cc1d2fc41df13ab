"""What the library holds for this package, and when it may be used."""

from __future__ import annotations

import threading
import weakref

from ._errors import InUseError
from ._library import library


def _close_unless_in_use(in_use: threading.Lock, function: str, value: int) -> None:
    # At the end of the interpreter another thread may be in the middle of a use: its handle goes with the process.
    if in_use.acquire(blocking=False):
        library().call(function, value)
        in_use.release()


class Handle:
    """A handle of the library's. `with handle as value:` is a use: one at a time, and none after the handle is closed.

    A use is refused and does not wait: the thread that a callback runs on would wait for itself.
    """

    def __init__(self, function: str, value: int) -> None:
        """Function is the library's that closes the handle, at the latest when this object goes."""
        self._in_use = threading.Lock()
        self._function = function
        self._value = value
        self._closing = weakref.finalize(self, _close_unless_in_use, self._in_use, function, value)

    def __enter__(self) -> int:
        self._begin()
        if not self._closing.alive:
            self._in_use.release()
            raise ValueError("these batteries are closed")
        return self._value

    def __exit__(self, *_exception) -> None:
        self._in_use.release()

    def close(self) -> None:
        """Closes the handle. Closing twice is fine."""
        self._begin()
        try:
            if self._closing.detach():
                library().call(self._function, self._value)
        finally:
            self._in_use.release()

    def _begin(self) -> None:
        if not self._in_use.acquire(blocking=False):
            raise InUseError(
                "these batteries are in use, by another thread or by the call that this function is called from"
            )


class Held:
    """A base of what has a handle. The handle's value means nothing in a copy that outlives it, or in another process."""

    def __reduce_ex__(self, protocol):
        raise TypeError(
            f"{type(self).__name__} objects stand for what the library holds in this process: "
            "they can be neither copied nor pickled; keep their readings or their blocks"
        )
