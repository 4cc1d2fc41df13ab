#!/usr/bin/env python3
"""Decoding and encoding as users meet them.

  decode_test.py --tool PROGRAM            runs the tests
  decode_test.py --tool PROGRAM --update   writes the golden rows anew; read what changed before it is kept
"""

import argparse
import codecs
import csv
import io
import json
import os
import pathlib
import pty
import random
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
GOLDEN = HERE / "decode"
MACHINES = ROOT / "simulator" / "machines"
DATE = "2024-06-01"
FORMATS = {"jsonl": ".jsonl", "csv": ".csv", "text": ".txt"}
TOOL = ""


def good_hex():
    """A block of a battery in order, in hex digits."""
    return run("encode", "--machine", "two-batteries", "--slot", "0").stdout.decode().strip()


def run(*arguments, **more):
    more = {"capture_output": True, "env": dict(os.environ, TZ="UTC"), "check": False, "timeout": 120, **more}
    return subprocess.run([TOOL, *arguments], **more)


def decode(data, *arguments, **more):
    return run("decode", "--date", DATE, *arguments, input=data, **more)


def rows_of(done):
    return [json.loads(line) for line in done.stdout.splitlines()]


def sample_names():
    return sorted(path.stem for path in MACHINES.glob("*.json"))


def random_blocks(count, seed=1):
    """Blocks of every kind: likely ones, spoilt ones and noise."""
    source = random.Random(seed)
    for number in range(count):
        if number % 4 == 0:
            yield source.randbytes(128)
            continue
        block = bytearray(128)
        struct.pack_into("<14H", block, 0, *(source.randrange(65536) for _ in range(14)))
        block[0x1C:0x2C] = b"%05d 20%02d-%02d-%02d" % (source.randrange(99999), source.randrange(30),
                                                       source.randrange(1, 15), source.randrange(1, 33))
        text = source.choice([b"123-45-67-A", b"313-7A-A", b"21-63-12-A", b"ABCDE-A", b"SIMPLO", b"12\"3,\\\t\xe9", b""])
        block[0x2C:0x2C + len(text)] = text
        block[0x3E:0x4C] = b"6" + bytes(source.choice(b"ABCDEF0123456789 -") for _ in range(13))
        block[0x4F:0x55] = b"NV%04d" % source.randrange(9999)
        struct.pack_into("<H", block, 0x5C, source.randrange(65536))
        yield bytes(block)


def golden_inputs():
    """Name and contents of the inputs whose rows are kept."""
    samples = []
    for name in sample_names():
        done = run("encode", "--machine", name)
        samples += [f"{name}, {line}" for line in done.stdout.decode().splitlines()]
    good = good_hex()
    spaced = " ".join(good[place:place + 2] for place in range(0, 256, 2))
    bad = [good, "", "spaced," + spaced.upper(), "B\u00fcro 12,\t" + good, good[:-1], good + "0", "x" + good[1:],
           "no digits,", "comma," + good + ",", "   ", "\u001b[31m," + good[:10], good[:100] + "g" + good[101:]]
    odd = bytearray(bytes.fromhex(good))
    odd[0x1C:0x2C] = b' "quoted", \\\x01\xe9 '[:16].ljust(16, b"\0")
    odd[0x2C:0x3E] = bytes(18)
    blocks = bytes.fromhex(good) + bytes(128) + bytes([255]) * 128 + bytes(odd) + bytes.fromhex(good)[:100]
    return {"samples": "\n".join(samples).encode() + b"\n", "bad-lines": "\r\n".join(bad).encode(), "blocks": blocks}


def golden_rows(contents, output_format):
    return decode(contents, "--format", output_format)


class GoldenTest(unittest.TestCase):
    def test_rows(self):
        for name, contents in golden_inputs().items():
            for output_format, suffix in FORMATS.items():
                with self.subTest(name=name, format=output_format):
                    expected = (GOLDEN / (name + suffix)).read_bytes()
                    self.assertEqual(golden_rows(contents, output_format).stdout.decode(), expected.decode())

    def test_nothing_left_over(self):
        wanted = {name + suffix for name in golden_inputs() for suffix in FORMATS.values()}
        self.assertEqual({path.name for path in GOLDEN.iterdir()}, wanted)


