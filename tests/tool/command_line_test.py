#!/usr/bin/env python3
"""The tool as its users meet it: arguments, exit statuses, streams.

  command_line_test.py --tool PROGRAM --version VERSION [--emulator RUNNER]

With --emulator the tool is a Windows program that RUNNER runs.
"""

import argparse
import datetime
import json
import os
import pathlib
import pty
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOL = []
VERSION = ""

BATTERY = {
    "designCapacity": 5000, "fullChargeCapacity": 4500, "remainingCapacity": 3000, "maxError": 2, "cycleCount": 81,
    "temperature": 2982, "voltage": 11800, "current": -1000, "designVoltage": 11550, "batteryStatus": 0x00C0,
    "cellVoltages": [3940, 3928, 3932, 0], "serialNumber": "BATT002021-05-06", "manufacturer": "123-45-67-A",
    "ctNumber": "6ABCDEFGHIJKLM", "deviceName": "HT03XL", "manufactureDate": "2021-05-06",
}


def machine(battery=None, second=None, **more):
    """A machine file's contents; `battery` overrides fields of slot 0, None empties it."""
    first = None if battery is None else {"battery": {**BATTERY, **battery}}
    return {"description": "A machine of a test", "slots": [first, second],
            "clock": {"now": "2024-06-01T12:00:00Z"}, **more}


def test_program(**more):
    return {"version": "1.2.3.4", **more}


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def write(self, name, contents):
        path = pathlib.Path(self.folder.name, name)
        path.write_text(contents if isinstance(contents, str) else json.dumps(contents), encoding="utf-8")
        return str(path)

    def run_tool(self, *arguments, **more):
        more = {"capture_output": True, **more}
        done = subprocess.run([*TOOL, *arguments], check=False, timeout=60, **more)
        done.stdout = (done.stdout or b"").decode("utf-8").replace("\r\n", "\n")
        done.stderr = (done.stderr or b"").decode("utf-8").replace("\r\n", "\n")
        return done

    def report(self, contents, *arguments, **more):
        return self.run_tool("report", "--machine", self.write("machine.json", contents), *arguments, **more)

    def json_report(self, contents, *arguments):
        done = self.report(contents, "--format", "json", *arguments)
        self.assertEqual(done.stderr, "")
        return json.loads(done.stdout)

    def assert_refused(self, done, *parts):
        self.assertEqual(done.returncode, 2, done.stderr)
        self.assertEqual(done.stdout, "")
        self.assertTrue(done.stderr.startswith("norv-battery: "), done.stderr)
        for part in parts:
            self.assertIn(part, done.stderr)


class HelpTest(ToolTest):
    def test_a_machine_that_throws_leaves_a_message_and_no_folder(self):
        temporary = pathlib.Path(self.folder.name, "temporary")
        temporary.mkdir()
        for operation in ("DescribeSlot", "Now", "SendBiosCommand"):
            for thrown, part in (("int", "does not say why"), ("runtime_error", "injected fault")):
                contents = machine({}, testProgram=test_program(), faults=[{"operation": operation, "throws": thrown}])
                for command in (("report", "--test"), ("record", "--test"), ("watch", "--count", "1"), ("encode",)):
                    done = self.run_tool(*command, "--machine", self.write("machine.json", contents),
                                         env={**os.environ, "TMPDIR": str(temporary)})
                    self.assertIn(done.returncode, (0, 1, 2, 4), done.stderr)
                    if done.returncode == 2:
                        self.assertIn(part, done.stderr)
                    # Wine keeps its server's socket in a folder of its own there.
                    left = [name for name in os.listdir(temporary) if not name.startswith("wine-")]
                    self.assertEqual(left, [])

    def test_help_names_the_commands(self):
        done = self.run_tool("--help")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for word in ("report", "machines", "--version"):
            self.assertIn(word, done.stdout)

    def test_help_of_a_report_names_its_options_and_the_exit_statuses(self):
        done = self.run_tool("report", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for word in ("--machine", "--format", "text|json", "--log-level", "none|error|info|verbose", "--cell-swell",
                     "--test", "Exit status", "FAIL"):
            self.assertIn(word, done.stdout)
        self.assertIn("Usage: norv-battery report", done.stdout)

    def test_version(self):
        done = self.run_tool("--version")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, f"norv-battery {VERSION}\n", ""))

    def test_machines_lists_every_sample_with_its_description(self):
        done = self.run_tool("machines")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        lines = dict(re.split(r" {2,}", line, maxsplit=1) for line in done.stdout.splitlines())
        folder = pathlib.Path(__file__).resolve().parents[2] / "simulator" / "machines"
        expected = {path.stem: json.loads(path.read_text(encoding="utf-8"))["description"]
                    for path in folder.glob("*.json")}
        self.assertIn("two-batteries", expected)
        self.assertEqual(lines, expected)


