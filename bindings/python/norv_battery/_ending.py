"""The end of the interpreter, while the library runs functions of the host's."""

from __future__ import annotations

import atexit
import os
import threading


class _CallingBack:
    """`with calling_back:` is around what calls functions of the host's; the interpreter waits for it before it ends.

    A daemon thread that comes back to an ended interpreter is unwound, up to Python 3.13. On its way from a callback it
    would meet C++ code that catches everything, and on Linux that ends the process with an abort.
    """

    def __init__(self) -> None:
        self._start()
        atexit.register(self._wait)
        if hasattr(os, "register_at_fork"):
            os.register_at_fork(after_in_child=self._start)  # where the other threads are not

    def _start(self) -> None:
        self._changed = threading.Condition()
        self._calls = 0
        self._is_ending = False

    def __enter__(self) -> None:
        with self._changed:
            if self._is_ending and threading.current_thread() is not threading.main_thread():
                raise RuntimeError("the interpreter is ending, and functions of it can be called no more")
            self._calls += 1

    def __exit__(self, *_exception) -> None:
        with self._changed:
            self._calls -= 1
            self._changed.notify_all()

    def _wait(self) -> None:
        with self._changed:
            self._is_ending = True
            self._changed.wait_for(lambda: self._calls <= 0)


calling_back = _CallingBack()
