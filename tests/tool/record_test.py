#!/usr/bin/env python3
"""Recording: what `norv-battery record` writes gives the reports of the machine itself, byte by byte.

  record_test.py --tool PROGRAM --schema SCHEMA [--emulator RUNNER]

With --emulator the tool is a Windows program that RUNNER runs.
"""

import argparse
import base64
import html
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

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


# The head of a report of a recording, which says that it is one and when it was made; the rest is that of the machine.
HEAD = re.compile(rb'^Battery report of a recording of (.*\r?\n)(?:Recorded [^\r\n]*\r?\n)?|"isRecording": true,\n *"recordedAt": [^\n]*')
OF_THE_MACHINE_ITSELF = {b"B": rb"Battery report of \1", b'"': b'"isRecording": false,\n    "recordedAt": null'}


def without_head(report):
    return HEAD.sub(lambda found: found.expand(OF_THE_MACHINE_ITSELF[found[0][:1]]), report)


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
                    status, report, errors = self.report(self.recording, *option, "--format", form)
                    self.assertEqual((status, without_head(report), errors), expected)


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

    def test_the_head_says_that_it_is_a_recording(self):
        contents, _ = self.record("two-batteries")
        clock = contents["clock"]["now"].encode()
        text = self.report(self.recording)[1].replace(b"\r\n", b"\n")
        self.assertTrue(text.startswith(b"Battery report of a recording of the simulated machine two-batteries\n"
                                        b"Recorded " + clock + b", by the clock of that machine\n"), text[:200])
        source = json.loads(self.report(self.recording, "--format", "json")[1])["source"]
        self.assertEqual((source["isRecording"], source["recordedAt"]), (True, clock.decode()))
        watched = run_tool("record", "--machine", self.recording)
        self.assertEqual(json.loads(watched.stdout), contents)

    def test_a_recording_without_a_clock_does_not_say_when(self):
        contents, _ = self.record("two-batteries")
        del contents["clock"]
        self.write("recording.json", contents)
        self.assertNotIn(b"Recorded ", self.report(self.recording)[1])
        source = json.loads(self.report(self.recording, "--format", "json")[1])["source"]
        self.assertEqual((source["isRecording"], source["recordedAt"]), (True, None))

    def test_a_recording_of_a_file_names_the_file(self):
        machine = self.write("mine.json", {"description": "My machine", "slots": [{"battery": BATTERY}]})
        contents, _ = self.record(machine)
        self.assertEqual(contents["recordedFrom"], {"kind": "file", "name": machine, "description": "My machine"})
        again, _ = self.record(self.recording)
        self.assertEqual(again, contents)

    def test_standard_output_and_exit_statuses(self):
        done = run_tool("record", "--machine", "no-battery")
        self.assertEqual((done.returncode, b"the recorded machine has no battery" in done.stderr), (1, True))
        self.assertEqual(json.loads(done.stdout)["slots"], [None, None])
        done = run_tool("record", "--machine", "channel-failure")
        self.assertEqual((done.returncode, b"no battery could be read" in done.stderr), (1, True))
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
        key = self.key_file("a key of 16 char")
        for arguments, words in ((["--key-file", key], (b"--key-file", b"--redact")),
                                 (["--redact", "--key", "a key of 16 char"], (b"--key:", b"--key-file", b"NORV_BATTERY_KEY")),
                                 (["--redact", "--key"], (b"--key:", b"--key-file", b"NORV_BATTERY_KEY")),
                                 (["--machine", "tow-batteries"], (b"tow-batteries",)), (["--format", "json"], (b"--format",))):
            done = run_tool("record", *arguments)
            self.assertEqual((done.returncode, done.stdout), (2, b""), arguments)
            for word in words:
                self.assertIn(word, done.stderr)

    def key_file(self, contents):
        path = pathlib.Path(self.path("key"))
        path.write_bytes(contents.encode())
        return str(path)

    def redacted(self, machine, key="an unremarkable key", *options):
        return self.record(machine, "--redact", "--key-file", self.key_file(key), *options)

    def test_redacted(self):
        machine = self.write("mine.json", {"description": "My machine", "slots": [{"battery": BATTERY}]})
        contents, done = self.redacted(machine, "one key and no other")
        self.assertEqual(done.stderr, b"")
        actual = json.loads(self.report(self.recording, "--format", "json")[1])["batteries"][0]["identity"]
        self.assertRegex(actual["serialNumber"], "^[A-Z]{4}[0-9]{2}2021-05-06$")
        self.assertRegex(actual["ctNumber"], "^6ABCDEFGHI[A-Z]{4}$")
        self.assertNotEqual(actual["serialNumber"], BATTERY["serialNumber"])
        self.assertNotEqual(actual["ctNumber"], BATTERY["ctNumber"])
        self.assertEqual(self.redacted(machine, "one key and no other")[0]["slots"], contents["slots"])
        self.assertNotEqual(self.redacted(machine, "another key of the like")[0]["slots"], contents["slots"])

    def test_where_a_key_comes_from(self):
        expected = self.redacted("two-batteries", "0123456789abcdef")[0]["slots"]
        for contents in ("0123456789abcdef\n", "0123456789abcdef\r\n"):
            self.assertEqual(self.redacted("two-batteries", contents)[0]["slots"], expected, contents)
        for contents in ("0123456789abcdef\n\n", " 0123456789abcdef", "x" * 4096):
            self.assertNotEqual(self.redacted("two-batteries", contents)[0]["slots"], expected, contents)
        with unittest.mock.patch.dict(os.environ, NORV_BATTERY_KEY="0123456789abcdef"):
            contents, done = self.record("two-batteries", "--redact")
            self.assertEqual((contents["slots"], done.stderr), (expected, b""))
            self.assertNotEqual(self.redacted("two-batteries", "the file goes first")[0]["slots"], expected)
            self.assertEqual(self.record("two-batteries")[1].stderr, b"")

    def test_keys_that_are_none(self):
        def refused(arguments, *words):
            output = self.path("none.json")
            done = run_tool("record", "--machine", "two-batteries", "--redact", "--output", output, *arguments)
            self.assertEqual((done.returncode, done.stdout, pathlib.Path(output).exists()), (2, b"", False), arguments)
            for word in words:
                self.assertIn(word, done.stderr)
        refused(["--key-file", self.key_file("fifteen letters\n")], b"--key-file", b"key': ", b"16 characters", b"found 15")
        refused(["--key-file", self.key_file("")], b"16 characters", b"found 0")
        refused(["--key-file", self.key_file("x" * 4097)], b"--key-file", b"4096 bytes")
        refused(["--key-file", self.path("missing")], b"--key-file", b"missing", b"no such file")
        refused(["--key-file", self.folder.name], b"--key-file", b"regular file")
        for key in ("fifteen letters", "x"):
            with unittest.mock.patch.dict(os.environ, NORV_BATTERY_KEY=key):
                refused([], b"NORV_BATTERY_KEY", b"16 characters", f"found {len(key)}".encode())

    def test_a_key_is_made_and_told(self):
        first, done = self.record("two-batteries", "--redact")
        key = re.search(rb"key that was made for it: ([0-9a-f]{32})\r?\n", done.stderr)[1].decode()
        self.assertIn(b"--key-file", done.stderr)
        self.assertIn(b"NORV_BATTERY_KEY", done.stderr)
        second, other = self.record("two-batteries", "--redact")
        self.assertNotEqual(second["slots"], first["slots"])
        self.assertNotIn(key.encode(), other.stderr)
        self.assertEqual(self.redacted("two-batteries", key)[0]["slots"], first["slots"])

    def test_help(self):
        done = run_tool("record", "--help")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for word in (b"--machine", b"--output", b"--cell-swell", b"--test", b"--redact", b"--key-file", b"NORV_BATTERY_KEY", b"Exit status"):
            self.assertIn(word, done.stdout)