class ArgumentTest(ToolTest):
    def test_nothing_to_do(self):
        self.assert_refused(self.run_tool(), "subcommand", "--help")

    def test_unknown_command_and_option(self):
        self.assert_refused(self.run_tool("reprot"), "command", "'reprot'")
        self.assert_refused(self.run_tool("report", "--colour"), "--colour")
        self.assert_refused(self.run_tool("report", "two-batteries"), "two-batteries")

    def test_values_outside_the_choices(self):
        self.assert_refused(self.run_tool("report", "--format", "xml"), "--format", "'xml'", "text|json")
        self.assert_refused(self.run_tool("report", "--log-level", "loud"), "--log-level", "'loud'",
                            "none|error|info|verbose")
        self.assert_refused(self.run_tool("report", "--format", "JSON"), "'JSON'")

    def test_missing_and_repeated_values(self):
        self.assert_refused(self.run_tool("report", "--machine"), "--machine")
        self.assert_refused(self.run_tool("report", "--format", "text", "--format", "json"), "--format")
        self.assert_refused(self.run_tool("report", "--machine", "two-batteries", "--machine", "no-battery"),
                            "--machine")


    def test_what_is_quoted_is_printable_and_short(self):
        odd = "\x1b[31m\u009b\r\nnorv-battery: fine"
        for arguments in (["report", odd], [odd], ["report", "--" + odd], ["report", "--format", odd],
                          ["watch", "--interval", odd], ["decode", "--date", odd], ["decode", "--jobs", odd],
                          ["report", "--machine", odd], ["report", "--machine", "./" + odd],
                          ["report", "--power-supply", odd], ["encode", "./" + odd], ["encode", "--machine", odd],
                          ["record", "--machine", "two-batteries", "--output", "missing/" + odd]):
            done = self.run_tool(*arguments)
            self.assert_refused(done)
            self.assertIsNone(re.search(r"[^\n -~]", done.stderr), done.stderr)
            self.assertNotIn("\nnorv-battery: fine", done.stderr)
        for arguments in (["report", "x" * 20_000], ["report", "--format", "x" * 20_000], ["x" * 20_000],
                          ["report", "--machine", "x" * 20_000], ["report", "--machine", "./" + "x" * 20_000]):
            done = self.run_tool(*arguments)
            self.assert_refused(done)
            self.assertLess(len(done.stderr), 4000)

    def test_a_token_of_50_megabytes_gives_a_short_message(self):
        for contents in ('{"description": ' + "x" * 50_000_000, '{"description": "' + "x" * 50_000_000):
            done = self.report(contents)
            self.assert_refused(done, "machine.json")
            self.assertLess(len(done.stderr), 4000)
            done = self.run_tool("encode", self.write("rows.json", contents))
            self.assert_refused(done, "rows.json")
            self.assertLess(len(done.stderr), 4000)


