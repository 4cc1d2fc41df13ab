"""The package, against the real library that NORV_BATTERY_LIBRARY names."""

import gc
import os
import pathlib
import re
import struct
import sys
import threading
import tomllib
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))

import norv_battery
from norv_battery import Answer, Category, Field, Kind, LogLevel, Source, State, Status

ROOT = pathlib.Path(__file__).resolve().parents[3]
HEADER = ROOT / "include" / "battery" / "norv_battery.h"

INFORMATION = 7
CELL_SWELL = 86


def make_block(*, words=range(101, 115), serial=b"04217 2022-09-14", manufacturer=b"313-54-33-A", ct=b"6FKRA0B2C4D5E6",
               name=b"NV3C52", date=(2022 - 1980) << 9 | 9 << 5 | 12):
    block = bytearray(128)
    struct.pack_into("<14H", block, 0, *words)
    struct.pack_into("16s18s16s", block, 0x1C, serial, manufacturer, ct)
    struct.pack_into("7s", block, 0x4F, name)
    struct.pack_into("<H", block, 0x5C, date)
    return bytes(block)


COUNTERS = struct.pack("<14H", *range(1001, 1015)) + bytes(100)


def one_battery(first, second, third, data):
    assert (first, third, len(data)) == (1, 1, 128)
    if data[0] != 0:
        return Answer(return_code=6)
    return Answer(make_block() if second == INFORMATION else COUNTERS)


class BatteriesTest(unittest.TestCase):
    def test_reads_what_the_channel_answers(self):
        with norv_battery.open(channel=one_battery) as batteries:
            self.assertEqual([battery.slot for battery in batteries], [0])
            self.assertIsNone(batteries.get(1))
            battery = batteries[0]
            self.assertEqual(battery.serial_number, "04217 2022-09-14")
            self.assertEqual(battery.ct_supplier, "B2")
            self.assertEqual(battery.design_capacity, 101)
            self.assertEqual(battery.full_charge_capacity_percentage, 100.98999786376953)
            self.assertEqual(battery.cell_voltages, (111, 112, 113, 114))
            self.assertEqual(battery.manufacturing_date, "2022-09-12T00:00:00+00:00")
            self.assertIs(battery.valid, True)
            self.assertIs(battery.discharging, bool(110 >> 6 & 1))
            self.assertIsNone(battery.time_charge)
            self.assertIsNone(batteries.error)

    def test_reads_cell_swell_data_when_asked_to(self):
        with norv_battery.open(channel=one_battery, cell_swell=True) as batteries:
            self.assertEqual(batteries[0].time_charge, 1001)
            self.assertEqual(batteries[0].level_b_temperature_2_time, 1014)
            self.assertEqual(batteries[0].bytes(Field.TIME_DISCHARGE), struct.pack("<H", 1002))

    def test_a_slot_without_a_battery_says_why(self):
        with norv_battery.open(channel=lambda *_: Answer(return_code=9)) as batteries:
            with self.assertRaises(norv_battery.NoBatteryError) as raised:
                batteries[0]
            error = raised.exception.error
            self.assertEqual(raised.exception.status, Status.NO_BATTERY)
            self.assertEqual((error.category, error.code, error.message), (Category.WRONG_VALUE, 9, "PrivateBiosWMI error"))
            self.assertEqual(error.function, "norv::shared::battery::NorvBatteries::ReadNorvBatteryInfo")
            self.assertEqual(error, batteries.error)
            self.assertIn("PrivateBiosWMI error (code 9)", str(raised.exception))

    def test_the_status_of_the_channel_reaches_the_error(self):
        with norv_battery.open(channel=lambda *_: Answer(status=-2147024891)) as batteries:
            self.assertEqual(batteries.error.category, Category.SYSTEM_MESSAGE)
            self.assertEqual(batteries.error.code, -2147024891)

    def test_reads_this_machine_without_a_channel(self):
        with norv_battery.open() as batteries:
            self.assertTrue(batteries.get(0) is not None or batteries.error is not None)

    def test_slots_are_two(self):
        with norv_battery.open(channel=one_battery) as batteries:
            for slot in (-1, 2):
                with self.assertRaises(IndexError):
                    batteries[slot]

    def test_closed_batteries_answer_no_more(self):
        batteries = norv_battery.open(channel=one_battery)
        battery = batteries[0]
        batteries.close()
        batteries.close()
        for use in (lambda: battery.voltage, lambda: batteries[0], lambda: batteries.error, batteries.run_test,
                    lambda: list(batteries), batteries.__enter__):
            with self.assertRaises(ValueError):
                use()

    def test_what_a_channel_raises_is_raised(self):
        def broken(*_):
            raise KeyError("no such command")

        with self.assertRaisesRegex(KeyError, "no such command"):
            norv_battery.open(channel=broken)
        with self.assertRaisesRegex(ValueError, "128 bytes, not with 3"):
            norv_battery.open(channel=lambda *_: Answer(b"abc"))

    def test_the_test_without_a_program_gives_no_verdict(self):
        with norv_battery.open(channel=one_battery) as batteries:
            with self.assertRaises(norv_battery.NoVerdictError) as raised:
                batteries.run_test()
            self.assertEqual(raised.exception.error, batteries.test_error)
            self.assertEqual(batteries.error.message, "Battery Test Error - Battery is not supported")
            self.assertEqual(batteries.read_test(Field.TEST_RESULT).value, -1)
            self.assertEqual(batteries.read_test(Field.TEST_LABEL).text, "NOT_DEFINED")
            self.assertIsNone(batteries[0].test_result)


