"""The fields of a battery. Made of the library's catalogue by `./dev generate`; not to be edited."""

import enum

from ._property import Flag, Number, Real, Text


class Field(enum.IntEnum):
    """Everything that a battery can answer."""

    MANUFACTURER = 1
    DEVICE_NAME = 2
    SERIAL_NUMBER = 3
    CT_NUMBER = 4
    DESIGN_CAPACITY = 5
    FULL_CHARGE_CAPACITY = 6
    FULL_CHARGE_CAPACITY_PERCENTAGE = 7
    REMAINING_CAPACITY = 8
    REMAINING_CAPACITY_PERCENTAGE = 9
    MAX_ERROR = 10
    CYCLE_COUNT = 11
    DESIGN_VOLTAGE = 12
    VOLTAGE = 13
    CURRENT = 14
    TEMPERATURE = 15
    CHARGE_RATE = 16
    DISCHARGE_RATE = 17
    CELL_VOLTAGE_1 = 18
    CELL_VOLTAGE_2 = 19
    CELL_VOLTAGE_3 = 20
    CELL_VOLTAGE_4 = 21
    STATUS_WORD = 22
    STATUS_ERROR_CODE = 23
    FULLY_DISCHARGED = 24
    FULLY_CHARGED = 25
    DISCHARGING = 26
    INITIALIZED = 27
    REMAINING_TIME_ALARM = 28
    REMAINING_CAPACITY_ALARM = 29
    RESERVED_BIT_10 = 30
    TERMINATE_DISCHARGE_ALARM = 31
    OVER_TEMPERATURE_ALARM = 32
    RESERVED_BIT_13 = 33
    TERMINATE_CHARGE_ALARM = 34
    OVER_CHARGED_ALARM = 35
    MANUFACTURING_DATE = 36
    WARRANTY_TYPE = 37
    WARRANTY_DATE = 38
    AGE = 39
    PACK_SUPPLIER = 40
    CELL_SUPPLIER = 41
    CALIBRATION_TYPE = 42
    OVER_CURRENT_PROTECTION = 43
    DESIGN_CYCLE_COUNT = 44
    CT_ASSEMBLY = 45
    CT_REVISION = 46
    CT_SUPPLIER = 47
    CT_MANUFACTURING_WEEK = 48
    ADAPTIVE_BATTERY_OPTIMIZER = 49
    BATTERY_CARE = 50
    TIME_CHARGE = 51
    TIME_DISCHARGE = 52
    TIME_RELAX = 53
    TIME_SLEEP = 54
    TIME_FULL_CHARGE = 55
    TIME_RSOC = 56
    LEVEL_A_TIME = 57
    LEVEL_B_TIME = 58
    LEVEL_A_RUNNING_TIME = 59
    LEVEL_B_RUNNING_TIME = 60
    LEVEL_A_TEMPERATURE_1_TIME = 61
    LEVEL_B_TEMPERATURE_1_TIME = 62
    LEVEL_A_TEMPERATURE_2_TIME = 63
    LEVEL_B_TEMPERATURE_2_TIME = 64
    TEST_RESULT = 65
    TEST_LABEL = 66
    TEST_VERSION = 67
    VALID = 68


