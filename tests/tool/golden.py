#!/usr/bin/env python3
"""Compares the tool's reports of the sample machines with the ones kept in tests/tool/golden.

  golden.py --tool PROGRAM --sample NAME --format text|json   one report
  golden.py --tool PROGRAM --complete                         no report missing or left over, every JSON key documented
  golden.py --tool PROGRAM --update                           writes all of them anew; read what changed before it is kept

With --emulator RUNNER the tool is a Windows program that RUNNER runs. Then the lines of a text report end as Windows ends
them; beyond that it is the same, byte by byte, and so is a JSON report with all its line ends.
"""

import argparse
import difflib
import json
import os
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
GOLDEN = HERE / "golden"
MACHINES = ROOT / "simulator" / "machines"
DOCUMENT = ROOT / "docs" / "tool.md"
EMULATOR = []
SUFFIXES = {"text": ".txt", "json": ".json"}


def sample_names():
    return sorted(path.stem for path in MACHINES.glob("*.json"))


def make_report(tool, sample, output_format):
    """Everything a report can hold; the battery test where the sample is about it or has a test program."""
    command = [*EMULATOR, tool, "report", "--machine", sample, "--format", output_format, "--cell-swell"]
    machine = json.loads((MACHINES / f"{sample}.json").read_text(encoding="utf-8"))
    if "testProgram" in machine or sample.startswith("test-"):
        command.append("--test")
    done = subprocess.run(command, capture_output=True, check=False, timeout=60, env=dict(os.environ, TZ="UTC"))
    if done.stderr:
        sys.exit(f"{' '.join(command)}: unexpected on standard error:\n{done.stderr.decode(errors='replace')}")
    return done.returncode, done.stdout if not EMULATOR or output_format == "json" else unix_lines(done.stdout)


def unix_lines(text):
    if text.count(b"\n") != text.count(b"\r\n"):
        sys.exit("the text report has lines that do not end as lines of Windows do")
    return text.replace(b"\r\n", b"\n")


def expected_status(report):
    test = report["batteryTest"]
    if test is not None and test["class"] in (None, "FAIL"):
        return 3 if test["class"] else 4
    return 0 if any(battery is not None for battery in report["batteries"]) else 1


def refuse_repeated_keys(pairs):
    keys = [key for key, _ in pairs]
    if len(keys) != len(set(keys)):
        sys.exit(f"a JSON object holds a key twice: {keys}")
    return dict(pairs)


def check_form(sample, output_format, status, output):
    if output_format == "json":
        report = json.loads(output.decode("utf-8"), object_pairs_hook=refuse_repeated_keys)
        if status != expected_status(report):
            sys.exit(f"{sample}: the exit status is {status}, by its own report it should be {expected_status(report)}")
    elif re.search(rb"[^\n -~]", output) or re.search(rb" \n", output):
        sys.exit(f"{sample}: the text report holds a byte that is no printable ASCII character, or a blank at an end")


def check(tool, sample, output_format):
    status, output = make_report(tool, sample, output_format)
    check_form(sample, output_format, status, output)
    path = GOLDEN / (sample + SUFFIXES[output_format])
    if not path.exists():
        sys.exit(f"{path} is missing: write it with --update, and read it before it is kept")
    expected = path.read_bytes()
    if output != expected:
        sys.exit("".join(difflib.unified_diff(expected.decode().splitlines(True), output.decode().splitlines(True),
                                              str(path), "the tool's report")))


def key_paths(value, path=""):
    """The paths of all keys: "batteries[].cells.voltages"."""
    if isinstance(value, dict):
        for key, member in value.items():
            inner = f"{path}.{key}" if path else key
            yield inner
            yield from key_paths(member, inner)
    elif isinstance(value, list):
        for member in value:
            yield from key_paths(member, path + "[]")


def documented_paths():
    """The first cells of the key table. The keys of an error are documented once, for every place of one."""
    rows = re.findall(r"^\| `([A-Za-z0-9.\[\]]+)` \|", DOCUMENT.read_text(encoding="utf-8"), re.MULTILINE)
    plain = [row for row in rows if not row.startswith("ERROR.")]
    error = [row.removeprefix("ERROR.") for row in rows if row.startswith("ERROR.")]
    errors = [f"{row}.{key}" for row in plain if re.search(r"(^|\.)(error|readError)$", row) for key in error]
    return set(plain + errors)


def check_complete(_tool):
    wanted = {sample + suffix for sample in sample_names() for suffix in SUFFIXES.values()}
    found = {path.name for path in GOLDEN.iterdir()}
    if not wanted or wanted != found:
        sys.exit(f"missing reports: {sorted(wanted - found)}\nreports of no sample: {sorted(found - wanted)}")
    used = set()
    for path in GOLDEN.glob("*.json"):
        used |= set(key_paths(json.loads(path.read_text(encoding="utf-8"))))
    documented = documented_paths()
    if used != documented:
        sys.exit(f"keys that docs/tool.md does not list: {sorted(used - documented)}\n"
                 f"keys listed there that no report has: {sorted(documented - used)}")


def update(tool):
    GOLDEN.mkdir(exist_ok=True)
    for path in GOLDEN.iterdir():
        path.unlink()
    for sample in sample_names():
        for output_format, suffix in SUFFIXES.items():
            status, output = make_report(tool, sample, output_format)
            check_form(sample, output_format, status, output)
            (GOLDEN / (sample + suffix)).write_bytes(output)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--emulator")
    parser.add_argument("--sample")
    parser.add_argument("--format", choices=SUFFIXES)
    parser.add_argument("--complete", action="store_true")
    parser.add_argument("--update", action="store_true")
    arguments = parser.parse_args()
    if arguments.emulator:
        EMULATOR.append(arguments.emulator)
    if arguments.update:
        update(arguments.tool)
    elif arguments.complete:
        check_complete(arguments.tool)
    elif arguments.sample and arguments.format:
        check(arguments.tool, arguments.sample, arguments.format)
    else:
        parser.error("expected --sample and --format, --complete, or --update")


if __name__ == "__main__":
    main()
