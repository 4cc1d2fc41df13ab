#!/usr/bin/env python3
"""Recording: what `norv-battery record` writes gives the reports of the machine itself, byte by byte.

  record_test.py --tool PROGRAM --schema SCHEMA [--emulator RUNNER]

With --emulator the tool is a Windows program that RUNNER runs.
"""

import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import jsonschema

TOOL = []
SCHEMA = None
MACHINES = pathlib.Path(__file__).resolve().parents[2] / "simulator" / "machines"
OPTIONS = [[], ["--cell-swell"], ["--cell-swell", "--test"]]

BATTERY = {
    "designCapacity": 5000, "fullChargeCapacity": 4500, "serialNumber": "BATT002021-05-06",
    "manufacturer": "123-45-67-A", "ctNumber": "6ABCDEFGHIJKLM", "deviceName": "HT03XL", "manufactureDate": "2021-05-06",
}


def run_tool(*arguments, **more):
    return subprocess.run([*TOOL, *arguments], check=False, capture_output=True, timeout=120,
                          env=dict(os.environ, TZ="UTC"), **more)


class RecordCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.recording = self.path("recording.json")

    def path(self, name):
        return str(pathlib.Path(self.folder.name, name))

    def write(self, name, contents):
        path = self.path(name)
        pathlib.Path(path).write_text(json.dumps(contents), encoding="utf-8")
        return path

    def record(self, machine, *options):
        done = run_tool("record", "--machine", machine, "--output", self.recording, *options)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        self.assertEqual(done.stdout, b"")
        text = pathlib.Path(self.recording).read_text(encoding="utf-8")
        contents = json.loads(text)
        SCHEMA.validate(contents)
        return contents, done

    def report(self, machine, *options):
        done = run_tool("report", "--machine", machine, *options)
        return done.returncode, done.stdout, done.stderr

    def expect_the_same_reports(self, machine, options=None):
        for option in options or OPTIONS:
            with self.subTest(machine=machine, options=option):
                self.record(machine, *option)
                for form in ("text", "json"):
                    expected = self.report(machine, *option, "--format", form)
                    self.assertNotEqual(expected[0], 2, expected[2])
                    self.assertEqual(self.report(self.recording, *option, "--format", form), expected)