class MachineTest(ToolTest):
    def test_neither_sample_nor_file(self):
        self.assert_refused(self.run_tool("report", "--machine", "tow-batteries"), "'tow-batteries'", "sample", "file",
                            "norv-battery machines")

    def test_missing_file(self):
        for name in (self.folder.name + "/missing", "missing.json"):
            self.assert_refused(self.run_tool("report", "--machine", name), name, "cannot open")

    def test_folder(self):
        self.assert_refused(self.run_tool("report", "--machine", self.folder.name), self.folder.name)

    def test_empty_name(self):
        self.assert_refused(self.run_tool("report", "--machine", ""), "--machine")
        self.assert_refused(self.run_tool("report", "--machine="), "--machine")

    def test_file_that_is_no_machine(self):
        self.assert_refused(self.report("{"), "machine.json")
        self.assert_refused(self.report({"description": "A machine", "slot": []}), "machine.json", "slot")
        self.assert_refused(self.report(machine({"cycleCount": 70000})), "machine.json", "cycleCount", "65535")

    def test_sample_wins_over_a_file_of_its_name_unless_the_name_is_that_of_a_file(self):
        self.write("two-batteries", machine({}))
        self.write("elsewhere", machine({}))
        for name, kind in (("two-batteries", "sample"), ("./two-batteries", "file"), ("elsewhere", "file")):
            done = self.run_tool("report", "--format", "json", "--machine", name, cwd=self.folder.name)
            source = json.loads(done.stdout)["source"]
            self.assertEqual((source["kind"], source["name"]), (kind, name))

    def test_running_machine(self):
        # The machine that runs the tests may have batteries, and so does the report of it.
        done = self.run_tool("report")
        self.assertIn(done.returncode, (0, 1))
        self.assertIn("Battery report of this machine\nRead from: the system's battery driver\n", done.stdout)
        self.assertEqual("norv-battery report --machine two-batteries" in done.stderr, done.returncode == 1)
        done = self.run_tool("report", "--format", "json")
        self.assertEqual(json.loads(done.stdout)["source"],
                         {"kind": "machine", "name": "", "description": "", "channel": "the system's battery driver",
                          "isRecording": False, "recordedAt": None})

    def test_machine_without_battery(self):
        done = self.run_tool("report", "--machine", "no-battery")
        self.assertEqual((done.returncode, done.stdout.count("No battery.\n"), done.stderr), (1, 2, ""))
        self.assertTrue(done.stdout.endswith("\nNo slot of the machine holds a battery. That is no failure.\n"))
        self.assertNotRegex(done.stdout, "::|PrivateBiosWMI|Code")
        report = json.loads(self.run_tool("report", "--machine", "no-battery", "--format", "json").stdout)
        self.assertEqual(report["batteries"], [None, None])
        self.assertEqual(report["error"]["code"], 6)

    def test_source_of_the_batteries(self):
        for contents, channel in ((machine({}), "a machine file"), (machine({}, source="the BIOS"), "the BIOS")):
            done = self.report(contents)
            self.assertIn(f"\nA machine of a test\nRead from: {channel}\n\n", done.stdout)
            self.assertEqual(self.json_report(contents)["source"]["channel"], channel)

    def test_state_of_charge_of_the_driver(self):
        contents = machine({"remainingCapacity": 3000, "fullChargeCapacity": 4500})  # 66.666 %
        for told, differs in ((66, False), (67, False), (65, True), (68, True), (None, False)):
            contents["slots"][0].pop("driverStateOfCharge", None)
            if told is not None:
                contents["slots"][0]["driverStateOfCharge"] = told
            capacity = self.json_report(contents)["batteries"][0]["capacity"]
            self.assertEqual((capacity["driverStateOfCharge"], capacity["driverStateOfChargeDiffers"]), (told, differs))
            self.assertEqual(f"{told} %, by its own account" in self.report(contents).stdout, differs)


