#!/usr/bin/python3
"""Prints the project's own sources among the compile commands that lie in one of the named folders, one path a line:

    tidy-sources.py COMPILE_COMMANDS FOLDER ...
"""
import json
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parents[2]
folders = [root / name for name in sys.argv[2:]]
with open(sys.argv[1], encoding="utf-8") as file:
    commands = json.load(file)
sources = {pathlib.Path(entry["directory"], entry["file"]).resolve() for entry in commands}
for source in sorted(sources):
    if any(folder in source.parents for folder in folders):
        print(source)