class RowTest(unittest.TestCase):
    GROUPS = ("validity", "identity", "cells", "status", "attributes")

    def test_rows_say_what_reports_say(self):
        compared = 0
        for name in sample_names():
            report = json.loads(run("report", "--machine", name, "--format", "json").stdout)
            blocks = run("encode", "--machine", name)
            rows = rows_of(decode(blocks.stdout)) if blocks.returncode == 0 else []
            batteries = [battery for battery in report["batteries"] if battery is not None]
            self.assertEqual(len(rows), len(batteries), name)
            for row, battery in zip(rows, batteries):
                for group in self.GROUPS:
                    self.assertEqual(row[group], battery[group], name)
                for of_the_system in ("chargeRate", "dischargeRate", "driverStateOfCharge", "driverStateOfChargeDiffers"):
                    del battery["capacity"][of_the_system]
                self.assertEqual(row["capacity"], battery["capacity"], name)
                for key in ("manufacturingDate", "warrantyType", "warrantyDate"):
                    self.assertEqual(row["dates"][key], battery["dates"][key], name)
                self.assertEqual(row["dates"]["age"]["error"], battery["dates"]["age"]["error"], name)
                compared += 1
        self.assertGreater(compared, 15)

    def test_keys_are_documented(self):
        def paths(value, path=""):
            for key, member in value.items() if isinstance(value, dict) else ():
                yield path + key
                yield from paths(member, path + key + ".")
        used = set()
        for contents in golden_inputs().values():
            for row in rows_of(decode(contents)):
                used |= set(paths(row))
        used = {path for path in used if ".error." not in path}
        own = set(re.findall(r"^\| `([A-Za-z.]+)` \|", (ROOT / "docs" / "decoding.md").read_text(encoding="utf-8"), re.M))
        shared = set(re.findall(r"^\| `batteries\[\]\.([A-Za-z0-9.]+)` \|",
                                (ROOT / "docs" / "tool.md").read_text(encoding="utf-8"), re.M))
        self.assertEqual(used - shared, own)

    def test_source_index_and_id(self):
        good = good_hex()
        with tempfile.TemporaryDirectory() as folder:
            first = pathlib.Path(folder, "f\u00fcrst.hex")
            first.write_text(f"{good}\n\n a b ,{good}\n", encoding="utf-8")
            second = pathlib.Path(folder, "second.bin")
            second.write_bytes(bytes.fromhex(good) * 2)
            rows = rows_of(run("decode", str(first), str(second)))
        self.assertEqual([(row["source"], row["index"], row["id"], row["rowError"]) for row in rows],
                         [(str(first), 0, None, None), (str(first), 1, "a b", None),
                          (str(second), 0, None, None), (str(second), 1, None, None)])

    def test_source_that_is_no_utf8(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder.encode(), b"\xe9.bin")
            with open(path, "wb") as file:
                file.write(bytes(128))
            row = rows_of(run("decode", path))[0]
        self.assertTrue(row["source"].endswith("\u00e9.bin"))

    def test_csv_has_the_same_values(self):
        contents = b"".join(random_blocks(500))
        rows = rows_of(decode(contents))
        table = list(csv.reader(io.StringIO(decode(contents, "--format", "csv", "--raw-csv").stdout.decode(), newline="")))
        head, lines = table[0], table[1:]
        self.assertEqual(len(lines), len(rows))
        for row, line in zip(rows, lines):
            self.assertEqual(len(line), len(head))
            for name, field in zip(head, line):
                value = row
                for key in re.findall(r"[A-Za-z]\w*|\d+", name):
                    value = value[int(key)] if key.isdigit() else value[key]
                if isinstance(value, dict):
                    value = value["message"]
                expected = "" if value is None else value if isinstance(value, str) else json.dumps(value)
                self.assertEqual(field, expected, name)

    def csv_ids(self, contents, *arguments):
        done = decode(contents, "--format", "csv", "--input", "hex", *arguments)
        return [line[2] for line in csv.reader(io.StringIO(done.stdout.decode(), newline=""))][1:]

    def test_csv_holds_nothing_that_a_spreadsheet_runs(self):
        harmless = {"=1+1": "'=1+1", "+1": "'+1", "-1": "'-1", "@SUM(A1)": "'@SUM(A1)", "\uff1d1": "'\uff1d1", "'=1": "''=1",
                    "-": "-", "a=1": "a=1", "1-2": "1-2", "": "", "a;=1": "a;=1", "\r=1": "\\x0D=1"}
        contents = "".join(f"{text},00\n" for text in harmless).encode()
        self.assertEqual(self.csv_ids(contents), list(harmless.values()))
        self.assertEqual(self.csv_ids(contents, "--raw-csv"), list(harmless))
        self.assertIn(b'-,10,"a;=1",', decode(contents, "--format", "csv").stdout)

    def test_csv_holds_no_control_characters(self):
        texts = [f"a{chr(code)}b" for code in (*range(1, 32), *range(127, 160)) if chr(code) != "\n"]
        contents = "".join(f"{text},00\n" for text in texts).encode()
        self.assertEqual(self.csv_ids(contents), [f"a\\x{ord(text[1]):02X}b" for text in texts])
        self.assertEqual(self.csv_ids(contents, "--raw-csv"), texts)
        rows = decode(b"".join(random_blocks(500)), "--format", "csv").stdout.decode()
        self.assertIsNone(re.search("[\0-\x09\x0b-\x1f\x7f-\x9f]", rows))

    def test_csv_numbers_stay_numbers(self):
        self.assertEqual(self.cell("capacity.current", current=64536), "-1000")

    def test_a_percentage_that_cannot_be_computed_is_none(self):
        self.assertEqual(self.cell("capacity.remainingCapacityPercentage"), "")
        capacity = rows_of(decode(bytes(128)))[0]["capacity"]
        self.assertIsNone(capacity["fullChargeCapacityPercentage"])
        self.assertIsNone(capacity["remainingCapacityPercentage"])

    def cell(self, column, current=0):
        block = bytearray(128)
        struct.pack_into("<H", block, 0x0E, current)
        head, line = csv.reader(io.StringIO(decode(bytes(block), "--format", "csv").stdout.decode()))
        return dict(zip(head, line))[column]

    def test_raw_csv_is_csv(self):
        for arguments in ([], ["--format", "jsonl"], ["--format", "text"]):
            done = decode(b"", "--raw-csv", *arguments)
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            self.assertIn(b"--raw-csv", done.stderr)
            self.assertIn(b"--format", done.stderr)

    def test_json_holds_no_raw_control_characters(self):
        texts = [f"a{chr(code)}b" for code in (*range(1, 32), *range(127, 160)) if chr(code) != "\n"]
        done = decode("".join(f"{text},00\n" for text in texts).encode(), "--input", "hex")
        self.assertIsNone(re.search("[\0-\x09\x0b-\x1f\x7f-\x9f]", done.stdout.decode()))
        self.assertEqual([row["id"] for row in rows_of(done)], texts)
        self.assertIn(b'"id":"a\\u007fb"', done.stdout)
        self.assertIn(b'"id":"a\\u009fb"', done.stdout)

    def test_age_counts_to_the_date_or_to_now(self):
        good = good_hex().encode()
        row = rows_of(run("decode", "--date", "2022-09-15", input=good))[0]
        self.assertEqual(row["dates"]["age"], {"days": 1, "value": 1, "error": None})
        days = (time.time() - 1663113600) / 86400  # 14 September 2022
        self.assertAlmostEqual(rows_of(run("decode", input=good))[0]["dates"]["age"]["days"], days, delta=1.01)