class Properties:
    """Each field as a property."""

    manufacturer = Text(Field.MANUFACTURER)
    device_name = Text(Field.DEVICE_NAME)
    serial_number = Text(Field.SERIAL_NUMBER)
    ct_number = Text(Field.CT_NUMBER)
    design_capacity = Number(Field.DESIGN_CAPACITY)
    full_charge_capacity = Number(Field.FULL_CHARGE_CAPACITY)
    full_charge_capacity_percentage = Real(Field.FULL_CHARGE_CAPACITY_PERCENTAGE)
    remaining_capacity = Number(Field.REMAINING_CAPACITY)
    remaining_capacity_percentage = Real(Field.REMAINING_CAPACITY_PERCENTAGE)
    max_error = Number(Field.MAX_ERROR)
    cycle_count = Number(Field.CYCLE_COUNT)
    design_voltage = Number(Field.DESIGN_VOLTAGE)
    voltage = Number(Field.VOLTAGE)
    current = Number(Field.CURRENT)
    temperature = Number(Field.TEMPERATURE)
    charge_rate = Number(Field.CHARGE_RATE)
    discharge_rate = Number(Field.DISCHARGE_RATE)
    cell_voltage_1 = Number(Field.CELL_VOLTAGE_1)
    cell_voltage_2 = Number(Field.CELL_VOLTAGE_2)
    cell_voltage_3 = Number(Field.CELL_VOLTAGE_3)
    cell_voltage_4 = Number(Field.CELL_VOLTAGE_4)
    status_word = Number(Field.STATUS_WORD)
    status_error_code = Text(Field.STATUS_ERROR_CODE)
    fully_discharged = Flag(Field.FULLY_DISCHARGED)
    fully_charged = Flag(Field.FULLY_CHARGED)
    discharging = Flag(Field.DISCHARGING)
    initialized = Flag(Field.INITIALIZED)
    remaining_time_alarm = Flag(Field.REMAINING_TIME_ALARM)
    remaining_capacity_alarm = Flag(Field.REMAINING_CAPACITY_ALARM)
    reserved_bit_10 = Flag(Field.RESERVED_BIT_10)
    terminate_discharge_alarm = Flag(Field.TERMINATE_DISCHARGE_ALARM)
    over_temperature_alarm = Flag(Field.OVER_TEMPERATURE_ALARM)
    reserved_bit_13 = Flag(Field.RESERVED_BIT_13)
    terminate_charge_alarm = Flag(Field.TERMINATE_CHARGE_ALARM)
    over_charged_alarm = Flag(Field.OVER_CHARGED_ALARM)
    manufacturing_date = Text(Field.MANUFACTURING_DATE)
    warranty_type = Text(Field.WARRANTY_TYPE)
    warranty_date = Text(Field.WARRANTY_DATE)
    age = Number(Field.AGE)
    pack_supplier = Text(Field.PACK_SUPPLIER)
    cell_supplier = Text(Field.CELL_SUPPLIER)
    calibration_type = Text(Field.CALIBRATION_TYPE)
    over_current_protection = Number(Field.OVER_CURRENT_PROTECTION)
    design_cycle_count = Text(Field.DESIGN_CYCLE_COUNT)
    ct_assembly = Text(Field.CT_ASSEMBLY)
    ct_revision = Text(Field.CT_REVISION)
    ct_supplier = Text(Field.CT_SUPPLIER)
    ct_manufacturing_week = Text(Field.CT_MANUFACTURING_WEEK)
    adaptive_battery_optimizer = Text(Field.ADAPTIVE_BATTERY_OPTIMIZER)
    battery_care = Text(Field.BATTERY_CARE)
    time_charge = Number(Field.TIME_CHARGE)
    time_discharge = Number(Field.TIME_DISCHARGE)
    time_relax = Number(Field.TIME_RELAX)
    time_sleep = Number(Field.TIME_SLEEP)
    time_full_charge = Number(Field.TIME_FULL_CHARGE)
    time_rsoc = Number(Field.TIME_RSOC)
    level_a_time = Number(Field.LEVEL_A_TIME)
    level_b_time = Number(Field.LEVEL_B_TIME)
    level_a_running_time = Number(Field.LEVEL_A_RUNNING_TIME)
    level_b_running_time = Number(Field.LEVEL_B_RUNNING_TIME)
    level_a_temperature_1_time = Number(Field.LEVEL_A_TEMPERATURE_1_TIME)
    level_b_temperature_1_time = Number(Field.LEVEL_B_TEMPERATURE_1_TIME)
    level_a_temperature_2_time = Number(Field.LEVEL_A_TEMPERATURE_2_TIME)
    level_b_temperature_2_time = Number(Field.LEVEL_B_TEMPERATURE_2_TIME)
    test_result = Number(Field.TEST_RESULT)
    test_label = Text(Field.TEST_LABEL)
    test_version = Text(Field.TEST_VERSION)
    valid = Flag(Field.VALID)
