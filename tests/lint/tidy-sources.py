#!/usr/bin/python3
"""Prints the project's own sources among the compile commands, one path a line: tidy-sources.py COMPILE_COMMANDS."""
import json
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parents[2]
with open(sys.argv[1], encoding="utf-8") as file:
    commands = json.load(file)
sources = {pathlib.Path(entry["directory"], entry["file"]).resolve() for entry in commands}
build = root / "build"
for source in sorted(sources):
    if root in source.parents and build not in source.parents:
        print(source)
