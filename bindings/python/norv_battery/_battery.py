"""One battery."""

from __future__ import annotations

import ctypes
from typing import Generic, Iterator, Optional, TypeVar, overload

from ._checks import bytes_of
from ._errors import Error, Status, check, read_error
from ._fields import Field, Reading, State, field_of, read
from ._handle import Handle, Held
from ._library import library

T = TypeVar("T")


class _Property(Generic[T]):
    """A field as a property: its value, or None where the battery has none to be trusted."""

    def __init__(self, field: Field) -> None:
        self._field = field

    @overload
    def __get__(self, battery: None, owner: type) -> "_Property[T]": ...

    @overload
    def __get__(self, battery: "Battery", owner: type) -> Optional[T]: ...

    def __get__(self, battery, owner):
        if battery is None:
            return self
        reading = battery.read(self._field)
        return reading.value if reading.state == State.VALUE else None

    def __set__(self, battery: "Battery", value: object) -> None:
        raise AttributeError("what a battery answered cannot be set")


class _Text(_Property[str]):
    pass


class _Number(_Property[int]):
    pass


class _Real(_Property[float]):
    pass


class _Flag(_Property[bool]):
    pass


class Battery(Held):
    """The record of one battery: of a slot while its Batteries are open, or of a decoded block.

    Each field is a property, which is None unless the field has a value to be trusted. read() tells more: the state, and
    what the library's own accessor answers in every state.

    It can be neither copied nor pickled (TypeError). It is used by one thread at a time, together with its Batteries
    (InUseError), and not after they are closed (ValueError). What takes a field raises TypeError for what is no whole
    number and ValueError for the number of no field.
    """

    manufacturer = _Text(Field.MANUFACTURER)
    device_name = _Text(Field.DEVICE_NAME)
    serial_number = _Text(Field.SERIAL_NUMBER)
    ct_number = _Text(Field.CT_NUMBER)
    design_capacity = _Number(Field.DESIGN_CAPACITY)
    full_charge_capacity = _Number(Field.FULL_CHARGE_CAPACITY)
    full_charge_capacity_percentage = _Real(Field.FULL_CHARGE_CAPACITY_PERCENTAGE)
    remaining_capacity = _Number(Field.REMAINING_CAPACITY)
    remaining_capacity_percentage = _Real(Field.REMAINING_CAPACITY_PERCENTAGE)
    max_error = _Number(Field.MAX_ERROR)
    cycle_count = _Number(Field.CYCLE_COUNT)
    design_voltage = _Number(Field.DESIGN_VOLTAGE)
    voltage = _Number(Field.VOLTAGE)
    current = _Number(Field.CURRENT)
    temperature = _Number(Field.TEMPERATURE)
    charge_rate = _Number(Field.CHARGE_RATE)
    discharge_rate = _Number(Field.DISCHARGE_RATE)
    cell_voltage_1 = _Number(Field.CELL_VOLTAGE_1)
    cell_voltage_2 = _Number(Field.CELL_VOLTAGE_2)
    cell_voltage_3 = _Number(Field.CELL_VOLTAGE_3)
    cell_voltage_4 = _Number(Field.CELL_VOLTAGE_4)
    status_word = _Number(Field.STATUS_WORD)
    status_error_code = _Text(Field.STATUS_ERROR_CODE)
    fully_discharged = _Flag(Field.FULLY_DISCHARGED)
    fully_charged = _Flag(Field.FULLY_CHARGED)
    discharging = _Flag(Field.DISCHARGING)
    initialized = _Flag(Field.INITIALIZED)
    remaining_time_alarm = _Flag(Field.REMAINING_TIME_ALARM)
    remaining_capacity_alarm = _Flag(Field.REMAINING_CAPACITY_ALARM)
    reserved_bit_10 = _Flag(Field.RESERVED_BIT_10)
    terminate_discharge_alarm = _Flag(Field.TERMINATE_DISCHARGE_ALARM)
    over_temperature_alarm = _Flag(Field.OVER_TEMPERATURE_ALARM)
    reserved_bit_13 = _Flag(Field.RESERVED_BIT_13)
    terminate_charge_alarm = _Flag(Field.TERMINATE_CHARGE_ALARM)
    over_charged_alarm = _Flag(Field.OVER_CHARGED_ALARM)
    manufacturing_date = _Text(Field.MANUFACTURING_DATE)
    warranty_type = _Text(Field.WARRANTY_TYPE)
    warranty_date = _Text(Field.WARRANTY_DATE)
    age = _Number(Field.AGE)
    pack_supplier = _Text(Field.PACK_SUPPLIER)
    cell_supplier = _Text(Field.CELL_SUPPLIER)
    calibration_type = _Text(Field.CALIBRATION_TYPE)
    over_current_protection = _Number(Field.OVER_CURRENT_PROTECTION)
    design_cycle_count = _Text(Field.DESIGN_CYCLE_COUNT)
    ct_assembly = _Text(Field.CT_ASSEMBLY)
    ct_revision = _Text(Field.CT_REVISION)
    ct_supplier = _Text(Field.CT_SUPPLIER)
    ct_manufacturing_week = _Text(Field.CT_MANUFACTURING_WEEK)
    adaptive_battery_optimizer = _Text(Field.ADAPTIVE_BATTERY_OPTIMIZER)
    battery_care = _Text(Field.BATTERY_CARE)
    time_charge = _Number(Field.TIME_CHARGE)
    time_discharge = _Number(Field.TIME_DISCHARGE)
    time_relax = _Number(Field.TIME_RELAX)
    time_sleep = _Number(Field.TIME_SLEEP)
    time_full_charge = _Number(Field.TIME_FULL_CHARGE)
    time_rsoc = _Number(Field.TIME_RSOC)
    level_a_time = _Number(Field.LEVEL_A_TIME)
    level_b_time = _Number(Field.LEVEL_B_TIME)
    level_a_running_time = _Number(Field.LEVEL_A_RUNNING_TIME)
    level_b_running_time = _Number(Field.LEVEL_B_RUNNING_TIME)
    level_a_temperature_1_time = _Number(Field.LEVEL_A_TEMPERATURE_1_TIME)
    level_b_temperature_1_time = _Number(Field.LEVEL_B_TEMPERATURE_1_TIME)
    level_a_temperature_2_time = _Number(Field.LEVEL_A_TEMPERATURE_2_TIME)
    level_b_temperature_2_time = _Number(Field.LEVEL_B_TEMPERATURE_2_TIME)
    test_result = _Number(Field.TEST_RESULT)
    test_label = _Text(Field.TEST_LABEL)
    test_version = _Text(Field.TEST_VERSION)
    valid = _Flag(Field.VALID)

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
