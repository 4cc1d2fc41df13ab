#!/usr/bin/env python3
"""Runs clang-tidy over the sources of some folders, several at a time, but for those that it has seen as they are:

    tidy.py WORK-FOLDER FOLDER ... [-- ARGUMENT ...]

WORK-FOLDER has the compile_commands.json and, below seen/, what was found clean: for each source a digest of everything
that the answer depends on, and the files that it includes. ARGUMENTs go to clang-tidy. Ends with 1 when there is a finding.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
CONFIGURATION = ROOT / ".clang-tidy"


def run(command, folder):
    return subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


def digest(tool, command, files):
    """Nothing when one of the files is gone."""
    parts = hashlib.sha256(json.dumps([tool, command]).encode())
    try:
        for file in [CONFIGURATION, *files]:
            parts.update(hashlib.sha256(pathlib.Path(file).read_bytes()).digest())
    except OSError:
        return None
    return parts.hexdigest()


def included_files(entry):
    """What the source includes, itself first, as the compiler tells it."""
    command = shlex.split(entry["command"])
    end = command.index("-o")
    told = run(command[:end] + ["-M", entry["file"]], entry["directory"])
    told.check_returncode()
    names = shlex.split(told.stdout.replace("\\\n", " "))[1:]
    return sorted({str(pathlib.Path(entry["directory"], name)) for name in names})


def tidy(entry, tool, arguments, work):
    """The complaint about one source, empty when there is none."""
    note = work / "seen" / (hashlib.sha256(json.dumps([entry["file"], arguments]).encode()).hexdigest() + ".json")
    key = [entry["command"], arguments]
    if note.exists():
        seen = json.loads(note.read_text(encoding="utf-8"))
        if seen["digest"] == digest(tool, key, seen["files"]):
            return ""
    found = run(["clang-tidy", "-p", str(work), "--quiet", *arguments, entry["file"]], entry["directory"])
    if found.returncode != 0:
        return found.stdout
    files = included_files(entry)
    note.write_text(json.dumps({"digest": digest(tool, key, files), "files": files}), encoding="utf-8")
    return ""


def main():
    work = pathlib.Path(sys.argv[1]).resolve()
    names = sys.argv[2:]
    arguments = names[names.index("--") + 1:] if "--" in names else []
    # Sources that are joined lie below the same names in the build.
    folders = [base / name for name in names[:len(names) - len(arguments)] if name != "--" for base in (ROOT, work)]
    entries = {}
    for entry in json.loads((work / "compile_commands.json").read_text(encoding="utf-8")):
        if any(folder in pathlib.Path(entry["file"]).parents for folder in folders):
            entries.setdefault(entry["file"], entry)
    if not entries:
        sys.exit(f"no compile command for a source in: {' '.join(names)}")
    (work / "seen").mkdir(exist_ok=True)
    tool = run(["clang-tidy", "--version"], work).stdout
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        complaints = list(pool.map(lambda entry: tidy(entry, tool, arguments, work), entries.values()))
    print("\n".join(complaints), end="")
    sys.exit(1 if any(complaints) else 0)


if __name__ == "__main__":
    main()