class LogTest(unittest.TestCase):
    def test_receives_the_lines_of_its_level(self):
        lines = []
        with norv_battery.open(channel=one_battery, log=lambda *line: lines.append(line)):
            pass
        constructor = "norv::shared::battery::NorvBatteries::NorvBatteries"
        self.assertEqual(lines[0], (LogLevel.INFO, constructor, f"Started {constructor} "))
        self.assertEqual(lines[-1], (LogLevel.INFO, constructor, f"Finished {constructor}"))
        verbose = []
        norv_battery.open(channel=one_battery, log=lambda *line: verbose.append(line), log_level=LogLevel.VERBOSE).close()
        self.assertGreater(len(verbose), len(lines))
        norv_battery.open(channel=one_battery, log=lambda *line: self.fail(line), log_level=LogLevel.ERROR).close()

    def test_what_a_log_raises_is_raised(self):
        def broken(*_):
            raise OSError("disk full")

        with self.assertRaisesRegex(OSError, "disk full"):
            norv_battery.open(channel=one_battery, log=broken)


class BatteryTest(unittest.TestCase):
    def test_decodes_blocks_without_a_machine(self):
        battery = norv_battery.decode(make_block(), COUNTERS)
        self.assertEqual(battery.device_name, "NV3C52")
        self.assertEqual(battery.level_a_time, 1007)
        self.assertIsNone(battery.slot)
        self.assertEqual(battery.read(Field.CHARGE_RATE).state, State.ABSENT)

    def test_refuses_blocks_of_another_size(self):
        for block in (b"", make_block()[:-1], make_block() + b"\0"):
            with self.assertRaises(norv_battery.BatteryError) as raised:
                norv_battery.decode(block)
            self.assertEqual(raised.exception.status, Status.INVALID_SIZE)

    def test_states_say_why_there_is_no_value(self):
        battery = norv_battery.decode(make_block(words=(0,) * 14, date=0, ct=b"6FKR", manufacturer=b"9z9-zz-zz-A", name=b""))
        expected = {
            Field.FULL_CHARGE_CAPACITY_PERCENTAGE: (State.INVALID, -2147483.75),
            Field.MANUFACTURING_DATE: (State.INVALID, ""),
            Field.CT_REVISION: (State.ABSENT, "NA"),
            Field.PACK_SUPPLIER: (State.UNKNOWN, "UNKNOWN"),
            Field.DEVICE_NAME: (State.ABSENT, ""),
            Field.CT_ASSEMBLY: (State.VALUE, "6FKR"),
        }
        for field, (state, value) in expected.items():
            reading = battery.read(field)
            self.assertEqual((reading.state, reading.value), (state, value), field)
            self.assertEqual(getattr(battery, field.name.lower()), value if state == State.VALUE else None)
        self.assertEqual(battery.bytes(Field.MANUFACTURING_DATE), b"\0\0")
        self.assertIsNone(battery.bytes(Field.FULL_CHARGE_CAPACITY_PERCENTAGE))

    def test_errors_of_fields_do_not_mix(self):
        battery = norv_battery.decode(make_block(serial=b"0123456789ABCDEF"))
        self.assertIsNone(battery.age)
        self.assertEqual(battery.age_error.message, "Invalid battery serial number")
        self.assertIs(battery.valid, True)
        self.assertIsNone(battery.validity_error)
        self.assertIsNone(battery.error(Field.VOLTAGE))

    def test_texts_may_hold_any_byte(self):
        self.assertEqual(norv_battery.decode(make_block(manufacturer=bytes(range(0xEE, 0x100)))).manufacturer,
                         "".join(map(chr, range(0xEE, 0x100))))

    def test_cannot_be_set(self):
        with self.assertRaises(AttributeError):
            norv_battery.decode(make_block()).voltage = 1

    def test_each_field_is_a_property(self):
        battery = norv_battery.decode(make_block(), COUNTERS)
        for reading in battery.readings():
            value = getattr(battery, reading.field.name.lower())
            self.assertEqual(value, reading.value if reading.state == State.VALUE else None, reading.field)

    def test_several_threads_decode_at_once(self):
        wrong = []

        def decode(letter):
            number = letter * 14
            for _ in range(300):
                battery = norv_battery.decode(make_block(ct=number.encode()))
                if (battery.ct_assembly, battery.ct_supplier) != (number[:4], number[:2]):
                    wrong.append(letter)

        threads = [threading.Thread(target=decode, args=(letter,)) for letter in "abcd"]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])


