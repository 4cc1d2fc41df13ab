#!/usr/bin/env python3
"""Watching: readings that follow on one another, on a terminal and not, and how a watch ends.

  watch_test.py --tool PROGRAM [--emulator RUNNER]

With --emulator the tool is a Windows program that RUNNER runs.
"""

import argparse
import fcntl
import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

TOOL = []
BATTERY = {"designCapacity": 5000, "fullChargeCapacity": 4500, "remainingCapacity": 3000, "voltage": 11800,
           "current": -1000, "batteryStatus": 0x00C0, "cellVoltages": [3940, 3928, 3932], "serialNumber": "BATT002021-05-06",
           "deviceName": "HT03XL"}


def answer(battery, slot=0):
    result = {"returnCode": 6} if battery is None else {"battery": {**BATTERY, **battery}}
    return {"operation": "SendBiosCommand", "argument": f"1,7,1 slot {slot}", **result}


def changing(*batteries):
    """A machine with these batteries in slot 0, one a reading; None for none. Slot 1 holds one all the time."""
    return {"description": "A machine of a test", "slots": [None, {"battery": {**BATTERY, "serialNumber": "other"}}],
            "clock": {"now": "2024-06-01T12:00:00Z"}, "answers": [answer(battery) for battery in batteries]}


STORY = changing({}, {"voltage": 11790, "cellVoltages": [3940, 3918, 3932]}, None, {"serialNumber": "NEW"}, {"serialNumber": "NEW"})


class WatchTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def write(self, contents):
        path = pathlib.Path(self.folder.name, "machine.json")
        path.write_text(json.dumps(contents), encoding="utf-8")
        return str(path)

    def run_watch(self, contents, *arguments):
        done = subprocess.run([*TOOL, "watch", "--machine", self.write(contents), "--interval", "0.01", *arguments],
                              check=False, capture_output=True, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return done.stdout

    def start(self, contents, *arguments, **more):
        return subprocess.Popen([*TOOL, "watch", "--machine", self.write(contents), *arguments], **more)


class LinesTest(WatchTest):
    def test_one_line_of_json_a_reading(self):
        output = self.run_watch(STORY, "--count", "5")
        self.assertNotIn(b"\r", output)
        readings = [json.loads(line) for line in output.decode().splitlines()]
        self.assertEqual([reading["reading"] for reading in readings], [1, 2, 3, 4, 5])
        self.assertEqual({reading["time"] for reading in readings}, {"2024-06-01T12:00:00Z"})
        self.assertEqual(readings[0]["changed"], [])
        self.assertEqual(readings[1]["changed"],
                         ["batteries[0].capacity.voltage", "batteries[0].cells.voltages[1]", "batteries[0].cells.spread"])
        self.assertEqual(readings[1]["batteries"][0]["capacity"]["voltage"], 11790)
        self.assertEqual(readings[2]["changed"], ["batteries[0]", "readError"])
        self.assertIsNone(readings[2]["batteries"][0])
        self.assertEqual(readings[2]["batteries"][1]["identity"]["serialNumber"], "other")
        self.assertEqual(readings[3]["changed"], ["batteries[0]", "readError"])
        self.assertEqual(readings[3]["batteries"][0]["identity"]["serialNumber"], "NEW")
        self.assertEqual(readings[4]["changed"], [])

    def test_a_reading_is_that_of_a_report(self):
        machine = json.loads(json.dumps(STORY))
        report = subprocess.run([*TOOL, "report", "--format", "json", "--cell-swell", "--machine", self.write(machine)],
                                check=True, capture_output=True, timeout=60)
        reading = json.loads(self.run_watch(machine, "--count", "1", "--cell-swell", "--format", "jsonl"))
        for key in ("batteries", "readError"):
            self.assertEqual(reading[key], json.loads(report.stdout)[key])

    def test_text_tells_changes(self):
        output = self.run_watch(STORY, "--count", "5", "--format", "text").decode().replace("\r\n", "\n")
        blocks = output.split("Reading ")[1:]
        self.assertEqual(blocks[0], "1, 2024-06-01T12:00:00Z\n  Battery 1  present: HT03XL, serial number BATT002021-05-06\n"
                                    "  Battery 2  present: HT03XL, serial number other\n")
        self.assertEqual(blocks[1], "2, 2024-06-01T12:00:00Z\n  Battery 1  capacity.voltage  11800 -> 11790\n"
                                    "  Battery 1  cells.voltages[1]  3928 -> 3918\n  Battery 1  cells.spread  12 -> 22\n")
        self.assertIn("  Battery 1  removed\n", blocks[2])
        self.assertIn("  Battery 1  put in: HT03XL, serial number NEW\n", blocks[3])
        self.assertEqual(blocks[4], "5, 2024-06-01T12:00:00Z\n  no change\n")

    def test_a_percentage_that_cannot_be_computed_is_none(self):
        machine = changing({}, {"fullChargeCapacity": 0}, {})
        readings = [json.loads(line) for line in self.run_watch(machine, "--count", "3").splitlines()]
        self.assertIsNone(readings[1]["batteries"][0]["capacity"]["remainingCapacityPercentage"])
        text = self.run_watch(machine, "--count", "3", "--format", "text").decode()
        self.assertIn("capacity.remainingCapacityPercentage  66.666 -> not computable (the full charge capacity is 0)", text)
        self.assertIn("capacity.remainingCapacityPercentage  not computable -> 66.666", text)

    def test_an_empty_slot_is_no_error_but_in_json(self):
        machine = changing({}, None, {}, {})
        machine["answers"][3] = {**answer(None), "returnCode": 9}
        text = self.run_watch(machine, "--count", "4", "--format", "text").decode().replace("\r\n", "\n")
        blocks = text.split("Reading ")[1:]
        self.assertEqual(blocks[1].splitlines()[1:], ["  Battery 1  removed"])
        self.assertEqual(len(blocks[2].splitlines()), 2)
        self.assertIn("  readError  none -> PrivateBiosWMI error\n", blocks[3])
        readings = [json.loads(line) for line in self.run_watch(machine, "--count", "2").splitlines()]
        self.assertEqual(readings[1]["readError"]["code"], 6)

    def test_a_current_is_a_signed_number(self):
        machine = changing({}, {"current": 900})
        text = self.run_watch(machine, "--count", "2", "--format", "text").decode()
        self.assertIn("capacity.current  -1000 -> 900", text)
        self.assertEqual(json.loads(self.run_watch(machine, "--count", "1"))["batteries"][0]["capacity"]["current"], -1000)

    def test_a_battery_that_cannot_be_read_for_a_while(self):
        machine = {**STORY, "answers": [answer({}), {**answer(None), "returnCode": 9}, answer({})]}
        lines = self.run_watch(machine, "--count", "3").splitlines()
        self.assertEqual(json.loads(lines[1])["readError"]["code"], 9)
        self.assertIsNone(json.loads(lines[2])["readError"])
        self.assertIsNotNone(json.loads(lines[2])["batteries"][0])

    def test_the_interval_passes_between_readings(self):
        start = time.monotonic()
        done = subprocess.run([*TOOL, "watch", "--machine", self.write(STORY), "--interval", "0.4", "--count", "3"],
                              check=True, capture_output=True, timeout=60)
        self.assertGreater(time.monotonic() - start, 0.8)
        self.assertEqual(done.stdout.count(b"\n"), 3)


class ArgumentTest(WatchTest):
    def test_wrong_values_are_refused(self):
        for option, values in (("--interval", ("0", "-1", "nan", "inf", "1e9", "0.001", "5s", "", "0x10")),
                               ("--count", ("0", "-1", "1.5", "many")), ("--format", ("json", "table"))):
            for value in values:
                done = subprocess.run([*TOOL, "watch", "--machine", "two-batteries", f"{option}={value}"], check=False,
                                      capture_output=True, timeout=60)
                self.assertEqual((done.returncode, done.stdout), (2, b""), (option, value))
                self.assertIn(option.encode(), done.stderr)
        done = subprocess.run([*TOOL, "watch", "--interval", "nan"], check=False, capture_output=True, timeout=60)
        self.assertIn(b"'nan' is no number of seconds from 0.01 to 86400", done.stderr)

    def test_help(self):
        done = subprocess.run([*TOOL, "watch", "--help"], check=True, capture_output=True, timeout=60)
        for word in (b"--machine", b"--interval", b"--count", b"text|jsonl", b"--cell-swell", b"Exit status"):
            self.assertIn(word, done.stdout)


class LinuxTest(WatchTest):
    """Signals, pipes and terminals of Linux."""

    def test_an_interrupt_ends_it_at_once_and_whole(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            watch = self.start(STORY, "--interval", "3600", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            line = watch.stdout.readline()
            start = time.monotonic()
            watch.send_signal(number)
            rest, errors = watch.communicate(timeout=30)
            self.assertLess(time.monotonic() - start, 10)
            self.assertEqual((watch.returncode, rest, errors), (0, b"", b""))
            self.assertEqual(json.loads(line)["reading"], 1)

    def test_every_line_of_an_interrupted_watch_is_whole(self):
        watch = self.start(STORY, "--interval", "0.01", stdout=subprocess.PIPE)
        for _ in range(3):
            watch.stdout.readline()
        watch.send_signal(signal.SIGINT)
        rest, _ = watch.communicate(timeout=30)
        self.assertEqual(watch.returncode, 0)
        for line in rest.splitlines(keepends=True):
            self.assertTrue(line.endswith(b"\n"))
            json.loads(line)

    def test_an_interrupt_ends_it_while_its_pipe_is_full(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            watch = self.start(STORY, "--interval", "0.01", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            before = -1
            while before != (now := struct.unpack("i", fcntl.ioctl(watch.stdout, termios.FIONREAD, bytes(4)))[0]) or now == 0:
                before = now
                time.sleep(0.5)
            watch.send_signal(number)
            self.assertEqual(watch.wait(timeout=30), 0)
            self.assertEqual(watch.communicate()[1], b"")

    def test_what_is_ignored_when_it_starts_stays_ignored(self):
        for number in (signal.SIGHUP, signal.SIGINT):
            watch = self.start(STORY, "--interval", "0.01", stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               preexec_fn=lambda number=number: signal.signal(number, signal.SIG_IGN))
            watch.stdout.readline()
            watch.send_signal(number)
            for _ in range(30):
                self.assertTrue(watch.stdout.readline())
            watch.send_signal(signal.SIGTERM)
            self.assertEqual(watch.communicate(timeout=30)[1], b"")
            self.assertEqual(watch.returncode, 0)

    def test_a_closed_pipe_ends_it_quietly(self):
        for interval in ("0.01", "3600"):
            watch = self.start(STORY, "--interval", interval, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            watch.stdout.readline()
            watch.stdout.close()
            self.assertEqual(watch.stderr.read(), b"")
            self.assertEqual(watch.wait(timeout=30), 2)
            watch.stderr.close()

    def test_a_notebook_whose_pack_is_taken_out_and_put_back(self):
        battery = pathlib.Path(self.folder.name, "power_supply", "BAT0")
        values = {"type": "Battery", "present": "1", "voltage_now": "11800000", "charge_full_design": "4000000",
                  "charge_full": "3600000", "charge_now": "1800000", "serial_number": "0815"}

        def put_in():
            battery.mkdir(parents=True)
            for name, value in values.items():
                (battery / name).write_text(value + "\n", encoding="ascii")

        put_in()
        watch = subprocess.Popen([*TOOL, "watch", "--power-supply", str(battery.parent), "--interval", "0.05"],
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE)

        def wait_for(condition):
            for line in watch.stdout:
                if condition(json.loads(line)):
                    return
            self.fail("the watch ended")

        wait_for(lambda reading: reading["batteries"][0] is not None)
        (battery / "voltage_now").write_text("11700000\n", encoding="ascii")
        wait_for(lambda reading: "batteries[0].capacity.voltage" in reading["changed"])
        shutil.rmtree(battery)
        wait_for(lambda reading: reading["batteries"][0] is None and "batteries[0]" in reading["changed"])
        put_in()
        wait_for(lambda reading: reading["batteries"][0] is not None and "batteries[0]" in reading["changed"])
        watch.send_signal(signal.SIGINT)
        self.assertEqual(watch.communicate(timeout=30)[1], b"")
        self.assertEqual(watch.returncode, 0)

    def test_a_listing_that_is_replaced(self):
        listing = pathlib.Path(self.folder.name, "notebook.txt")

        def write(voltage):
            written = listing.with_suffix(".new")
            written.write_text(f"BAT0/type:Battery\nBAT0/voltage_now:{voltage}000\n", encoding="ascii")
            written.rename(listing)

        write(11800)
        watch = subprocess.Popen([*TOOL, "watch", "--power-supply", listing, "--interval", "0.05"], stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE)
        self.assertEqual(json.loads(watch.stdout.readline())["batteries"][0]["capacity"]["voltage"], 11800)
        write(11700)
        changes = (json.loads(line) for line in watch.stdout)
        changed = next(reading for reading in changes if "batteries[0].capacity.voltage" in reading["changed"])
        self.assertEqual(changed["batteries"][0]["capacity"]["voltage"], 11700)
        watch.send_signal(signal.SIGINT)
        self.assertEqual(watch.communicate(timeout=30)[1], b"")
        self.assertEqual(watch.returncode, 0)

    def watch_on_terminal(self, *arguments, kind="xterm"):
        controller, terminal = pty.openpty()
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 100, 0, 0))
        watch = self.start(STORY, "--interval", "0.05", *arguments, stdout=terminal, stdin=terminal,
                           env=dict(os.environ, TERM=kind), start_new_session=True)
        os.close(terminal)
        return watch, controller

    def read_all(self, controller):
        shown = b""
        try:
            while select.select([controller], [], [], 30)[0]:
                block = os.read(controller, 65536)
                if not block:
                    break
                shown += block
        except OSError:
            pass  # the end of what a terminal holds whose other side is closed
        os.close(controller)
        return shown.decode().replace("\r\n", "\n")

    def test_a_terminal_shows_a_table(self):
        watch, controller = self.watch_on_terminal("--count", "4")
        shown = self.read_all(controller)
        self.assertEqual(watch.wait(timeout=30), 0)
        self.assertTrue(shown.startswith("\x1b[2J\x1b[H"))
        screens = shown.split("\x1b[H")[1:]
        self.assertEqual(len(screens), 4)
        for number, screen in enumerate(screens, 1):
            self.assertIn(f"Reading {number}, 2024-06-01T12:00:00Z\x1b[K\n", screen)
            self.assertTrue(screen.endswith("\x1b[J"), repr(screen[-20:]))
            for line in screen.split("\n")[:-1]:
                self.assertTrue(line.endswith("\x1b[K"), line)
                self.assertLessEqual(len(re.sub(r"\x1b\[[0-9]*[A-Za-z]", "", line)), 120)
        self.assertRegex(screens[0], r"\nVoltage +11800 +11800\x1b")
        self.assertRegex(screens[0], r"\nCurrent +-1000 +-1000\x1b")
        self.assertRegex(screens[1], r"\nVoltage +\x1b\[1m\*11790 +\x1b\[0m +11800\x1b")
        self.assertRegex(screens[1], r"\nDesign capacity +5000 +5000\x1b")
        self.assertRegex(screens[2], r"\x1b\[1m\*removed +\x1b\[0m +present")
        self.assertRegex(screens[3], r"\x1b\[1m\*put in +\x1b\[0m +present")
        self.assertNotIn("Last error", shown)

    def test_a_key_of_the_terminal_ends_it(self):
        watch, controller = self.watch_on_terminal()
        seen = b""
        while b"Reading 2" not in seen:
            seen += os.read(controller, 65536)
        os.killpg(watch.pid, signal.SIGINT)
        self.read_all(controller)
        self.assertEqual(watch.wait(timeout=30), 0)

    def test_a_terminal_without_sequences_shows_text(self):
        watch, controller = self.watch_on_terminal("--count", "2", kind="dumb")
        shown = self.read_all(controller)
        self.assertEqual(watch.wait(timeout=30), 0)
        self.assertNotIn("\x1b", shown)
        self.assertIn("Battery 1  capacity.voltage  11800 -> 11790\n", shown)

    def test_json_on_a_terminal_where_it_is_asked_for(self):
        watch, controller = self.watch_on_terminal("--count", "2", "--format", "jsonl")
        lines = self.read_all(controller).splitlines()
        self.assertEqual(watch.wait(timeout=30), 0)
        self.assertEqual([json.loads(line)["reading"] for line in lines], [1, 2])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--emulator")
    arguments = parser.parse_args()
    TOOL.append(os.path.abspath(arguments.tool))
    if arguments.emulator:
        TOOL.insert(0, arguments.emulator)
    cases = [LinesTest, ArgumentTest] + ([] if arguments.emulator else [LinuxTest])
    tests = unittest.TestSuite(unittest.defaultTestLoader.loadTestsFromTestCase(case) for case in cases)
    result = unittest.TextTestRunner().run(tests)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)


if __name__ == "__main__":
    main()
