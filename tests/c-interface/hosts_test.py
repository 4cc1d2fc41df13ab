#!/usr/bin/env python3
"""Builds and runs the host programs of docs/hosts.md as they stand there:

  hosts_test.py --cc COMPILER --cxx COMPILER --include FOLDER --shared-library FILE
"""

import argparse
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENT = ROOT / "docs" / "hosts.md"
WARNINGS = ["-Wall", "-Wextra", "-pedantic", "-Werror"]

options = None


def program(language):
    programs = re.findall(rf"^```{language}\n(.*?)^```$", DOCUMENT.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
    if len(programs) != 1:
        raise AssertionError(f"docs/hosts.md has {len(programs)} programs in {language}, not one")
    return programs[0]


def make_block():
    block = bytearray(128)
    struct.pack_into("<14H", block, 0, 4545, 4398, 4310, 2, 87, 2981, 12714, 0, 11550, 160, 4239, 4238, 4237, 0)
    struct.pack_into("16s18s16s", block, 0x1C, b"04217 2022-09-14", b"313-54-33-A", b"6FKRA0B2C4D5E6")
    struct.pack_into("7s", block, 0x4F, b"NV3C52")
    struct.pack_into("<H", block, 0x5C, 0)
    return bytes(block)


class HostsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder_owner = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.folder_owner.name)
        cls.block = cls.folder / "battery.block"
        cls.block.write_bytes(make_block())
        cls.hosts = {
            "C++": cls.build("host.cpp", program("cpp"), [options.cxx, "-std=c++17"]),
            "C": cls.build("host.c", program("c"), [options.cc, "-std=c99"]),
            "Python": cls.write("host.py", program("python"), [sys.executable, "-B"]),
        }

    @classmethod
    def tearDownClass(cls):
        cls.folder_owner.cleanup()

    @classmethod
    def write(cls, name, text, command):
        path = cls.folder / name
        path.write_text(text, encoding="utf-8")
        return [*command, str(path)]

    @classmethod
    def build(cls, name, text, command):
        host = str(cls.folder / (name + ".host"))
        library = pathlib.Path(options.shared_library)
        compile_command = cls.write(name, text, [*command, *WARNINGS, "-I", options.include])
        subprocess.run([*compile_command, str(library), f"-Wl,-rpath,{library.parent}", "-o", host], check=True)
        return [host]

    def run_host(self, language, *arguments):
        environment = dict(os.environ, NORV_BATTERY_LIBRARY=options.shared_library, PYTHONPATH=str(ROOT / "bindings/python"))
        return subprocess.run([*self.hosts[language], *arguments], capture_output=True, check=False, text=True,
                              env=environment, timeout=60)

    def test_each_reads_the_battery_of_a_block(self):
        for language in self.hosts:
            with self.subTest(language):
                done = self.run_host(language, str(self.block))
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                self.assertIn("serial number: 04217 2022-09-14\n", done.stdout)
                self.assertIn("full charge capacity: 4398", done.stdout)
                self.assertIn("cycle count: 87\n", done.stdout)

    def test_c_and_python_say_the_same_of_every_field(self):
        done = self.run_host("C", str(self.block))
        self.assertEqual(done.stdout, self.run_host("Python", str(self.block)).stdout)
        lines = done.stdout.splitlines()
        self.assertEqual(len(lines), 68)
        self.assertIn("full charge capacity percentage: 96.765 %", lines)
        self.assertIn("manufacturing date:  (invalid)", lines)
        self.assertIn("time charge: 0 (absent)", lines)
        self.assertIn("fully charged: true", lines)

    def test_each_says_why_this_machine_has_no_battery(self):
        for language in self.hosts:
            with self.subTest(language):
                done = self.run_host(language)
                self.assertEqual((done.returncode, done.stdout), (1, ""))
                self.assertEqual(done.stderr, "PrivateBiosWMI error (code 6)\n")


def main():
    global options
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ("cc", "cxx", "include", "shared-library"):
        parser.add_argument("--" + name, required=True)
    options = parser.parse_args()
    unittest.main(argv=[sys.argv[0]])


if __name__ == "__main__":
    main()