class PowerSupplyTest(ToolTest):
    def battery(self, **attributes):
        folder = pathlib.Path(self.folder.name, "BAT0")
        folder.mkdir()
        for name, value in {"type": "Battery", **attributes}.items():
            pathlib.Path(folder, name).write_text(f"{value}\n", encoding="utf-8")

    def test_reads_the_folder(self):
        self.battery(charge_full="4500000", charge_now="3000000", capacity="80")
        done = self.run_tool("report", "--power-supply", self.folder.name)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        head = f"Battery report of the power supply folder {self.folder.name}\nRead from: the system's battery driver\n"
        self.assertTrue(done.stdout.startswith(head), done.stdout)
        self.assertIn("Driver's state of charge        80 %", done.stdout)
        report = json.loads(self.run_tool("report", "--power-supply", self.folder.name, "--format", "json").stdout)
        self.assertEqual(report["source"], {"kind": "folder", "name": self.folder.name, "description": "",
                                            "channel": "the system's battery driver", "isRecording": False,
                                            "recordedAt": None})
        self.assertEqual(report["batteries"][0]["capacity"]["driverStateOfCharge"], 80)

    def test_folder_without_battery(self):
        done = self.run_tool("report", "--power-supply", self.folder.name)
        self.assertEqual((done.returncode, done.stdout.count("No battery.\n")), (1, 2))
        self.assertIn(f"the power supply folder {self.folder.name} has no battery. ", done.stderr)
        self.assertIn("norv-battery report --machine two-batteries", done.stderr)

    def test_folder_that_is_no_class(self):
        self.battery()
        for folder in (str(pathlib.Path(self.folder.name, "BAT0")), "/proc/self/task"):
            for command in ("report", "record", "watch"):
                self.assert_refused(self.run_tool(command, "--power-supply", folder), "--power-supply", folder,
                                    "no folder of the power supply class", "'type'")

    def test_log_names_what_did_not_fit(self):
        self.battery(charge_full="70000000", model_name="longer than its field")
        done = self.run_tool("report", "--power-supply", self.folder.name, "--log-level", "info")
        self.assertIn("Battery index 0: the full charge capacity 70000 does not fit: 65535 stands for it", done.stderr)
        self.assertIn('the device name "longer than its field" is cut to its first 7 bytes', done.stderr)

    def test_reads_a_listing(self):
        listing = self.write("notebook.txt", "# a notebook\n/sys/class/power_supply/BAT0/type:Battery\n"
                                             "/sys/class/power_supply/BAT0/charge_full:4500000\nBAT0/capacity: 80\n")
        done = self.run_tool("report", "--power-supply", listing)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        head = f"Battery report of the power supply listing {listing}\nRead from: the system's battery driver\n"
        self.assertTrue(done.stdout.startswith(head), done.stdout)
        report = json.loads(self.run_tool("report", "--power-supply", listing, "--format", "json").stdout)
        self.assertEqual((report["source"]["kind"], report["source"]["name"]), ("listing", listing))
        capacity = report["batteries"][0]["capacity"]
        self.assertEqual((capacity["fullChargeCapacity"], capacity["driverStateOfCharge"]), (4500, 80))

    def test_what_no_driver_told_is_null(self):
        listing = self.write("notebook.txt", "BAT0/type:Battery\nBAT0/status:Discharging\nBAT0/model_name:A long model\n"
                                             "BAT0/technology:Li-ion\nBAT0/energy_full:40000000\nBAT0/capacity:80\n")
        battery = json.loads(self.run_tool("report", "--power-supply", listing, "--format", "json").stdout)["batteries"][0]
        driver = battery["driver"]
        self.assertEqual((driver["modelName"], driver["technology"], driver["fullChargeEnergy"], driver["designEnergy"]),
                         ("A long model", "Li-ion", 40000, None))
        told = {path for path in ("status.flags.discharging", "status.flags.fullyCharged", "identity.deviceName")
                if path not in battery["notTold"]}
        self.assertEqual(len(told), 3)
        for path in battery["notTold"]:
            value = battery
            for key in path.split("[")[0].split("."):
                value = value[key] if value is not None else None
            self.assertIsNone(value, path)
        text = self.run_tool("report", "--power-supply", listing).stdout
        self.assertIn("  Model name                      A long model\n", text)
        self.assertIn("  State of charge                 80 %\n", text)
        for section in ("Cells", "Suppliers and attributes", "BIOS battery care settings", "Validity"):
            self.assertNotIn(f"\n{section}\n", text)
        # What there is can be encoded: the rest of the block is zeros.
        again = self.run_tool("encode", "-", input=json.dumps({"batteries": [battery, None]}).encode())
        self.assertEqual(again.returncode, 0, again.stderr)

    def test_listing_without_battery(self):
        done = self.run_tool("report", "--power-supply", self.write("desktop.txt", "AC/type:Mains\n"))
        self.assertEqual((done.returncode, done.stdout.count("No battery.\n")), (1, 2))

    def test_listing_with_a_bad_line(self):
        listing = self.write("notebook.txt", "BAT0/type:Battery\n\nBAT0/capacity\n")
        for command in ("report", "record", "watch"):
            self.assert_refused(self.run_tool(command, "--power-supply", listing), "--power-supply", listing,
                                "line 3: expected SUPPLY/ATTRIBUTE:VALUE, such as BAT0/capacity:97")

    def test_listing_that_is_none(self):
        fifo = str(pathlib.Path(self.folder.name, "fifo"))
        os.mkfifo(fifo)
        for path in (fifo, "/dev/zero", self.write("large.txt", "#" * (1024 * 1024 + 1))):
            self.assert_refused(self.run_tool("report", "--power-supply", path), "--power-supply", path, "cannot be read",
                                "expected a folder, or a file of at most 1 MiB")

    def test_refuses_what_is_no_folder(self):
        missing = str(pathlib.Path(self.folder.name, "missing"))
        self.assert_refused(self.run_tool("report", "--power-supply", missing), "--power-supply", missing)
        self.assert_refused(self.run_tool("report", "--power-supply", self.folder.name, "--machine", "no-battery"),
                            "--power-supply", "--machine")
        self.assert_refused(self.run_tool("report", "--power-supply", self.write("file", "")), "--power-supply", "file")