class PackageTest(unittest.TestCase):
    def test_has_the_version_of_the_library(self):
        project = tomllib.loads((ROOT / "bindings/python/pyproject.toml").read_text(encoding="utf-8"))["project"]
        cmake = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
        self.assertIn(f"project(norv-battery-info VERSION {project['version']} ", cmake)

    def test_offers_what_it_names(self):
        for name in norv_battery.__all__:
            self.assertTrue(hasattr(norv_battery, name), name)


class DescriptionTest(unittest.TestCase):
    def test_fields_are_the_headers(self):
        text = HEADER.read_text(encoding="utf-8")
        text = text[text.index("enum norv_battery_field {"):]
        named = dict(re.findall(r"NORV_BATTERY_(\w+) = (\d+)", text[:text.index("};")]))
        self.assertEqual({field.name: str(field.value) for field in Field}, named)
        self.assertEqual(len(norv_battery.fields()), len(Field))

    def test_statuses_and_categories_are_the_headers(self):
        text = HEADER.read_text(encoding="utf-8")
        for status in Status:
            self.assertRegex(text, rf"NORV_BATTERY_{status.name} = {status.value}\b")
        for category in Category:
            self.assertRegex(text, rf"NORV_BATTERY_{category.name} = {category.value}\b")

    def test_describes_a_field(self):
        description = norv_battery.describe(Field.OVER_TEMPERATURE_ALARM)
        self.assertEqual((description.name, description.kind, description.unit), ("over temperature alarm", Kind.FLAG, ""))
        self.assertEqual((description.source, description.offset, description.width, description.bit),
                         (Source.INFORMATION_BLOCK, 0x12, 2, 12))
        self.assertIsNone(norv_battery.describe(Field.VOLTAGE).bit)
        self.assertEqual(norv_battery.describe(Field.VOLTAGE).unit, "mV")

    def test_names_say_the_same_as_the_enumeration(self):
        for description in norv_battery.fields():
            self.assertTrue(description.name.replace(" ", "_").upper().endswith(description.field.name))

    def test_the_interface_is_known(self):
        self.assertGreaterEqual(norv_battery.interface_version(), 1)


class MemoryTest(unittest.TestCase):
    def test_ten_thousand_openings_keep_nothing(self):
        def use():
            with norv_battery.open(channel=one_battery, cell_swell=True, log=lambda *_: None) as batteries:
                batteries[0].age, batteries[0].bytes(Field.CT_NUMBER), batteries.error
            norv_battery.decode(make_block())

        for _ in range(500):
            use()
        gc.collect()
        before = self.resident_bytes()
        for _ in range(10000):
            use()
        gc.collect()
        # 400 bytes for each opening would be 4 MB.
        self.assertLess(self.resident_bytes() - before, 2_000_000)

    def test_what_is_not_closed_is_closed_when_it_goes(self):
        batteries = norv_battery.open(channel=one_battery)
        closed = batteries._handle._closing
        battery = batteries[0]
        del batteries
        self.assertEqual(battery.serial_number, "04217 2022-09-14")
        self.assertTrue(closed.alive)
        del battery
        self.assertFalse(closed.alive)

    @staticmethod
    def resident_bytes():
        with open("/proc/self/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


if __name__ == "__main__":
    unittest.main()