class BadInputTest(unittest.TestCase):
    def only_row(self, done, status=1):
        self.assertEqual(done.returncode, status, done.stderr)
        self.assertEqual(done.stderr, b"0 good rows, 1 bad row\n")
        rows = rows_of(done)
        self.assertEqual(len(rows), 1)
        self.assertEqual(set(rows[0]), {"source", "index", "id", "rowError"})
        return rows[0]

    def test_empty(self):
        for contents in (b"", b"\n", b" \t\r\n\n", b"\xef\xbb\xbf", codecs.BOM_UTF16_LE, codecs.BOM_UTF16_BE + b"\0\n"):
            self.assertTrue(self.only_row(decode(contents), 2)["rowError"].startswith("is empty: expected"), contents)
        self.assertTrue(self.only_row(decode(b"\n", "--input", "dump"), 2)["rowError"].startswith("is empty: expected"))

    def test_an_empty_one_among_others(self):
        with tempfile.TemporaryDirectory() as folder:
            empty = pathlib.Path(folder, "empty")
            empty.touch()
            done = run("decode", str(empty), "-", input=good_hex().encode())
            self.assertEqual((done.returncode, done.stderr), (1, b"1 good row, 1 bad row\n"))
            done = run("decode", str(empty), "-", input=b"7")
            self.assertEqual((done.returncode, done.stderr), (1, b"0 good rows, 2 bad rows\n"))
            done = run("decode", str(empty), folder + "/missing", input=b"7")
            self.assertEqual((done.returncode, done.stderr), (2, b"0 good rows, 2 bad rows\n"))

    def test_one_byte(self):
        self.assertEqual(self.only_row(decode(b"\x07"))["rowError"], "short block of 1 bytes at offset 0: expected 128")
        self.assertEqual(self.only_row(decode(b"7"))["rowError"],
                         "line 1: 1 hexadecimal digits, expected 256 for a block of 128 bytes")

    def test_truncated(self):
        done = decode(bytes.fromhex(good_hex()) * 300 + bytes(17))
        self.assertEqual((done.returncode, done.stderr), (1, b"300 good rows, 1 bad row\n"))
        last = rows_of(done)[-1]
        self.assertEqual((last["index"], last["rowError"]),
                         (300, "short block of 17 bytes at offset 38400: expected 128"))

    def test_zeros(self):
        done = decode(bytes(128 * 3))
        self.assertEqual((done.returncode, done.stderr), (0, b"0 good rows, 0 bad rows, 3 empty blocks\n"))
        for row in rows_of(done):
            self.assertEqual(row["validity"]["error"]["message"], "Invalid battery manufacturer")
            self.assertEqual(row["identity"]["manufacturer"], "")

    def test_empty_blocks_are_neither_good_nor_bad(self):
        good = bytes.fromhex(good_hex())
        almost = (bytes(127) + b"\1", b"\xff" * 127 + b"\0", b"\1" * 128)
        for empty, count in ((bytes(128), b"1 empty block\n"), (bytes(128) + b"\xff" * 128, b"2 empty blocks\n")):
            done = decode(good + empty + b"".join(almost) + b"\1")
            self.assertEqual((done.returncode, done.stderr), (1, b"4 good rows, 1 bad row, " + count))
            lines = "\n".join(empty[place:place + 128].hex() for place in range(0, len(empty), 128))
            self.assertEqual(decode(lines.encode()).stderr, b"0 good rows, 0 bad rows, " + count)

    def test_blocks_of_set_bits_are_no_text(self):
        for contents in (b"\xff" * 128, b"\xff" * 4096, b"\xff" * 60 + b"04217 2022-09-14" + b"\xff" * 52):
            done = decode(contents)
            self.assertEqual(done.returncode, 0, done.stdout)
            self.assertEqual(len(rows_of(done)), len(contents) // 128)

    def test_json_is_named(self):
        good = good_hex()
        report = run("report", "--machine", "two-batteries", "--format", "json").stdout
        rows = decode(good.encode() * 3).stdout
        recording = run("record", "--machine", "one-battery").stdout
        machine = (MACHINES / "one-battery.json").read_bytes()
        for contents, problem in ((report, "is a JSON report: 'norv-battery encode' makes"),
                                  (b"\xef\xbb\xbf" + report, "is a JSON report: 'norv-battery encode' makes"),
                                  (report.decode().encode("utf-16"), "is a JSON report: 'norv-battery encode' makes"),
                                  (rows, "holds decoded rows: 'norv-battery encode' makes"),
                                  (machine, "is a machine file: 'norv-battery report --machine' reads it"),
                                  (recording, "is a machine file: 'norv-battery report --machine' reads it"),
                                  (b'{"a": 1}\n', "is JSON: expected blocks"), (b"[\n  {}\n]", "is JSON: expected blocks")):
            self.assertIn(problem, self.only_row(decode(contents), 2)["rowError"])
        for name in ("{1-2}", '{"slots"', "[{"):
            done = decode(f"{name},{good}\n".encode())
            self.assertEqual((done.returncode, rows_of(done)[0]["id"]), (0, name))

    def test_folder_and_missing_and_unreadable(self):
        good = good_hex()
        with tempfile.TemporaryDirectory() as folder:
            dump = pathlib.Path(folder, "dump.hex")
            dump.write_text(good, encoding="ascii")
            done = run("decode", folder, folder + "/missing", str(dump))
            self.assertEqual((done.returncode, done.stderr), (1, b"1 good row, 2 bad rows\n"))
            rows = rows_of(done)
            self.assertEqual([row["source"] for row in rows], [folder, folder + "/missing", str(dump)])
            self.assertEqual(rows[0]["rowError"], "cannot be read: Is a directory")
            self.assertEqual(rows[1]["rowError"], "cannot be opened: No such file or directory")
            self.assertIsNone(rows[2]["rowError"])
            dump.chmod(0)
            if not os.access(dump, os.R_OK):
                self.assertEqual(self.only_row(run("decode", str(dump)), 2)["rowError"],
                                 "cannot be opened: Permission denied")

    def test_unreadable_for_everyone(self):
        # Not even root reads from a process's own memory at 0.
        self.assertIn("cannot be read: ", self.only_row(run("decode", "/proc/self/mem"), 2)["rowError"])

    def test_line_of_100_megabytes(self):
        good = good_hex().encode()
        done = decode(good + b"\n" + b"a" * 100_000_000 + b"\n" + good + b"\n")
        self.assertEqual((done.returncode, done.stderr), (1, b"2 good rows, 1 bad row\n"))
        rows = rows_of(done)
        self.assertEqual([row["index"] for row in rows], [0, 1, 2])
        self.assertEqual(rows[1]["rowError"],
                         "line 2 is longer than 32768 characters: expected 256 hexadecimal digits")

    def test_longest_line(self):
        good = good_hex().encode()
        for length, problem in ((32767, "32767 hexadecimal digits"), (32768, "32768 hexadecimal digits"),
                                (32769, "is longer than 32768"), (32770, "is longer than 32768")):
            for end in (b"", b"\n", b"\r\n"):
                for before in (b"", good + b"\n"):
                    rows = rows_of(decode(before + b"a" * length + end + (good if end else b"")))
                    errors = [row["rowError"] for row in rows]
                    long = 1 if before else 0
                    self.assertIn(problem, errors.pop(long), (length, end))
                    self.assertEqual(errors, [None] * (long + (1 if end else 0)))
                    self.assertEqual([row["index"] for row in rows], list(range(len(rows))))
        block = good + b" " * (32768 - len(good))
        self.assertEqual(decode(block + b"\n").returncode, 0)

    def test_no_threads(self):
        def no_stack():
            resource.setrlimit(resource.RLIMIT_STACK, (1 << 47, resource.getrlimit(resource.RLIMIT_STACK)[1]))
        contents = b"".join(random_blocks(2000))
        done = decode(contents, "--jobs", "4", preexec_fn=no_stack)
        self.assertEqual((done.returncode, done.stdout), (0, decode(contents).stdout))

    def test_noise(self):
        source = random.Random(7)
        for _ in range(200):
            contents = source.randbytes(source.randrange(600))
            for kind in ("bin", "hex", "dump"):
                done = decode(contents, "--input", kind)
                self.assertIn(done.returncode, (0, 1, 2))
                rows_of(done)

    def test_arguments(self):
        for arguments, part in ((["--input", "xml"], "bin|hex|dump"), (["--format", "xml"], "jsonl|csv|text"),
                                (["--jobs", "0"], "--jobs"), (["--jobs", "many"], "--jobs"),
                                (["--date", "2023-02-29"], "YYYY-MM-DD"), (["--date", "now"], "'now'")):
            done = run("decode", *arguments, input=b"")
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            self.assertIn(part, done.stderr.decode())


class Utf16Test(unittest.TestCase):
    """Texts as a redirect of PowerShell writes them."""

    TEXT = "B\u00fcro \u20ac \U0001f50b,{0}\r\n{0}\r\n"

    def test_decoded_by_its_mark(self):
        text = self.TEXT.format(good_hex())
        expected = decode(text.encode())
        self.assertEqual(expected.returncode, 0)
        for encoding, mark in (("utf-16-le", codecs.BOM_UTF16_LE), ("utf-16-be", codecs.BOM_UTF16_BE)):
            for arguments in ([], ["--input", "hex"]):
                done = decode(mark + text.encode(encoding), *arguments)
                self.assertEqual((done.returncode, done.stdout), (0, expected.stdout))

    def test_many_portions(self):
        # Of lengths that leave a character in two halves at the end of a piece that is read.
        for lead in range(4):
            text = "x" * lead + "".join("\U0001f50b\u20ac" * 200 + f",{good_hex()}\n" for _ in range(300))
            done = decode(text.encode("utf-16"))
            self.assertEqual((done.returncode, done.stdout), (0, decode(text.encode()).stdout))

    def test_without_its_mark_it_is_refused(self):
        for encoding in ("utf-16-le", "utf-16-be"):
            for text in (self.TEXT.replace(" \u20ac \U0001f50b", "").format(good_hex()), "00"):
                done = decode(text.encode(encoding))
                self.assertEqual((done.returncode, done.stderr), (2, b"0 good rows, 1 bad row\n"))
                self.assertTrue(rows_of(done)[0]["rowError"].startswith("is a text in UTF-16 without a byte order mark"))

    def test_what_is_no_character(self):
        for odd, expected in ((b"\x3d\xd8", "\ufffd"), (b"\x0b\xdd", "\ufffd"), (b"\x3d\xd8\x41\x00", "\ufffdA")):
            done = decode(codecs.BOM_UTF16_LE + odd + f",{good_hex()}".encode("utf-16-le"))
            self.assertEqual((done.returncode, rows_of(done)[0]["id"]), (0, expected))
        done = decode(codecs.BOM_UTF16_LE + good_hex().encode("utf-16-le") + b"7")
        self.assertIn("column 257: '\\xEF' is no hexadecimal digit", rows_of(done)[0]["rowError"])

    def test_blocks_that_begin_like_a_mark_are_blocks(self):
        block = bytes.fromhex(good_hex())
        for mark in (codecs.BOM_UTF16_LE, codecs.BOM_UTF16_BE):
            self.assertEqual(decode(mark + block[2:]).stderr, b"1 good row, 0 bad rows\n")
            self.assertEqual(decode(mark * 64, "--input", "bin").stderr, b"1 good row, 0 bad rows\n")


def shown(line):
    return "".join(chr(byte) if 32 <= byte < 127 else "." for byte in line)


def grouped(line, size, separator=" "):
    return separator.join(line[place:place + size].hex() for place in range(0, len(line), size))


def lines_of(contents, width=16):
    return [(place, contents[place:place + width]) for place in range(0, len(contents), width)]


def xxd(contents, width=16, group=2):
    digits = len(grouped(bytes(width), group))
    return "".join(f"{place:08x}: {grouped(line, group):<{digits}}  {shown(line)}\n" for place, line in lines_of(contents, width))


def plain_xxd(contents, width=30):
    return "".join(line.hex() + "\n" for _, line in lines_of(contents, width))


def hexdump(contents):
    text, last = "", b""
    for place, line in lines_of(contents):
        if line == last:
            text += "" if text.endswith("*\n") else "*\n"
        else:
            halves = grouped(line[:8], 1) + "  " + grouped(line[8:], 1)
            text += f"{place:08x}  {halves:<48}  |{shown(line)}|\n"
        last = line
    return text + f"{len(contents):08x}\n"


def od(contents):
    return "".join(" " + grouped(line, 1) + "\n" for _, line in lines_of(contents))


class DumpTest(unittest.TestCase):
    """Hex dumps as the usual programs write them."""

    def setUp(self):
        good = bytes.fromhex(good_hex())
        texts = bytearray(good)
        texts[0x20:0x30] = b" | ab  cd : 12* "
        self.good = good
        self.contents = good + bytes(texts) + bytes(128 * 3) + good

    def errors(self, text, *arguments):
        done = decode(text.encode(), *arguments)
        rows = rows_of(done)
        self.assertEqual([row["index"] for row in rows], list(range(len(rows))))
        return [row["rowError"] for row in rows]

    def assert_same(self, text, contents, *arguments):
        done = decode(text.encode(), *arguments)
        self.assertEqual((done.returncode, done.stdout), (0, decode(contents).stdout), text[:200])

    def test_each_kind_is_recognised(self):
        for contents in (self.good, self.contents, b"".join(random_blocks(1000))):
            for write in (xxd, plain_xxd, hexdump, od):
                with self.subTest(kind=write.__name__, size=len(contents)):
                    self.assert_same(write(contents), contents)
                    self.assert_same("\n" + write(contents).replace("\n", "\r\n"), contents)

    def test_other_widths(self):
        for width, group in ((16, 1), (16, 16), (30, 2), (32, 4), (7, 2), (256, 2)):
            self.assert_same(xxd(self.contents, width, group), self.contents)
        for width in (1, 20, 60, 128, 200, 256):
            self.assert_same(plain_xxd(self.contents, width), self.contents, "--input", "dump")

    def test_what_the_programs_themselves_write(self):
        for command in (["xxd"], ["xxd", "-p"], ["xxd", "-u"], ["xxd", "-a"], ["hexdump", "-C"], ["od", "-An", "-v", "-tx1"]):
            if shutil.which(command[0]):
                done = subprocess.run(command, input=self.contents, capture_output=True, check=True)
                self.assert_same(done.stdout.decode(), self.contents)

    def test_redirect_of_powershell(self):
        done = decode(xxd(self.contents).encode("utf-16"))
        self.assertEqual((done.returncode, done.stdout), (0, decode(self.contents).stdout))

    def test_lines_of_blocks_are_no_dump(self):
        good = good_hex()
        spaced = f"{good[:8]}  {good[8:]}"
        for line in (good, spaced, f"00000000: 11 spare,{good}", f"00000000,{good}"):
            self.assertEqual(self.errors(f"{line}\n{line}\n"), [None, None], line)
        for short in ("60", good[:100] + "\n" + good[:100], good[:60], good[:60] + "\n" + good):
            self.assertIn("hexadecimal digits, expected 256", self.errors(short)[0])

    def test_several_dumps_in_a_row(self):
        self.assert_same(xxd(self.good) * 3, self.good * 3)
        self.assert_same(hexdump(self.good) * 3, self.good * 3)
        text = "".join(line.replace("000000", "00004d", 1) for line in xxd(self.good * 2).splitlines(True))
        self.assert_same(text, self.good * 2)

    def test_a_bad_line_costs_its_block_only(self):
        lines = xxd(self.good * 4).splitlines(True)
        for change, problem in ((lambda line: line.replace(": ", ": x", 1), "line 11: column 11: 'x' is no hexadecimal digit"),
                                (lambda line: line.replace(": ", ": 0", 1), "line 11: column 11: 5 hexadecimal digits without a"),
                                (lambda line: "00000009" + line[8:], "line 11: offset 00000009, expected 000000a0"),
                                (lambda line: "odd\n", "line 11: expected an offset and a colon"),
                                (lambda line: "", "line 11: offset 000000b0, expected 000000a0"),
                                (lambda line: line[:9] + " ffff" + line[14:], "line 11: the text at the line's end is that"),
                                (lambda line: "0" * 40000 + "\n", "line 11 is longer than 32768 characters")):
            text = "".join(lines[:10]) + change(lines[10]) + "".join(lines[11:])
            errors = self.errors(text)
            self.assertEqual([error is None for error in errors], [True, False, True, True], errors)
            self.assertIn(problem, errors[1])
            self.assertIn("what follows is decoded from the next block's offset on", errors[1])

    def test_missing_blocks_are_told(self):
        lines = xxd(self.good * 4).splitlines(True)
        errors = self.errors("".join(lines[:8] + lines[16:]))
        self.assertEqual([error is None for error in errors], [True, False, True, True])
        self.assertIn("line 9: offset 00000100, expected 00000080", errors[1])
        errors = self.errors("".join(lines[:6] + lines))
        self.assertEqual([error is None for error in errors], [False] + [True] * 4)

    def test_without_offsets_nothing_follows_a_bad_line(self):
        lines = plain_xxd(self.good * 4).splitlines(True)
        errors = self.errors("".join(lines[:7] + ["0" + lines[7]] + lines[8:]))
        self.assertEqual(errors[:1], [None])
        self.assertEqual(errors[1:], ["line 8: column 1: 61 hexadecimal digits without a blank, expected 2 for each byte; "
                                      "what follows is not decoded"])

    def test_ends_too_early(self):
        for write in (xxd, plain_xxd, hexdump, od):
            self.assertEqual(self.errors(write(self.good + self.good[:100])),
                             [None, "short block of 100 bytes at the end of the dump: expected 128"])
        self.assertIn("ends behind '*'", self.errors(hexdump(self.good + bytes(128)).rpartition("\n0")[0])[-1])

    def test_repeated_lines_are_bounded(self):
        head = hexdump(bytes(128)).splitlines()[0]
        for end in ("00008010", "ffffffffffffffff", "00000000", "00000018"):
            self.assertIn(f"offset {end} behind '*', expected one up to 00008010" if end != "00008010" else "short block",
                          self.errors(f"{head}\n*\n{end}\n")[-1])
        self.assertIn("behind '*'", self.errors(f"{head}\n*\n00008020\n")[-1])

    def test_digits_that_are_no_single_bytes(self):
        words = " " + grouped(self.good[:16], 2) + "\n"
        for text in (words * 8, "000000 " + od(self.good)[1:], "0000000" + od(self.good)):
            self.assertIn("hexadecimal digits without a blank, expected 2, which are a byte",
                          self.errors(text, "--input", "dump")[0])
        turned = "".join(f"{place:08x}: {' '.join(line[at:at + 4][::-1].hex() for at in range(0, 16, 4))}  {shown(line)}\n"
                         for place, line in lines_of(self.good))
        self.assertIn("the text at the line's end is that of other bytes", self.errors(turned)[0])


class OutputTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.target = pathlib.Path(self.folder.name, "rows.jsonl")

    def names(self):
        return sorted(os.listdir(self.folder.name))

    def test_file_holds_what_standard_output_would(self):
        contents = b"".join(random_blocks(2000))
        done = decode(contents, "--output", str(self.target))
        self.assertEqual((done.returncode, done.stdout), (0, b""))
        self.assertEqual(self.target.read_bytes(), decode(contents).stdout)
        self.assertEqual(self.names(), ["rows.jsonl"])

    def test_file_is_there_with_bad_rows_too(self):
        self.assertEqual(decode(b"7", "--output", str(self.target)).returncode, 1)
        self.assertEqual(self.names(), ["rows.jsonl"])

    def test_broken_run_leaves_the_former_file(self):
        self.target.write_text("before", encoding="ascii")
        with subprocess.Popen([TOOL, "decode", "--output", str(self.target)], stdin=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            process.stdin.write(bytes(128 * 1024))
            process.stdin.flush()
            for _ in range(200):
                if len(self.names()) == 2:
                    break
                time.sleep(0.01)
            self.assertEqual(len(self.names()), 2)
            process.send_signal(signal.SIGKILL)
            process.wait()
        self.assertEqual(self.target.read_text(encoding="ascii"), "before")

    def test_full_disk_leaves_no_file(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (100_000, 100_000))
        done = decode(b"".join(random_blocks(2000)), "--output", str(self.target), preexec_fn=limit)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"rows.jsonl' cannot be written to: File too large", done.stderr)
        self.assertEqual(self.names(), [])

    def test_target_that_is_no_file(self):
        for target, reason in ((self.folder.name, b"directory"), ("/dev/null", b"no regular file"),
                               (self.folder.name + "/missing/rows", b"No such file")):
            done = decode(bytes(128), "--output", target)
            self.assertEqual(done.returncode, 2)
            self.assertIn(reason, done.stderr)

    def test_link_stays_one(self):
        self.target.write_text("before", encoding="ascii")
        link = pathlib.Path(self.folder.name, "link")
        link.symlink_to(self.target)
        self.assertEqual(decode(bytes(128), "--output", str(link)).returncode, 0)
        self.assertTrue(link.is_symlink())
        self.assertIsNone(json.loads(self.target.read_text(encoding="utf-8"))["rowError"])

    def test_order_does_not_depend_on_jobs(self):
        contents = b"".join(random_blocks(5000))
        expected = decode(contents, "--jobs", "1").stdout
        self.assertEqual([row["index"] for row in map(json.loads, expected.splitlines())], list(range(5000)))
        for jobs in ("2", "3", "16"):
            for output_format in ("jsonl", "text"):
                self.assertEqual(decode(contents, "--jobs", jobs, "--format", output_format).stdout,
                                 decode(contents, "--jobs", "1", "--format", output_format).stdout)

    def test_closed_pipe_ends_quietly(self):
        for jobs in ("1", "4"):
            reading, writing = os.pipe()
            os.close(reading)
            try:
                done = decode(bytes(128 * 5000), "--jobs", jobs, capture_output=False, stdout=writing,
                              stderr=subprocess.PIPE)
            finally:
                os.close(writing)
            self.assertEqual((done.returncode, done.stderr), (2, b""))

    def test_full_device(self):
        with open("/dev/full", "wb") as full:
            done = decode(bytes(128), capture_output=False, stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"No space left on device", done.stderr)

    def test_memory_stays_flat(self):
        def peak(mebibytes):
            with subprocess.Popen(["/bin/sh", "-c", f"head -c {mebibytes}M /dev/zero"], stdout=subprocess.PIPE) as zeros:
                with subprocess.Popen([TOOL, "decode", "--format", "csv", "--jobs", "2"], stdin=zeros.stdout,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
                    _, status, usage = os.wait4(process.pid, 0)
                    process.returncode = os.waitstatus_to_exitcode(status)
            self.assertEqual(process.returncode, 0)
            return usage.ru_maxrss
        small = peak(2)
        self.assertLess(peak(32), small * 1.5 + 2000)

    def test_progress_on_a_terminal_only(self):
        for use_terminal in (True, False):
            controller, terminal = pty.openpty()
            reading, writing = os.pipe()
            with subprocess.Popen([TOOL, "decode"], stdin=reading, stdout=subprocess.DEVNULL,
                                  stderr=terminal if use_terminal else subprocess.PIPE) as process:
                os.close(reading)
                os.close(terminal)
                for _ in range(4):
                    os.write(writing, bytes(32768))
                    time.sleep(0.4)
                os.close(writing)
                shown = b"" if use_terminal else process.stderr.read()
                process.wait()
            try:
                while use_terminal and (part := os.read(controller, 65536)):
                    shown += part
            except OSError:
                pass  # the end of what a terminal holds whose other side is closed
            os.close(controller)
            self.assertEqual(b"Decoding: 0 MiB" in shown, use_terminal, shown)
            self.assertTrue(shown.replace(b"\r\n", b"\n").endswith(b"0 good rows, 0 bad rows, 1024 empty blocks\n"), shown)


class EncodeTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    @staticmethod
    def values(rows):
        return [{key: value for key, value in row.items() if key != "source"} for row in rows]

    def assert_refused(self, done, *parts):
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        for part in parts:
            self.assertIn(part, done.stderr.decode())

    def good_row(self):
        return rows_of(decode(good_hex().encode()))[0]

    def test_samples_from_machine_and_report(self):
        for name in sample_names():
            report = json.loads(run("report", "--machine", name, "--format", "json").stdout)
            machine = run("encode", "--machine", name)
            if report["batteries"] == [None, None]:
                self.assert_refused(machine, name, "has no battery")
                continue
            encoded = run("encode", input=json.dumps(report).encode())
            self.assertEqual(encoded.returncode, 0, encoded.stderr)
            self.assertEqual(self.values(rows_of(decode(encoded.stdout))), self.values(rows_of(decode(machine.stdout))))

    def test_random_records(self):
        contents = b"".join(random_blocks(4000, seed=3))
        rows = decode(contents)
        for output_format in ("bin", "hex"):
            encoded = run("encode", "--format", output_format, input=rows.stdout)
            self.assertEqual((encoded.returncode, encoded.stderr), (0, b""))
            again = decode(encoded.stdout)
            self.assertEqual(self.values(rows_of(again)), self.values(rows_of(rows)))

    def test_blocks_are_those_that_were_decoded(self):
        block = bytearray(bytes.fromhex(good_hex()))
        encoded = run("encode", "--format", "bin", input=decode(bytes(block)).stdout)
        self.assertEqual(encoded.stdout, bytes(block))

    def test_a_current_is_a_signed_number_or_its_word(self):
        row = self.good_row()
        for told, current in ((-32768, -32768), (-1, -1), (0, 0), (32767, 32767), (32768, -32768), (65535, -1)):
            row["capacity"]["current"] = told
            encoded = run("encode", input=json.dumps(row).encode())
            self.assertEqual(rows_of(decode(encoded.stdout))[0]["capacity"]["current"], current)

    def test_percentages_that_are_none_are_taken(self):
        rows = decode(bytes(128)).stdout
        self.assertEqual(run("encode", "--format", "bin", input=rows).stdout, bytes(128))

    def test_no_blocks_for_a_terminal(self):
        for arguments, status in ((["--format", "bin"], 2), ([], 0),
                                  (["--format", "bin", "--output", self.folder.name + "/blocks"], 0)):
            controller, terminal = pty.openpty()
            done = run("encode", "--machine", "one-battery", *arguments, capture_output=False, stdout=terminal,
                       stderr=subprocess.PIPE)
            os.close(terminal)
            os.close(controller)
            self.assertEqual(done.returncode, status, done.stderr)
            self.assertEqual(b"--format bin" in done.stderr and b"terminal" in done.stderr, status == 2)

    def test_identifiers_are_kept(self):
        line = f"B\u00fcro 12,{good_hex()}\n".encode()
        self.assertEqual(run("encode", input=decode(line).stdout).stdout, line)

    def test_identifiers_come_back_or_are_refused(self):
        row = self.good_row()
        for name in ("a b", "", "#1", "'", '"', "00", good_hex(), "\u20ac", "\u00a0", "x" * 32511):
            row["id"] = name
            encoded = run("encode", input=json.dumps(row).encode())
            self.assertEqual((encoded.returncode, encoded.stderr), (0, b""), name[:10])
            self.assertEqual(rows_of(decode(encoded.stdout))[0], row)
        for name, reason in ((" a", "blank"), ("a ", "blank"), ("a,b", "comma"), ("a\tb", "control"), ("a\nb", "control"),
                             ("\x01", "control"), ("\x7f", "control"), ("\u009b", "control"), ("\0", "control"),
                             ("\ufeffa", "byte order mark"), ("x" * 32512, "line too long"), (7, "a text")):
            row["id"] = name
            self.assert_refused(run("encode", input=json.dumps(row).encode()), "JSON value 1", "id: expected", reason)

    def test_slots(self):
        both = run("encode", "--machine", "two-batteries").stdout.splitlines()
        report = run("report", "--machine", "two-batteries", "--format", "json").stdout
        self.assertEqual(len(both), 2)
        for slot in (0, 1):
            self.assertEqual(run("encode", "--machine", "two-batteries", "--slot", str(slot)).stdout.splitlines(),
                             [both[slot]])
            self.assertEqual(run("encode", "--slot", str(slot), input=report).stdout.splitlines(), [both[slot]])
        self.assert_refused(run("encode", "--machine", "one-battery", "--slot", "1"), "slot 1")
        self.assert_refused(run("encode", "--slot", "2", input=report), "--slot")

    def test_values_no_block_can_hold(self):
        changes = (("capacity", "voltage", 65536), ("capacity", "voltage", -1), ("capacity", "voltage", 1.5),
                   ("capacity", "voltage", "1"), ("capacity", "current", -32769), ("capacity", "current", 65536),
                   ("capacity", "current", None), ("cells", "voltages", [1, 2, 3]), ("cells", "voltages", [1, 2, 3, None]),
                   ("identity", "serialNumber", "x" * 17), ("identity", "manufacturer", "\u20ac"),
                   ("identity", "manufacturer", "a\u0000b"), ("identity", "deviceName", 7),
                   ("dates", "manufacturingDate", "2021-05-06"), ("dates", "manufacturingDate", "1979-05-06T00:00:00+00:00"),
                   ("dates", "manufacturingDate", "2108-05-06T00:00:00+00:00"), ("status", "word", None))
        for group, key, value in changes:
            row = self.good_row()
            row[group][key] = value
            done = run("encode", input=json.dumps(self.good_row()).encode() + b"\n" + json.dumps(row).encode())
            self.assert_refused(done, "standard input", "JSON value 2", f"{group}.{key}", "expected")
        row = self.good_row()
        del row["capacity"]["temperature"]
        self.assert_refused(run("encode", input=json.dumps(row).encode()), "capacity.temperature")
        del row["capacity"]
        self.assert_refused(run("encode", input=json.dumps(row).encode()), "capacity")

    def test_inputs_that_are_nothing_to_encode(self):
        machine = (MACHINES / "one-battery.json").read_bytes()
        for contents, part in ((b"{", "line 1, column 2: expected JSON"), (b'{"identity": 1e999}', "number overflow"),
                               (b"[]", "expected"), (b"7", "expected"), (b"{}", "expected"),
                               (machine, "--machine"), (decode(b"7").stdout, "rowError"),
                               (b'{"batteries": 1}', "batteries"), (b'{"batteries": [null]}', "no battery"),
                               (b'{"batteries": [7]}', "batteries[0].capacity")):
            self.assert_refused(run("encode", input=contents), "JSON value 1", part)
        self.assert_refused(run("encode", self.folder.name), self.folder.name, "Is a directory")
        self.assert_refused(run("encode", self.folder.name + "/missing"), "missing", "No such file")
        self.assert_refused(run("encode", "--machine", "no-such-sample"), "no-such-sample")
        self.assert_refused(run("encode", "x", "--machine", "one-battery"), "--machine")

    def test_empty_inputs(self):
        empty = pathlib.Path(self.folder.name, "empty.json")
        empty.touch()
        for contents in (b"", b" \n\t", codecs.BOM_UTF16_LE):
            self.assert_refused(run("encode", input=contents), "standard input", "is empty: expected a JSON report")
        self.assert_refused(run("encode", "-", str(empty), input=decode(good_hex().encode()).stdout), "empty.json", "is empty")

    def test_utf16(self):
        rows = decode(f"B\u00fcro \U0001f50b,{good_hex()}\n".encode() * 700).stdout.decode()
        expected = run("encode", input=rows.encode()).stdout
        for encoding, mark in (("utf-16-le", codecs.BOM_UTF16_LE), ("utf-16-be", codecs.BOM_UTF16_BE)):
            encoded = run("encode", input=mark + rows.encode(encoding))
            self.assertEqual((encoded.returncode, encoded.stdout), (0, expected))
            self.assert_refused(run("encode", input="{}".encode(encoding)), "UTF-16 without a byte order mark")

    def test_nesting_that_is_too_deep(self):
        nested = b"[" * 60000 + b"]" * 60000
        for contents in (nested, b'{"identity": {}, "capacity": {"designCapacity": ' + nested + b"}}",
                         b'{"batteries": ' + nested + b"}", b'{"a": ' * 60000 + b"1" + b"}" * 60000):
            self.assert_refused(run("encode", input=contents), "JSON value 1", "no more than 64 arrays and objects")
        machine = pathlib.Path(self.folder.name, "deep.json")
        machine.write_bytes(b'{"description": "A", "slots": [{"battery": {"voltage": ' + nested + b"}}]}")
        for command in ("encode", "report", "record", "watch"):
            self.assert_refused(run(command, "--machine", str(machine)), "deep.json: slots[0].battery.voltage[0]",
                                "no more than 64 arrays and objects")

    def test_refused_input_leaves_no_file(self):
        target = pathlib.Path(self.folder.name, "blocks.bin")
        contents = decode(good_hex().encode()).stdout * 2000 + b"{}"
        self.assert_refused(run("encode", "--format", "bin", "--output", str(target), input=contents), "JSON value 2001")
        self.assertEqual(os.listdir(self.folder.name), [])

    def test_output_file(self):
        target = pathlib.Path(self.folder.name, "blocks.bin")
        done = run("encode", "--machine", "two-batteries", "--format", "bin", "--output", str(target))
        self.assertEqual((done.returncode, done.stdout), (0, b""))
        self.assertEqual(len(target.read_bytes()), 256)


def update():
    GOLDEN.mkdir(exist_ok=True)
    for path in GOLDEN.iterdir():
        path.unlink()
    for name, contents in golden_inputs().items():
        for output_format, suffix in FORMATS.items():
            (GOLDEN / (name + suffix)).write_bytes(golden_rows(contents, output_format).stdout)


def main():
    global TOOL
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--update", action="store_true")
    arguments, others = parser.parse_known_args()
    TOOL = os.path.abspath(arguments.tool)
    if arguments.update:
        update()
    else:
        unittest.main(argv=[sys.argv[0], *others])


if __name__ == "__main__":
    main()