class ExitStatusTest(ToolTest):
    def test_one_battery_is_enough_whichever_it_is(self):
        self.assertEqual(self.report(machine({})).returncode, 0)
        self.assertEqual(self.report(machine(None, {"battery": BATTERY})).returncode, 0)

    def test_no_battery(self):
        for contents in (machine(), machine(None, {"batteryReturnCode": 9})):
            done = self.report(contents)
            self.assertEqual((done.returncode, done.stderr), (1, ""))
            self.assertEqual("PrivateBiosWMI error" in done.stdout, contents["slots"][1] is not None)

    def test_verdicts(self):
        for status, expected in ((0, 0), (63, 0), (64, 3), (73, 3), (79, 3), (80, 4), (-64, 4), (112, 0), (144, 0), (-1, 4)):
            done = self.report(machine({}, testProgram=test_program(status=status)), "--test")
            self.assertEqual((status, done.returncode), (status, expected))
            self.assertEqual(done.stderr, "")

    def test_failed_battery_counts_without_a_record_too(self):
        self.assertEqual(self.report(machine(testProgram=test_program(status=64)), "--test").returncode, 3)

    def test_verdict_counts_only_when_asked_for(self):
        self.assertEqual(self.report(machine({}, testProgram=test_program(status=64))).returncode, 0)

    def test_no_verdict_has_a_status_of_its_own_and_one_reason(self):
        cases = ((None, "Error getting version of BatteryTest.exe", "Error getting version of BatteryTest.exe"),
                 (test_program(report="<r/>"), "Battery Test Error - Battery is not supported",
                  "the test program left no report with a status that is a number"))
        for program, message, reason in cases:
            for first in ({}, None):
                contents = machine(first, **({"testProgram": program} if program else {}))
                done = self.report(contents, "--test")
                self.assertEqual((done.returncode, done.stderr), (4, ""))
                self.assertEqual(re.findall("^  (?:Reason|Message) +(.*Test.*|.*test.*)$", done.stdout, re.M), [reason])
                report = self.json_report(contents, "--test")
                self.assertEqual((report["batteryTest"]["result"], report["batteryTest"]["error"]["message"]), (None, message))
                self.assertEqual(report["error"], report["batteryTest"]["error"])


