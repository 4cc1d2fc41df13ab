"""The batteries of a machine."""

from __future__ import annotations

import ctypes
import dataclasses
import weakref
from typing import Callable, Iterator, Optional

from ._battery import Battery
from ._errors import Error, NoBatteryError, NoVerdictError, Status, check, read_error
from ._fields import Field, LogLevel, Reading, read
from ._library import BLOCK_SIZE, SLOT_COUNT, Channel, Log, Options, library

_READ_CELL_SWELL = 1
_RUN_TEST = 2
_FAILED = -2147467259  # E_FAIL: what the library is told when a channel raises


@dataclasses.dataclass(frozen=True)
class Answer:
    """What a channel answers to a command."""

    block: bytes = b""  # 128 bytes when the BIOS answered with success
    return_code: int = 0  # of the BIOS
    status: int = 0  # of the channel, in HRESULT form; 0: the BIOS answered


ChannelFunction = Callable[[int, int, int, bytes], Answer]
LogFunction = Callable[[LogLevel, str, str], None]


class _Callbacks:
    """The host's functions as C calls them. What they raise waits until the library has returned."""

    def __init__(self, channel: Optional[ChannelFunction], log: Optional[LogFunction]) -> None:
        self._raised: Optional[BaseException] = None
        self.channel = Channel(self._guarded(self._answer(channel), _FAILED)) if channel else Channel()
        self.log = Log(self._guarded(self._write(log), None)) if log else Log()

    def raise_what_was_raised(self) -> None:
        """Raises the first exception that a function of the host's raised."""
        raised, self._raised = self._raised, None
        if raised is not None:
            raise raised

    def _guarded(self, function, failed):
        # The callback is kept by this object; a strong reference back would be a cycle for the collector to find.
        this = weakref.ref(self)

        def call(*arguments):
            try:
                return function(*arguments)
            except BaseException as raised:  # pylint: disable=broad-except
                owner = this()
                if owner is not None and owner._raised is None:
                    owner._raised = raised
                return failed

        return call

    @staticmethod
    def _answer(channel: ChannelFunction):
        def answer(_context, first, second, third, data, size, output, return_code) -> int:
            given = channel(first, second, third, ctypes.string_at(data, size))
            if given.status == 0:
                if given.return_code == 0 and len(given.block) != BLOCK_SIZE:
                    raise ValueError(f"a channel answers with {BLOCK_SIZE} bytes, not with {len(given.block)}")
                return_code[0] = given.return_code
                ctypes.memmove(output, given.block, min(len(given.block), BLOCK_SIZE))
            return given.status

        return answer

    @staticmethod
    def _write(log: LogFunction):
        def write(_context, level, function, text) -> None:
            log(LogLevel(level), function.decode("utf-8"), text.decode("utf-8"))

        return write


class Batteries:
    """Both slots of a machine, read once. A context manager: its batteries go when it is closed."""

    def __init__(
        self,
        *,
        cell_swell: bool = False,
        test: bool = False,
        channel: Optional[ChannelFunction] = None,
        log: Optional[LogFunction] = None,
        log_level: LogLevel = LogLevel.INFO,
    ) -> None:
        self._callbacks = _Callbacks(channel, log)
        options = Options(
            size=ctypes.sizeof(Options),
            flags=(_READ_CELL_SWELL if cell_swell else 0) | (_RUN_TEST if test else 0),
            channel=self._callbacks.channel,
            log=self._callbacks.log,
            logLevel=log_level,
        )
        handle = ctypes.c_void_p()
        check(library().call("open", ctypes.byref(options), ctypes.byref(handle)))
        self._handle = handle.value
        self._close = weakref.finalize(self, library().call, "close", handle.value)
        try:
            self._callbacks.raise_what_was_raised()
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> "Batteries":
        self.demand_open()
        return self

    def __exit__(self, *_exception) -> None:
        self.close()

    def close(self) -> None:
        """Releases the batteries. They answer no more; closing twice is fine."""
        self._close()

    def demand_open(self) -> None:
        """Raises ValueError when the batteries are closed."""
        if not self._close.alive:
            raise ValueError("these batteries are closed")

    def get(self, slot: int) -> Optional[Battery]:
        """The battery of slot 0 or 1; None when the slot holds none, or it could not be read."""
        self.demand_open()
        if slot not in range(SLOT_COUNT):
            raise IndexError(f"there are slots 0 and 1 only, not {slot}")
        record = ctypes.c_void_p()
        status = library().call("get_record", self._handle, slot, ctypes.byref(record))
        if status == Status.NO_BATTERY:
            return None
        check(status)
        return Battery(record.value, self, slot)

    def __getitem__(self, slot: int) -> Battery:
        battery = self.get(slot)
        if battery is None:
            raise NoBatteryError(Status.NO_BATTERY, self.error)
        return battery

    def __iter__(self) -> Iterator[Battery]:
        for slot in range(SLOT_COUNT):
            battery = self.get(slot)
            if battery is not None:
                yield battery

    @property
    def error(self) -> Optional[Error]:
        """The last failure of a read or of the test. A second slot without a battery is no failure."""
        self.demand_open()
        return read_error("collection_error", self._handle)

    @property
    def test_error(self) -> Optional[Error]:
        """The last failure of the battery test itself."""
        self.demand_open()
        return read_error("test_error", self._handle)

    def run_test(self) -> None:
        """Runs the battery test and waits for its end, without a time limit. The battery of slot 0 has its verdict."""
        self.demand_open()
        status = library().call("run_test", self._handle)
        self._callbacks.raise_what_was_raised()
        if status == Status.NO_VERDICT:
            raise NoVerdictError(Status.NO_VERDICT, self.test_error or self.error)
        check(status)

    def read_test(self, field: Field) -> Reading:
        """One of the battery test's three fields, as the test itself answers it."""
        self.demand_open()
        return read(lambda *target: library().call("read_test", self._handle, field, *target))


def open(  # pylint: disable=redefined-builtin
    *,
    cell_swell: bool = False,
    test: bool = False,
    channel: Optional[ChannelFunction] = None,
    log: Optional[LogFunction] = None,
    log_level: LogLevel = LogLevel.INFO,
) -> Batteries:
    """Reads the batteries of this machine, or of whatever the channel answers for.

    cell_swell  read the cell swell protection data of each battery, too
    test        run the battery test as well
    channel     sends a BIOS command: channel(first, second, third, input) gives an Answer
    log         receives the library's log: log(level, function, text)

    What channel and log raise is raised again when the library has returned.
    """
    return Batteries(cell_swell=cell_swell, test=test, channel=channel, log=log, log_level=log_level)