# The owner, in names that nothing else has, and the numbers of the owner's things.
SECRETS = ["karlotta", "karlot", "nordwind", "qz42177", "rumpelstein", "5cg99prv"]
FOLDERS = [
    "C:\\Users\\Karlotta\\App\\", "C:\\Users\\.\\Karlotta\\", "C:\\DOCUME~1\\KARLOT~1\\", "D:\\Karlotta\\",
    "\\\\RUMPELSTEIN\\Karlotta$\\", "/home/NORDWIND/karlotta/", "/home//karlotta/", "/home/./karlotta/", "/media/karlotta/usb/",
    "/run/media/karlotta/", "/home/K\u00e4rlotta/", "", "/home/karlotta" + "/karlotta" * 40 + "/"]
SERIALS = ["QZ42177", "SNQZ42177", "qz42177", "&#81;&#90;&#x34;2177", "QZ42177-0815-LONGER", "5CG99PRV", "Q\u00e442177"]


def rows(name, values):
    return [{"Name": name, "CurrentValue": values, "Value": values, "SerialNumber": "5CG99PRV"}]


def machine_of_karlotta(folder, serial, number, setting=None):
    """A machine that says whose it is wherever it can say anything."""
    says = f"Karlotta on RUMPELSTEIN has {serial} {number}"
    block = f"QZ42177{serial}"[:28].encode("latin-1")
    report = (f"<h>{says}</h>{''.join(f'<r>{text}</r>' for text in SERIALS)}<r i=\"6\">{number}</r>"
              f"<user>KARLOTTA {folder}</user><u>{''.join(f'&#{ord(c)};' for c in 'Karlotta')}</u>")
    board, bios, extender, care = setting or (says, "F.17 " + says, says, says)
    return {
        "description": says, "source": says, "modulePath": folder + "norv-battery-info.dll",
        "slots": [{"battery": {**BATTERY, "serialNumber": (serial[:8] + "05.06.19")[:16], "deviceName": "QZ"},
                   "cellSwell": {"hex": (bytes(range(28)) + block + "Karlotta".encode("utf-16-le")).ljust(128, b"\0").hex()}},
                  {"batteryChannelStatus": "0x80070005"}],
        "wmi": {"root\\cimv2": {"Win32_BaseBoard": [{"Product": board, "SerialNumber": serial}],
                                "Win32_BIOS": [{"Name": bios, "SerialNumber": serial}]},
                "root\\wmi": {"BatteryStatus": [{"ChargeRate": 12, "DischargeRate": 34, "InstanceName": says}]},
                "root\\Norv\\InstrumentedBios": {"Norv_BIOSSetting":
                    rows("Adaptive Battery Extender", extender) + rows("Battery Care Function", care) +
                    rows("Adaptive Battery Extender Status", "Activated")}},
        "testProgram": {"version": "1.2.3.4", "report": report},
        "systemMessages": {"0x80070005": says + "\r\n", "5": "Access is denied.\r\n"},
        "clock": {"now": "2024-06-01T12:00:00Z"}}