class ReportTest(ToolTest):
    def test_odd_bytes(self):
        contents = machine({"serialNumber": " A\\\u0001\u00ff\u00e9\u007f~ ", "manufacturer": "\n", "ctNumber": "\t"})
        text = self.report(contents).stdout
        self.assertIn(r"\x20A\x5C\x01\xFF\xE9\x7F~\x20" + "\n", text)
        self.assertIsNone(re.search(r"[^\n -~]", text))
        identity = self.json_report(contents)["batteries"][0]["identity"]
        self.assertEqual(identity["serialNumber"], " A\\\u0001\u00ff\u00e9\u007f~ ")
        self.assertEqual(identity["manufacturer"], "\n")

    def test_json_holds_no_control_characters(self):
        path = self.write("machine.json", machine({"serialNumber": "a\x01\x7f\u0080\u009f\u00a0z"}))
        for command in (["report", "--format", "json"], ["watch", "--count", "1", "--format", "jsonl"], ["record"]):
            done = self.run_tool(*command, "--machine", path)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertIsNone(re.search("[\0-\x09\x0b-\x1f\x7f-\x9f]", done.stdout), command)
            if command[0] != "record":  # which writes such a block in hex digits
                self.assertIn("a\\u0001\\u007f\\u0080\\u009f\u00a0z", done.stdout)

    def test_texts_of_a_report_can_be_copied_into_a_machine_file(self):
        identity = self.json_report(machine({"serialNumber": "\u0080\u00c3\u00a9"}))["batteries"][0]["identity"]
        again = self.json_report(machine(identity))["batteries"][0]["identity"]
        self.assertEqual(again, identity)
        self.assertEqual(again["serialNumber"], "\u0080\u00c3\u00a9")

    def test_percentages_have_three_decimals(self):
        contents = machine({"designCapacity": 3000, "fullChargeCapacity": 2999, "remainingCapacity": 1})
        text = self.report(contents).stdout
        self.assertIn("99.966 % of the design capacity\n", text)
        self.assertIn("0.033 % of the full charge capacity\n", text)
        capacity = self.json_report(contents)["batteries"][0]["capacity"]
        self.assertEqual(capacity["fullChargeCapacityPercentage"], 99.966)
        self.assertEqual(capacity["remainingCapacityPercentage"], 0.033)

    def test_percentages_without_a_divisor(self):
        contents = machine({"designCapacity": 0, "fullChargeCapacity": 0})
        text = self.report(contents).stdout
        self.assertIn("not computable (the design capacity is 0)\n", text)
        self.assertIn("not computable (the full charge capacity is 0)\n", text)
        capacity = self.json_report(contents)["batteries"][0]["capacity"]
        self.assertIsNone(capacity["fullChargeCapacityPercentage"])
        self.assertIsNone(capacity["remainingCapacityPercentage"])

    def test_current_is_a_signed_number(self):
        for word, current in ((-1000, -1000), (64536, -1000), (32767, 32767), (32768, -32768), (65535, -1)):
            contents = machine({"current": word})
            self.assertRegex(self.report(contents).stdout, rf"\n  Current +{current}\n")
            self.assertEqual(self.json_report(contents)["batteries"][0]["capacity"]["current"], current)

    def test_age_error_does_not_spoil_validity(self):
        battery = self.json_report(machine({"serialNumber": "0123456789ABCDEF"}))["batteries"][0]
        self.assertEqual(battery["validity"], {"valid": True, "error": None})
        age = battery["dates"]["age"]
        self.assertIsNone(age["days"])
        self.assertEqual(age["value"], 19875)
        self.assertEqual(age["error"]["message"], "Invalid battery serial number")

    def test_defect_of_the_record_is_no_error_of_the_age(self):
        battery = self.json_report(machine({"ctNumber": "7"}))["batteries"][0]
        self.assertEqual(battery["validity"]["valid"], False)
        self.assertEqual(battery["validity"]["error"]["message"], "Invalid battery CT number")
        self.assertEqual(battery["dates"]["age"], {"days": 1122, "value": 1122, "error": None})

    def test_cell_swell_protection_only_when_asked_for(self):
        contents = machine({})
        contents["slots"][0]["cellSwell"] = {"timeCharge": 4660, "levelBTemperature2Time": 65535}
        self.assertNotIn("Cell swell", self.report(contents).stdout)
        self.assertIsNone(self.json_report(contents)["batteries"][0]["cellSwellProtection"])
        self.assertIn("Cell swell", self.report(contents, "--cell-swell").stdout)
        counters = self.json_report(contents, "--cell-swell")["batteries"][0]["cellSwellProtection"]
        self.assertEqual(len(counters), 14)
        self.assertEqual((counters["timeCharge"], counters["levelBTemperature2Time"]), (4660, 65535))

    def test_failed_test_does_not_hide_why_a_battery_is_missing(self):
        report = self.json_report(machine({}, {"batteryReturnCode": 3}), "--test")
        self.assertEqual(report["readError"]["code"], 3)
        self.assertEqual(report["error"]["message"], "Error getting version of BatteryTest.exe")
        text = self.report(machine({}, {"batteryReturnCode": 3}), "--test").stdout
        self.assertIn("The battery could not be read: see the error below.", text)


