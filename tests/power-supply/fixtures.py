#!/usr/bin/env python3
"""Reads the folders of tests/fixtures/power-supply with the tool and compares what is made of them.

  fixtures.py --tool PROGRAM --blocks PROGRAM NAME     one folder
  fixtures.py --tool PROGRAM --blocks PROGRAM --update writes what is expected anew; read what changed before it is kept

Each folder holds "class", a copy of a machine's /sys/class/power_supply, "about.txt" with what is particular to it,
"blocks.txt" with the expected blocks and "report.txt" with the expected report. What cannot be kept beside the sources,
such as a pipe, PREPARATIONS adds to a copy of the folder.
"""

import argparse
import difflib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
FIXTURES = HERE.parent / "fixtures" / "power-supply"
PATIENCE = 60


def lay_other_things(folder):
    """In the place of files. Whoever reads to the end of the pipe or of the device never comes to it."""
    battery = folder / "BAT0"
    for name in ("capacity", "cycle_count", "serial_number", "voltage_now"):
        (battery / name).unlink()
    os.mkfifo(battery / "capacity")
    (battery / "cycle_count").mkdir()
    (battery / "serial_number").symlink_to("/dev/zero")
    (battery / "voltage_now").symlink_to("/proc/self/mem")
    shutil.copytree(battery, folder.parent / "elsewhere", ignore=lambda _, names: set(names) - {"type", "model_name"})
    (folder / "BAT1").symlink_to("../elsewhere")


PREPARATIONS = {"no-ordinary-files": lay_other_things}


def output_of(name, *command):
    """What the command prints for a fresh copy of the folder, which it meets as "class" in its working folder."""
    with tempfile.TemporaryDirectory() as work:
        folder = pathlib.Path(work, "class")
        shutil.copytree(FIXTURES / name / "class", folder)
        PREPARATIONS.get(name, lambda _: None)(folder)
        done = subprocess.run(command, cwd=work, capture_output=True, check=False, timeout=PATIENCE)
    return done.returncode, done.stdout, done.stderr.decode(errors="replace")


def read(arguments, name):
    """The blocks and the report, by the names of the files that they are kept in."""
    status, blocks, errors = output_of(name, arguments.blocks, "class")
    if status != 0 or errors:
        sys.exit(f"{name}: the blocks end with status {status}:\n{errors}")
    status, report, errors = output_of(name, arguments.tool, "report", "--power-supply", "class")
    has_battery = b"return code 0" in blocks
    if status != (0 if has_battery else 1) or bool(errors) == has_battery:
        sys.exit(f"{name}: the report ends with status {status}:\n{errors}")
    return {"blocks.txt": blocks, "report.txt": report}


def check(arguments):
    for file, output in read(arguments, arguments.name).items():
        path = FIXTURES / arguments.name / file
        expected = path.read_bytes()
        if output != expected:
            sys.exit("".join(difflib.unified_diff(expected.decode().splitlines(True), output.decode().splitlines(True),
                                                  str(path), "what was read")))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True, type=os.path.abspath)
    parser.add_argument("--blocks", required=True, type=os.path.abspath)
    parser.add_argument("--update", action="store_true")
    parser.add_argument("name", nargs="?")
    arguments = parser.parse_args()
    if arguments.update:
        for folder in sorted(FIXTURES.iterdir()):
            for file, output in read(arguments, folder.name).items():
                (folder / file).write_bytes(output)
    elif arguments.name:
        check(arguments)
    else:
        parser.error("expected a name, or --update")


if __name__ == "__main__":
    main()
