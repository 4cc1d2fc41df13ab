"""The batteries of a machine."""

from __future__ import annotations

import contextlib
import ctypes
import dataclasses
import weakref
from typing import Callable, Iterator, Optional

from . import _checks
from ._battery import Battery
from ._ending import calling_back
from ._errors import Error, NoBatteryError, NoVerdictError, Status, check, read_error
from ._fields import Field, LogLevel, Reading, field_of, read
from ._handle import Handle, Held
from ._library import BLOCK_SIZE, SLOT_COUNT, Channel, Log, Options, library

_READ_CELL_SWELL = 1
_RUN_TEST = 2
_FAILED = -2147467259  # E_FAIL: what the library is told when a channel raises


@dataclasses.dataclass(frozen=True)
class Answer:
    """What a channel answers to a command. TypeError or ValueError for anything that the library could not take as it is.

    block        the 128 bytes that the BIOS answered with, when it answered with success; a bytearray or memoryview is copied
    return_code  of the BIOS, 0 to 4294967295; 0 is success
    status       of the channel, in HRESULT form as a signed number of 32 bits; 0: the BIOS answered
    """

    block: bytes = b""
    return_code: int = 0
    status: int = 0

    def __post_init__(self) -> None:
        checked = {
            "block": _checks.bytes_of(self.block, "the block of an answer"),
            "return_code": _checks.number_between(self.return_code, "the return code of an answer", 0, 2**32 - 1),
            "status": _checks.number_between(self.status, "the status of an answer", -(2**31), 2**31 - 1),
        }
        for name, value in checked.items():
            object.__setattr__(self, name, value)
        if self._is_success and len(self.block) != BLOCK_SIZE:
            raise ValueError(f"a channel answers with {BLOCK_SIZE} bytes, not with {len(self.block)}")

    @property
    def _is_success(self) -> bool:
        """Whether the BIOS answered, and with a block."""
        return self.status == 0 and self.return_code == 0


ChannelFunction = Callable[[int, int, int, bytes], Answer]
LogFunction = Callable[[LogLevel, str, str], None]


class _Callbacks:
    """The host's functions as C calls them. What they raise waits until the library has returned."""

    def __init__(self, channel: Optional[ChannelFunction], log: Optional[LogFunction]) -> None:
        self._raised: Optional[BaseException] = None
        self.channel = Channel(self._guarded(self._answer(channel), _FAILED)) if channel is not None else Channel()
        self.log = Log(self._guarded(self._write(log), None)) if log is not None else Log()
        self._around_calls = contextlib.nullcontext() if channel is None and log is None else calling_back

    def call(self, name: str, *arguments) -> int:
        """Calls a function of the library that may call these functions of the host's."""
        with self._around_calls:
            return library().call(name, *arguments)

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
            if not isinstance(given, Answer):
                raise TypeError(f"a channel answers with an Answer, not with {given!r}")
            # A subclass may answer with what nobody has checked.
            given = Answer(given.block, given.return_code, given.status)
            return_code[0] = given.return_code
            if given._is_success:
                ctypes.memmove(output, given.block, BLOCK_SIZE)
            return given.status

        return answer

    @staticmethod
    def _write(log: LogFunction):
        def write(_context, level, function, text) -> None:
            log(LogLevel(level), function.decode("utf-8"), text.decode("utf-8"))

        return write


class Batteries(Held):
    """Both slots of a machine, read once. A context manager: its batteries go when it is closed.

    It can be neither copied nor pickled (TypeError). Its Battery objects and itself are used by one thread at a time, and
    not by a log function that they call: a use meanwhile, closing included, raises InUseError and changes nothing. After it
    is closed each use raises ValueError.
    """

    def __init__(
        self,
        *,
        cell_swell: bool = False,
        test: bool = False,
        channel: Optional[ChannelFunction] = None,
        log: Optional[LogFunction] = None,
        log_level: LogLevel = LogLevel.INFO,
    ) -> None:
        """As open() says."""
        flags = (_READ_CELL_SWELL if _checks.flag(cell_swell, "cell_swell") else 0) | (
            _RUN_TEST if _checks.flag(test, "test") else 0
        )
        callbacks = _Callbacks(_checks.function(channel, "channel"), _checks.function(log, "log"))
        options = Options(
            size=ctypes.sizeof(Options),
            flags=flags,
            channel=callbacks.channel,
            log=callbacks.log,
            logLevel=_checks.number_between(log_level, "log_level", LogLevel.NONE, LogLevel.VERBOSE),
        )
        collection = ctypes.c_void_p()
        status = callbacks.call("open", ctypes.byref(options), ctypes.byref(collection))
        self._callbacks = callbacks
        self._handle = Handle("close", collection.value)
        try:
            callbacks.raise_what_was_raised()
            check(status)
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> "Batteries":
        with self._handle:
            return self

    def __exit__(self, *_exception) -> None:
        self.close()

    def close(self) -> None:
        """Releases the batteries. They answer no more; closing twice is fine. InUseError while they are in use."""
        self._handle.close()

    def get(self, slot: int) -> Optional[Battery]:
        """The battery of slot 0 or 1; None when the slot holds none, or it could not be read."""
        slot = _checks.whole_number(slot, "a slot")
        if slot not in range(SLOT_COUNT):
            raise IndexError(f"there are slots 0 and 1 only, not {slot}")
        record = ctypes.c_void_p()
        with self._handle as handle:
            status = library().call("get_record", handle, slot, ctypes.byref(record))
        if status == Status.NO_BATTERY:
            return None
        check(status)
        return Battery(self._handle, record.value, slot)

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
        with self._handle as handle:
            return read_error("collection_error", handle)

    @property
    def test_error(self) -> Optional[Error]:
        """The last failure of the battery test itself."""
        with self._handle as handle:
            return read_error("test_error", handle)

    def run_test(self) -> None:
        """Runs the battery test and waits for its end, without a time limit. The battery of slot 0 has its verdict.

        Meanwhile nothing else uses these batteries: not another thread, and not the log function, which this one calls.
        """
        callbacks = self._callbacks  # they stay for as long as the library may call them
        with self._handle as handle:
            status = callbacks.call("run_test", handle)
            callbacks.raise_what_was_raised()
        if status == Status.NO_VERDICT:
            raise NoVerdictError(Status.NO_VERDICT, self.test_error or self.error)
        check(status)

    def read_test(self, field: Field) -> Reading:
        """One of the battery test's three fields, as the test itself answers it."""
        number = field_of(field)
        with self._handle as handle:
            return read(lambda *target: library().call("read_test", handle, number, *target))


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
    log_level   how much of it, a LogLevel or another number from 0 to 6

    What channel and log raise is raised again when the library has returned. The interpreter does not end before it has,
    not for a daemon thread either. A value of another kind raises TypeError, a
    number out of its range ValueError, before anything is read.
    """
    return Batteries(cell_swell=cell_swell, test=test, channel=channel, log=log, log_level=log_level)