class LogTest(ToolTest):
    QUALIFIED = "norv::shared::battery::NorvBatteries::NorvBatteries"

    def logged(self, level, contents):
        done = self.report(contents, "--log-level", level)
        self.assertEqual(done.stdout, self.report(contents).stdout)
        return done.stderr.splitlines()

    def test_levels(self):
        broken = machine(None, None)
        self.assertEqual(self.logged("none", broken), [])
        errors = self.logged("error", broken)
        self.assertTrue(any(line.endswith("Error getting battery information") for line in errors), errors)
        self.assertEqual(self.severities(errors), {"error"})
        info = self.logged("info", broken)
        self.assertEqual(self.severities(info), {"error", "info"})
        verbose = self.logged("verbose", broken)
        self.assertEqual(self.severities(verbose), {"error", "info", "verbose"})
        self.assertEqual(len(errors) + sum("Z info: " in line for line in info), len(info))

    def severities(self, lines):
        return {line.split(" ")[1].removesuffix(":") for line in lines}

    def test_line_tells_the_time(self):
        before = int(time.time())
        lines = self.logged("verbose", machine({}))
        self.assertGreater(len(lines), 5)
        for line in lines:
            told = datetime.datetime.strptime(line.split(" ")[0], "%Y-%m-%dT%H:%M:%S%z").timestamp()
            self.assertTrue(before <= told <= time.time(), line)

    def test_line_names_its_function_once(self):
        lines = self.logged("verbose", machine(None, None))
        self.assertTrue(any(line.endswith(f": Finished {self.QUALIFIED}") for line in lines), lines)
        self.assertTrue(any(line.endswith(f": {self.QUALIFIED}: Error getting battery information") for line in lines), lines)
        for line in lines:
            functions = re.findall(r"norv(?:::[A-Za-z]+)+", line)
            self.assertEqual(len(functions), len(set(functions)), line)
            self.assertGreater(len(functions), 0, line)

    def test_lines_are_printable(self):
        for line in self.logged("verbose", machine({})):
            self.assertIsNone(re.search(r"[^ -~]", line), line)


class OutputTest(ToolTest):
    def test_full_device(self):
        with open("/dev/full", "wb") as full:
            for arguments in (["report", "--machine", "two-batteries"], ["machines"], ["--help"], ["--version"]):
                done = self.run_tool(*arguments, capture_output=False, stdout=full, stderr=subprocess.PIPE)
                self.assertEqual(done.returncode, 2)
                self.assertIn("standard output cannot be written to: No space left on device", done.stderr)

    def test_closed_pipe_ends_quietly(self):
        reading, writing = os.pipe()
        os.close(reading)
        try:
            done = self.run_tool("report", "--machine", "two-batteries", capture_output=False, stdout=writing,
                                 stderr=subprocess.PIPE)
        finally:
            os.close(writing)
        self.assertEqual((done.returncode, done.stderr), (2, ""))

    def test_progress_needs_no_thread(self):
        def no_stack():
            resource.setrlimit(resource.RLIMIT_STACK, (1 << 47, resource.getrlimit(resource.RLIMIT_STACK)[1]))
        contents = machine({}, testProgram=test_program(status=0))
        controller, terminal = pty.openpty()
        done = self.report(contents, "--test", capture_output=False, stdout=subprocess.PIPE, stderr=terminal,
                           preexec_fn=no_stack)
        os.close(terminal)
        os.close(controller)
        self.assertEqual((done.returncode, done.stdout), (0, self.report(contents, "--test").stdout))

    def test_progress_on_a_terminal_only(self):
        contents = machine({}, testProgram=test_program(status=0, runsMilliseconds=1500))
        self.assertEqual(self.report(contents, "--test").stderr, "")
        controller, terminal = pty.openpty()
        done = self.report(contents, "--test", capture_output=False, stdout=subprocess.PIPE, stderr=terminal)
        os.close(terminal)
        shown = b""
        try:
            while block := os.read(controller, 65536):
                shown += block
        except OSError:
            pass  # the end of what a terminal holds whose other side is closed
        os.close(controller)
        lines = shown.decode().split("\r")
        self.assertIn("The battery test is running | 0 s", lines)
        self.assertTrue(any(re.fullmatch(r"The battery test is running [|/\\-] 1 s", line) for line in lines), lines)
        self.assertEqual(lines[-1], "")
        self.assertEqual(lines[-2].strip(), "")
        self.assertNotIn("is running", done.stdout)
        self.assertIn("Battery test\n", done.stdout)


