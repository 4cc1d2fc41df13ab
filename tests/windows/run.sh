#!/usr/bin/env bash
# Runs the tests of a build for Windows, here through Wine: tests/windows/run.sh BUILD-FOLDER
# Each test program runs once and counts as many tests as it holds. Ends with `N passed, N failed`.
set -euo pipefail

build=$(cd "${1:?usage: tests/windows/run.sh BUILD-FOLDER}" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export NORV_WINE_PREFIX=${NORV_WINE_PREFIX:-$build/wine}
export WINEPREFIX=$NORV_WINE_PREFIX WINEDEBUG=-all

# Wine's server is started once and stays until the end. Without that it would go whenever no program runs, and a program
# that starts just then would now and then not come up.
"$here/../../cmake/toolchains/wine.sh" cmd /c ver >"$build/wine.log" 2>&1
StopWine() { wineserver -k 2>/dev/null || true; }
StopWine
wineserver -w
wineserver -p
trap StopWine EXIT

rm -rf "$build/reports" && mkdir "$build/reports"  # by no two of the programs at once
# wine.sh keeps Wine's services from holding a program's output open. Should Wine leave one hanging all the same, what runs
# out of time, and nothing else, is tried again.
ctest --test-dir "$build" -j "$(nproc)" --no-tests=error --timeout 300 --repeat after-timeout:3 --output-on-failure \
  >"$build/tests.log" 2>&1 ||
  sed -n '/^[[:space:]]*[0-9]* - \| Failure$\|^\[  FAILED\|\*\*\*/p' "$build/tests.log"

# A program that wrote no report of its own, by its nature or because it did not come to its end, counts as one test.
python3 - "$build" <<'PYTHON'
import pathlib
import re
import sys

build = pathlib.Path(sys.argv[1])
passed = failed = 0
log = (build / "tests.log").read_text(encoding="utf-8", errors="replace")
# A program that was tried again has a line for each try, of which the last one counts.
results = dict(re.findall(r"^ *(?:\d+/\d+)? *Test +#\d+: (\S+) \.*(.*)$", log, re.MULTILINE))
for name, result in results.items():
    good = result.strip().startswith("Passed")
    report = build / "reports" / (name + ".xml")
    if report.exists():
        # Read as a text: the names of tests may hold characters that no XML may.
        counts = dict(re.findall(r'(\w+)="(\d+)"', re.search("<testsuites [^>]*>", report.read_text(errors="replace"))[0]))
        bad = int(counts["failures"]) + int(counts["errors"])
        passed += int(counts["tests"]) - bad
        failed += bad if bad or good else 1
    else:
        passed += good
        failed += not good
print(f"{passed} passed, {failed} failed")
sys.exit(1 if failed or not passed else 0)
PYTHON