def unescaped(text):
    for _ in range(3):
        text = html.unescape(text)
    return text


def haystack(data):
    """Everything that somebody may make out of a file: its bytes, its texts, and what hex digits and base64 hide."""
    text = data.decode("utf-8")
    found = [text, json.dumps(json.loads(text), ensure_ascii=False)]
    for digits in re.findall(r"(?:[0-9A-Fa-f]{2}){4,}", text):
        found.append(bytes.fromhex(digits).decode("latin-1"))
    for word in re.findall(r"[A-Za-z0-9+/]{8,}={0,2}", text):
        for start in range(4):
            part = word[start:].rstrip("=")
            found.append(base64.b64decode(part[:len(part) // 4 * 4]).decode("latin-1"))
    found += [raw.replace("\0", "") for raw in found]  # UTF-16
    return [unescaped(raw).lower() for raw in found]


class RedactionTest(RecordCase):
    """A redacted recording gives nothing away, and gives the same report but for the texts that it masks."""

    def redacted(self, machine):
        key = pathlib.Path(self.path("key"))
        key.write_text("0123456789abcdef", encoding="ascii")
        return self.record(machine, "--cell-swell", "--test", "--redact", "--key-file", str(key))[0]

    def expect_no_secret(self):
        for text in haystack(pathlib.Path(self.recording).read_bytes()):
            for secret in SECRETS:
                self.assertNotIn(secret, text)

    def expect_alike(self, plain, redacted, where="report"):
        """Equal, or a mask of the same length in the place of a text."""
        if isinstance(plain, dict):
            self.assertEqual(plain.keys(), redacted.keys(), where)
            for key, value in plain.items():
                self.expect_alike(value, redacted[key], f"{where}.{key}")
        elif isinstance(plain, list):
            self.assertEqual(len(plain), len(redacted), where)
            for number, (left, right) in enumerate(zip(plain, redacted)):
                self.expect_alike(left, right, f"{where}[{number}]")
        elif plain != redacted:
            self.assertRegex(where, "source|identity|message|settings", (plain, redacted))
            if not where.endswith("description"):
                self.assertIn(len(redacted), (len(plain), len(plain.encode())), where)  # one x for each byte
            if "identity" in where:
                self.assertEqual(plain[-8:] if "serial" in where else plain[:10], redacted[-8:] if "serial" in where else redacted[:10])
            else:
                self.assertRegex(redacted, "^x*[\r\n]*$", where)

    def expect_redacted(self, machine):
        path = self.write("karlotta-of-rumpelstein.json", machine)
        plain = json.loads(self.report(path, "--format", "json", "--cell-swell", "--test")[1])
        contents = self.redacted(path)
        self.expect_no_secret()
        redacted = json.loads(without_head(self.report(self.recording, "--format", "json", "--cell-swell", "--test")[1]))
        self.expect_alike(plain, redacted)
        return contents, plain

    def test_nothing_tells_the_owner(self):
        for number, folder in enumerate(FOLDERS):
            serial = SERIALS[number % len(SERIALS)]
            with self.subTest(folder=folder, serial=serial):
                contents, plain = self.expect_redacted(machine_of_karlotta(folder, serial, number % 3))
                self.assertRegex(contents["modulePath"], r"^[x/\\]*(norv-battery-info\.dll)?$")
                is_cut = len(folder) > 200  # the test program is then looked for further up
                self.assertEqual(plain["batteryTest"]["result"], None if is_cut else number % 3)
                if not is_cut:
                    self.assertEqual(contents["testProgram"]["report"], f'<r i="6">{number % 3}</r>')

    def test_known_values_stay_whoever_has_their_name(self):
        for user in ("Enable", "Activated", "Balanced", "OK", "9XQ4"):
            folder = f"C:\\Users\\{user}\\"
            for board, bios in (("9XQ4", "F.17"), ("9XQ4", "F.16"), ("Balanced", "F.17")):
                machine = machine_of_karlotta(folder, "QZ42177", 1, (board, bios, "Enable", "Balanced"))
                with self.subTest(user=user, board=board, bios=bios):
                    contents, plain = self.expect_redacted(machine)
                    self.assertNotIn(user, contents["modulePath"])
                    redacted = json.loads(self.report(self.recording, "--format", "json")[1])
                    self.assertEqual(redacted["batteries"][0]["settings"], plain["batteries"][0]["settings"])

    def test_exceptions(self):
        says = "Karlotta on RUMPELSTEIN has QZ42177"
        answers = [
            {"operation": "SendBiosCommand", "argument": "1,7,1 slot 1", "throws": "string"},
            {"operation": "SendBiosCommand", "argument": "1,86,1 slot 0", "throws": "system_error", "number": 5, "category": "system"},
            {"operation": "ConnectWmi", "argument": "\\\\.\\root\\cimv2", "throws": "runtime_error"},
            {"operation": "Query", "namespace": "\\\\.\\root\\wmi", "argument": "SELECT * FROM BatteryStatus", "throws": "text"},
            {"operation": "RunProgram", "argument": "C:\\Users\\Karlotta\\App\\BatteryTest.exe", "throws": "out_of_range"},
            {"operation": "LibraryPath", "throws": "logic_error"},
            {"operation": "ProgramDataFolder", "throws": "length_error"},
            {"operation": "FormatSystemMessage", "argument": "2147942405", "throws": "invalid_argument"},
        ]
        for answer in answers:
            with self.subTest(answer=answer):
                machine = machine_of_karlotta(FOLDERS[0], SERIALS[0], 2)
                self.expect_redacted({**machine, "answers": [{**answer, "text": says}]})

    def test_odd_reports_keep_their_verdicts(self):
        odd = ['<r i="6">1</r><r i="6">2</r>', '<r i="6">2</r><r i="6">karlotta</r>', '<r i="6">12karlotta</r>', "karlotta", "",
               '<r i="6">99999999999</r>', '3</r><r i="6" u="karlotta"', '4</r>karlotta<r i="6"', '<r i="6">-1</r>',
               '<r i="6"></r>karlotta', '<r i="60">5</r>karlotta', '<r i="6" u="karlotta">5</rx>', '<r i="6">  +7 QZ42177</r>']
        for report in odd:
            with self.subTest(report=report):
                machine = machine_of_karlotta(FOLDERS[0], SERIALS[0], 2)
                machine["testProgram"]["report"] = report
                self.expect_redacted(machine)
                options = ["--test", "--log-level", "error"]
                logs = [self.report(self.path(name), *options)[2] for name in ("karlotta-of-rumpelstein.json", "recording.json")]
                self.assertEqual(*(log.count(b"non-integer") for log in logs))


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
            status, report, errors = self.report(self.recording, "--format", form)
            self.assertEqual((status, without_head(report), errors), (0, expected.stdout, expected.stderr))

    def test_a_listing_of_a_notebook(self):
        listing = self.path("karlotta.txt")
        pathlib.Path(listing).write_text("BAT0/type:Battery\nBAT0/voltage_now:11800000\nBAT0/serial_number:0815\n",
                                         encoding="ascii")
        recording = run_tool("record", "--power-supply", listing, "--output", self.recording)
        self.assertEqual((recording.returncode, recording.stderr), (0, b""))
        contents = json.loads(pathlib.Path(self.recording).read_text(encoding="utf-8"))
        SCHEMA.validate(contents)
        self.assertEqual((contents["recordedFrom"]["kind"], contents["recordedFrom"]["name"]), ("listing", listing))
        expected = run_tool("report", "--power-supply", listing)
        self.assertIn(b"0815", expected.stdout)
        status, report, errors = self.report(self.recording)
        self.assertIn(b"Battery report of a recording of the power supply listing ", report)
        self.assertEqual((status, without_head(report), errors), (0, expected.stdout, expected.stderr))
        redacted = run_tool("record", "--power-supply", listing, "--redact").stdout
        SCHEMA.validate(json.loads(redacted))
        self.assertNotIn(b"karlotta", redacted)

    def test_the_name_of_a_redacted_folder(self):
        folder = pathlib.Path(self.folder.name, "karlotta", "power_supply")
        folder.mkdir(parents=True)
        done = run_tool("record", "--power-supply", str(folder), "--redact")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(json.loads(done.stdout)["recordedFrom"], {"kind": "folder", "name": "x" * len(str(folder))})
        self.assertNotIn(b"karlotta", done.stdout)

    def test_a_key_that_is_no_file_is_not_waited_for(self):
        fifo = self.path("fifo")
        os.mkfifo(fifo)
        for path in (fifo, "/dev/zero"):
            done = run_tool("record", "--machine", "two-batteries", "--redact", "--key-file", path)
            self.assertEqual((done.returncode, b"regular file" in done.stderr), (2, True))

    def test_the_running_machine(self):
        done = run_tool("record")
        self.assertIn(done.returncode, (0, 1))
        contents = json.loads(done.stdout)
        SCHEMA.validate(contents)
        self.assertEqual(contents["recordedFrom"]["kind"], "machine")
        pathlib.Path(self.recording).write_bytes(done.stdout)
        self.assertIn(b"Battery report of a recording of the machine that it was made on\n", self.report(self.recording)[1])


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
        del OPTIONS[:-1], FOLDERS[::2]  # a program takes ten times as long to start there
    SCHEMA = jsonschema.Draft202012Validator(json.loads(pathlib.Path(arguments.schema).read_text(encoding="utf-8")))
    cases = [RecordTest, RedactionTest] + ([] if arguments.emulator else [LinuxTest])
    tests = unittest.TestSuite(unittest.defaultTestLoader.loadTestsFromTestCase(case) for case in cases)
    result = unittest.TextTestRunner().run(tests)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)


if __name__ == "__main__":
    main()
