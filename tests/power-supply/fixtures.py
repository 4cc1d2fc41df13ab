#!/usr/bin/env python3
"""Reads the folders of tests/fixtures/power-supply with the tool and compares what is made of them.

  fixtures.py --tool PROGRAM --blocks PROGRAM NAME     one folder
  fixtures.py --tool PROGRAM --blocks PROGRAM --update writes what is expected anew; read what changed before it is kept

Each folder holds "class", a copy of a machine's /sys/class/power_supply, "about.txt" with what is particular to it,
"blocks.txt" with the expected blocks and "report.txt" with the expected report. What no file can express, such as an
attribute that changes while it is read, PREPARATIONS adds to a copy of the folder.
"""

import argparse
import difflib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import threading

HERE = pathlib.Path(__file__).resolve().parent
FIXTURES = HERE.parent / "fixtures" / "power-supply"
PATIENCE = 60


def answer_with(path, *answers):
    """Lets the answers meet the reads of `path` one after another; the last one stays. An answer is a text, or a function
    that gives one. There is a pipe for each: to open it waits for the reader, and by then the next one lies in its place."""
    path.unlink(missing_ok=True)
    os.mkfifo(path)

    def write():
        for position, answer in enumerate(answers):
            with open(path, "w", encoding="utf-8") as pipe:
                text = answer() if callable(answer) else answer
                following = path.parent.parent.parent / "following"
                if position + 1 < len(answers):
                    os.mkfifo(following)
                else:
                    following.write_text(text, encoding="utf-8")
                try:
                    following.rename(path)
                except FileNotFoundError:  # the folder went with its battery
                    following.unlink()
                pipe.write(text)

    threading.Thread(target=write, daemon=True).start()


def change_status(folder):
    answer_with(folder / "BAT0" / "status", "Discharging\n", "Charging\n")


def make_unreadable(folder):
    for name in ("voltage_now", "serial_number", "capacity"):
        (folder / "BAT0" / name).unlink()
        (folder / "BAT0" / name).symlink_to("/proc/self/mem")  # whose first page no process has
    (folder / "BAT0" / "cycle_count").unlink()
    (folder / "BAT0" / "cycle_count").mkdir()


def remove_while_read(folder):
    def remove():
        shutil.rmtree(folder / "BAT0")
        return "11893000\n"

    answer_with(folder / "BAT0" / "voltage_now", remove)


PREPARATIONS = {"changing-values": change_status, "io-error": make_unreadable, "removed-while-read": remove_while_read}


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