class RecordTest(RecordCase):
    def test_every_sample_machine(self):
        names = sorted(path.stem for path in MACHINES.glob("*.json"))
        self.assertGreater(len(names), 20)
        for name in names:
            self.expect_the_same_reports(name)

    def test_machines_that_fail(self):
        faults = [
            {"operation": "SendBiosCommand", "argument": "1,7,1 slot 1", "throws": "string"},
            {"operation": "SendBiosCommand", "argument": "1,86,1 slot 0", "throws": "system_error"},
            {"operation": "SendBiosCommand", "argument": "1,7,1 slot 0", "returnCode": 9},
            {"operation": "Query", "call": 2, "code": "0x80041001"},
            {"operation": "Next", "call": 2, "throws": "int"},
            {"operation": "ReadText", "throws": "other"},
            {"operation": "RunProgram", "code": 740},
            {"operation": "ReadProductVersion", "code": 5},
            {"operation": "ProgramDataFolder", "fails": True},
            {"operation": "LibraryPath", "throws": "text"},
            {"operation": "LocalTimeValue", "call": 2, "fails": True},
            {"operation": "Now", "call": 1, "throws": "unsigned long"},
            {"operation": "FormatSystemMessage", "code": 122},
        ]
        sample = json.loads((MACHINES / "two-batteries.json").read_text(encoding="utf-8"))
        for number, fault in enumerate(faults):
            machine = self.write(f"faults-{number}.json", {**sample, "faults": [fault]})
            self.expect_the_same_reports(machine, [["--cell-swell", "--test"]])
        failing = json.loads((MACHINES / "channel-failure.json").read_text(encoding="utf-8"))
        self.expect_the_same_reports(self.write("message.json", {**failing, "faults": faults[-1:]}))

    def test_a_recording_of_a_file_names_the_file(self):
        machine = self.write("mine.json", {"description": "My machine", "slots": [{"battery": BATTERY}]})
        contents, _ = self.record(machine)
        self.assertEqual(contents["recordedFrom"], {"kind": "file", "name": machine, "description": "My machine"})
        again, _ = self.record(self.recording)
        self.assertEqual(again, contents)

    def test_standard_output_and_exit_statuses(self):
        done = run_tool("record", "--machine", "no-battery")
        self.assertEqual((done.returncode, b"no battery could be read" in done.stderr), (1, True))
        self.assertEqual(json.loads(done.stdout)["slots"], [None, None])
        done = run_tool("record", "--machine", "two-batteries")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertNotIn(b"\r", done.stdout)
        self.assertIn("battery", json.loads(done.stdout)["slots"][1])

    def test_output_that_cannot_be_written(self):
        done = run_tool("record", "--machine", "two-batteries", "--output", self.path("missing/recording.json"))
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertIn(b"--output", done.stderr)
        done = run_tool("record", "--machine", "two-batteries", "--output", self.folder.name)
        self.assertEqual(done.returncode, 2)
        self.assertEqual(list(pathlib.Path(self.folder.name).iterdir()), [])

    def test_wrong_arguments(self):
        for arguments, words in ((["--key", "x"], (b"--key", b"--redact")), (["--redact", "--key", ""], (b"--key",)),
                                 (["--machine", "tow-batteries"], (b"tow-batteries",)), (["--format", "json"], (b"--format",))):
            done = run_tool("record", *arguments)
            self.assertEqual((done.returncode, done.stdout), (2, b""), arguments)
            for word in words:
                self.assertIn(word, done.stderr)

    def test_redacted(self):
        machine = self.write("mine.json", {
            "description": "My machine", "slots": [{"battery": BATTERY}], "testProgram": {"version": "1.2.3.4", "status": 2},
            "modulePath": "C:\\Users\\Karla\\norv-battery-info.dll"})
        plain = json.loads(self.report(machine, "--format", "json", "--test")[1])
        contents, done = self.record(machine, "--test", "--redact", "--key", "a key")
        self.assertEqual(done.stderr, b"")
        self.assertNotIn("Karla", json.dumps(contents))
        redacted = json.loads(self.report(self.recording, "--format", "json", "--test")[1])
        expected, actual = (report["batteries"][0].pop("identity") for report in (plain, redacted))
        self.assertRegex(actual["serialNumber"], "^[A-Z]{4}[0-9]{2}2021-05-06$")
        self.assertRegex(actual["ctNumber"], "^6ABCDEFGHI[A-Z]{4}$")
        self.assertNotEqual(actual["serialNumber"], expected["serialNumber"])
        self.assertNotEqual(actual["ctNumber"], expected["ctNumber"])
        del plain["source"], redacted["source"]
        self.assertEqual(redacted, plain)
        self.assertEqual(self.record(machine, "--test", "--redact", "--key", "a key")[0]["slots"], contents["slots"])
        self.assertNotEqual(self.record(machine, "--redact", "--key", "another")[0]["slots"], contents["slots"])

    def test_a_key_is_made_and_told(self):
        first, done = self.record("two-batteries", "--redact")
        self.assertEqual(done.stderr.count(b"\n"), 1)
        key = re.search(rb"with the key ([0-9a-f]{32}) ", done.stderr)[1].decode()
        second, other = self.record("two-batteries", "--redact")
        self.assertNotEqual(second["slots"], first["slots"])
        self.assertNotIn(key.encode(), other.stderr)
        self.assertEqual(self.record("two-batteries", "--redact", "--key", key)[0]["slots"], first["slots"])

    def test_help(self):
        done = run_tool("record", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for word in (b"--machine", b"--output", b"--cell-swell", b"--test", b"--redact", b"--key", b"Exit status"):
            self.assertIn(word, done.stdout)


class LinuxTest(RecordCase):
    def test_the_batteries_of_a_notebook(self):
        battery = pathlib.Path(self.folder.name, "power_supply", "BAT0")
        battery.mkdir(parents=True)
        values = {"type": "Battery", "scope": "System", "present": "1", "status": "Discharging", "technology": "Li-ion",
                  "voltage_min_design": "11550000", "voltage_now": "11800000", "charge_full_design": "4000000",
                  "charge_full": "3600000", "charge_now": "1800000", "current_now": "900000", "capacity": "57",
                  "cycle_count": "12", "model_name": "HT03XL", "manufacturer": "Maker", "serial_number": "0815"}
        for name, value in values.items():
            (battery / name).write_text(value + "\n", encoding="ascii")
        source = ["--power-supply", str(battery.parent)]
        recording = run_tool("record", *source, "--output", self.recording)
        self.assertEqual((recording.returncode, recording.stderr), (0, b""))
        contents = json.loads(pathlib.Path(self.recording).read_text(encoding="utf-8"))
        SCHEMA.validate(contents)
        self.assertEqual(contents["source"], "the system's battery driver")
        self.assertEqual(contents["slots"][0]["driverStateOfCharge"], 57)
        self.assertEqual(contents["recordedFrom"]["kind"], "folder")
        for form in ("text", "json"):
            expected = run_tool("report", *source, "--format", form)
            self.assertIn(b"0815", expected.stdout)
            self.assertEqual(self.report(self.recording, "--format", form), (0, expected.stdout, expected.stderr))

    def test_the_running_machine(self):
        done = run_tool("record")
        self.assertIn(done.returncode, (0, 1))
        contents = json.loads(done.stdout)
        SCHEMA.validate(contents)
        self.assertEqual(contents["recordedFrom"]["kind"], "machine")
        pathlib.Path(self.recording).write_bytes(done.stdout)
        self.assertIn(b"Battery report of this machine\n", self.report(self.recording)[1])


def main():
    global TOOL, SCHEMA
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--schema", required=True)
    parser.add_argument("--emulator")
    arguments = parser.parse_args()
    TOOL = [os.path.abspath(arguments.tool)]
    if arguments.emulator:
        TOOL.insert(0, arguments.emulator)
        del OPTIONS[:-1]  # a program takes ten times as long to start there
    SCHEMA = jsonschema.Draft202012Validator(json.loads(pathlib.Path(arguments.schema).read_text(encoding="utf-8")))
    cases = [RecordTest] + ([] if arguments.emulator else [LinuxTest])
    tests = unittest.TestSuite(unittest.defaultTestLoader.loadTestsFromTestCase(case) for case in cases)
    result = unittest.TextTestRunner().run(tests)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)


if __name__ == "__main__":
    main()