class WindowsTest(ToolTest):
    def test_windows_paths(self):
        path = self.write("m\u00e4chine \u20ac.json", machine({}))
        for name in ("Z:" + path, "Z:" + path.replace("/", "\\"), path.replace("/", "\\")):
            done = self.run_tool("report", "--machine", name)
            self.assertEqual((done.returncode, done.stderr), (0, ""), name)

    def test_names_of_files_that_are_made_and_read_again(self):
        folder = pathlib.Path(self.folder.name)
        blocks, rows = folder / "bl\u00f6cke \u96fb\u6c60.bin", folder / "r\u00e9sultat \u20ac.csv"
        done = self.run_tool("encode", "--machine", "two-batteries", "--format", "bin", "--output", f"Z:{blocks}")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(blocks.stat().st_size, 256)
        done = self.run_tool("decode", f"Z:{blocks}", "--format", "csv", "--output", f"Z:{rows}")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("bl\u00f6cke \u96fb\u6c60.bin", rows.read_text(encoding="utf-8"))
        self.assertEqual(sorted(path.name for path in folder.iterdir()), sorted((blocks.name, rows.name)))

    def test_output_files_are_for_nobody_else(self):
        target = pathlib.Path(self.folder.name, "recording.json")
        for rights in (0o000, 0o004):  # Wine makes rights of Linux of the access list; 0 stands for a new file
            if rights:
                target.chmod(0o644)
            done = self.run_tool("record", "--machine", "two-batteries", "--output", f"Z:{target}")
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual(target.stat().st_mode & 0o006, rights)
        self.assertEqual(os.listdir(self.folder.name), [target.name])

    def test_ctrl_c_leaves_no_output_file(self):
        command = subprocess.Popen([*TOOL, "decode", "--output", f"Z:{self.folder.name}/rows.jsonl"],
                                   stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(command.stdin.close)
        for _ in range(3000):
            if os.listdir(self.folder.name):
                break
            time.sleep(0.01)
        self.assertEqual([name[-5:] for name in os.listdir(self.folder.name)], [".part"])
        # The runner is a shell script; Wine makes a Ctrl-C of the signal that its program gets.
        children = pathlib.Path(f"/proc/{command.pid}/task/{command.pid}/children").read_text(encoding="ascii").split()
        for child in children:
            os.kill(int(child), signal.SIGINT)
        command.wait(timeout=60)
        self.assertEqual(os.listdir(self.folder.name), [])

    def test_windows_path_that_is_missing(self):
        self.assert_refused(self.run_tool("report", "--machine", "C:\\no\\machine.json"), "machine.json")

    def test_json_has_no_carriage_returns(self):
        done = subprocess.run([*TOOL, "report", "--machine", "two-batteries", "--format", "json"], check=True,
                              capture_output=True, timeout=60)
        self.assertGreater(done.stdout.count(b"\n"), 10)
        self.assertNotIn(b"\r", done.stdout)

    def test_text_has_the_line_ends_of_windows(self):
        done = subprocess.run([*TOOL, "machines"], check=True, capture_output=True, timeout=60)
        self.assertEqual(done.stdout.count(b"\n"), done.stdout.count(b"\r\n"))


LINUX_ONLY = {
    "test_full_device": "Windows has no device that is always full",
    "test_progress_needs_no_thread": "the limit of the stack is one of Linux",
    "test_closed_pipe_ends_quietly": "the pipe is one of Linux, and breaks for the runner instead",
    "test_progress_on_a_terminal_only": "the terminal is one of Linux, which is no console of Windows",
}


def suite(is_windows):
    classes = [case for case in globals().values() if isinstance(case, type) and issubclass(case, ToolTest)]
    tests = unittest.TestSuite()
    for case in classes:
        if case is ToolTest or case is (PowerSupplyTest if is_windows else WindowsTest):
            continue
        tests.addTests(case(name) for name in unittest.defaultTestLoader.getTestCaseNames(case)
                       if not (is_windows and name in LINUX_ONLY))
    return tests


def main():
    global TOOL, VERSION
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--emulator")
    arguments = parser.parse_args()
    TOOL, VERSION = [os.path.abspath(arguments.tool)], arguments.version
    if arguments.emulator:
        TOOL.insert(0, arguments.emulator)
    result = unittest.TextTestRunner().run(suite(is_windows=bool(arguments.emulator)))
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)


if __name__ == "__main__":
    main()
