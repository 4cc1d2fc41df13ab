#!/usr/bin/env python3
"""Reads the listings of tests/fixtures/power-supply with the tool and compares what is made of them.

  fixtures.py --tool PROGRAM --blocks PROGRAM NAME     one of them
  fixtures.py --tool PROGRAM --blocks PROGRAM --update writes what is expected anew; read what changed before it is kept

NAME.txt lists a machine's /sys/class/power_supply and says at its top what is particular to it; NAME.expected has the
blocks and the report that are made of it. Each is read twice, as the listing that it is and laid out as a folder, which is
to make no difference. What no listing can tell, such as a pipe, PREPARATIONS adds to the folder.
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
    os.mkfifo(battery / "capacity")
    (battery / "cycle_count").mkdir()
    (battery / "serial_number").symlink_to("/dev/zero")
    (battery / "voltage_now").symlink_to("/proc/self/mem")
    shutil.copytree(battery, folder.parent / "elsewhere", ignore=lambda _, names: set(names) - {"type", "model_name"})
    (folder / "BAT1").symlink_to("../elsewhere")


PREPARATIONS = {"no-ordinary-files": lay_other_things}


def lay_out(listing, folder):
    for line in listing.read_bytes().splitlines():
        if not line.startswith(b"#"):
            path, value = line.split(b":", 1)
            attribute = folder / path.decode()
            attribute.parent.mkdir(parents=True, exist_ok=True)
            attribute.write_bytes(value + b"\n")


def output_of(*command, work):
    done = subprocess.run(command, cwd=work, capture_output=True, check=False, timeout=PATIENCE)
    return done.returncode, done.stdout, done.stderr.decode(errors="replace")


def read(arguments, source, work):
    """The blocks and the report."""
    status, blocks, errors = output_of(arguments.blocks, source, work=work)
    if status != 0 or errors:
        sys.exit(f"{source}: the blocks end with status {status}:\n{errors}")
    status, report, errors = output_of(arguments.tool, "report", "--power-supply", source, work=work)
    has_battery = b"return code 0" in blocks
    if status != (0 if has_battery else 1) or bool(errors) == has_battery:
        sys.exit(f"{source}: the report ends with status {status}:\n{errors}")
    return blocks + b"\n" + report


def compare(expected, output, names):
    if output != expected:
        lines = [text.decode(errors="backslashreplace").splitlines(True) for text in (expected, output)]
        sys.exit("".join(difflib.unified_diff(*lines, *names)))


def read_both(arguments, name):
    """What is read of the fixture, which must be the same of the folder but for its name."""
    with tempfile.TemporaryDirectory() as work:
        listing = pathlib.Path(work, f"{name}.txt")
        shutil.copyfile(FIXTURES / listing.name, listing)
        folder = pathlib.Path(work, "class")
        lay_out(listing, folder)
        PREPARATIONS.get(name, lambda _: None)(folder)
        listed = read(arguments, listing.name, work)
        laid_out = read(arguments, "class", work)
    compare(listed.replace(f"power supply listing {name}.txt".encode(), b"power supply folder class"), laid_out,
            (f"of the listing {name}", "of the folder"))
    return listed


def check(arguments):
    path = FIXTURES / f"{arguments.name}.expected"
    compare(path.read_bytes(), read_both(arguments, arguments.name), (str(path), "what was read"))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True, type=os.path.abspath)
    parser.add_argument("--blocks", required=True, type=os.path.abspath)
    parser.add_argument("--update", action="store_true")
    parser.add_argument("name", nargs="?")
    arguments = parser.parse_args()
    if arguments.update:
        for path in sorted(FIXTURES.glob("*.txt")):
            path.with_suffix(".expected").write_bytes(read_both(arguments, path.stem))
    elif arguments.name:
        check(arguments)
    else:
        parser.error("expected a name, or --update")


if __name__ == "__main__":
    main()
