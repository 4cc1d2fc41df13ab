#!/usr/bin/env python3
"""Sets the results of the benchmarks against each other and against what they are to reach.

  summary.py --results FILE --tool PROGRAM

FILE is what norv-battery-benchmarks wrote with --benchmark_out, with repetitions; medians are taken. The tool decodes 1 GiB
of blocks once more, to tell its peak memory.
"""

import argparse
import json
import os
import subprocess
import sys


class Results:
    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            runs = json.load(file)["benchmarks"]
        failed = sorted({run["name"] for run in runs if run.get("error_occurred")})
        if failed:
            sys.exit(f"these benchmarks failed: {', '.join(failed)}")
        self.medians = {run["run_name"]: run for run in runs if run.get("aggregate_name") == "median"}

    def nanoseconds(self, name, clock="cpu_time"):
        run = self.medians[name]
        return run[clock] * {"ns": 1, "us": 1e3, "ms": 1e6}[run["time_unit"]]

    def per_second(self, name):
        return self.medians[name]["items_per_second"]

    def bytes_per_second(self, name):
        return self.medians[name]["bytes_per_second"]


def peak_memory(tool, mebibytes=1024):
    """In KiB, of decoding a pipe of blocks to JSON Lines with all cores."""
    blocks = subprocess.run([tool, "encode", "--machine", "two-batteries", "--format", "bin"], capture_output=True,
                            check=True).stdout
    mebibyte = blocks * (1024 * 1024 // len(blocks))
    with subprocess.Popen([tool, "decode"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL) as process:
        for _ in range(mebibytes):
            process.stdin.write(mebibyte)
        process.stdin.close()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"decoding 1 GiB ended with status {process.returncode}")
    return usage.ru_maxrss


def rows(results, peak):
    """What is measured, its figure, and what it is to reach: at least, or with a "<" less than."""
    record = results.nanoseconds("record/library")
    yield "record: times as fast as patterns compiled each time", results.nanoseconds(
        "record/plain_compiling_each_time") / record, ">", 1000, ""
    yield "record: times as fast as patterns compiled once", results.nanoseconds(
        "record/plain_compiling_once") / record, ">", 50, ""
    yield "collection of two batteries", results.nanoseconds("collection/two_batteries") / 1000, "<", 20, "us"
    yield "bulk: JSON Lines, rows a second and core", results.per_second("bulk/jsonl/no_output/1_job") / 1e6, ">", 1, "M"
    yield "bulk: CSV, rows a second and core", results.per_second("bulk/csv/no_output/1_job") / 1e6, None, None, "M"
    yield "bulk: JSON Lines to a file, all cores, rows a second", results.per_second(
        "bulk/jsonl/file/all_jobs/real_time") / 1e6, None, None, "M"
    for name, label in (("jsonl", "JSON Lines"), ("csv", "CSV")):
        share = results.bytes_per_second(f"bulk/{name}/file/1_job") / results.bytes_per_second(f"bulk/{name}/fwrite")
        yield f"bulk: {label} to a file, share of the fwrite rate", share, ">", 0.2, ""
    yield "bulk: peak memory for 1 GiB of blocks", peak / 1024, "<", 32, "MiB"
    yield "bulk: rows a second that a JSON library could write at most", results.per_second(
        "bulk/json_library/dump") / 1e6, None, None, "M"
    yield "report reader: share of memchr's speed", results.bytes_per_second("report/reader") / results.bytes_per_second(
        "report/memchr"), None, None, ""
    yield "process: a report, beyond an empty program", (results.nanoseconds(
        "process/report/real_time", "real_time") - results.nanoseconds("process/empty/real_time", "real_time")) / 1e6, "<", 5, "ms"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--results", required=True)
    parser.add_argument("--tool", required=True)
    arguments = parser.parse_args()
    results = Results(arguments.results)
    print(f"{'':60}  {'figure':>12}  {'to reach':>10}")
    for label, figure, sign, bound, unit in rows(results, peak_memory(arguments.tool)):
        wanted = "" if sign is None else f"{sign} {bound:g} {unit}".rstrip()
        reached = "" if sign is None else "yes" if (figure > bound) == (sign == ">") else "NO"
        print(f"{label:60}  {f'{figure:.4g} {unit}'.rstrip():>12}  {wanted:>10}  {reached}")


if __name__ == "__main__":
    main()
