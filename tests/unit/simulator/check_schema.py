#!/usr/bin/python3
"""Checks machine files against the schema of their format.

check_schema.py SCHEMA FOLDER ...: every file of a folder must be valid, of a folder named "bad" none.
"""
import json
import pathlib
import sys

import jsonschema


def files_of(folder):
    files = sorted(folder.glob("*.json"))
    if not files:
        sys.exit(f"{folder}: expected machine files (*.json), found none")
    return files


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    schema = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    surprises = 0
    for folder in map(pathlib.Path, sys.argv[2:]):
        for path in files_of(folder):
            errors = list(validator.iter_errors(json.loads(path.read_text(encoding="utf-8"))))
            if folder.name == "bad" and not errors:
                print(f"{path}: expected the schema to refuse it")
                surprises += 1
            elif folder.name != "bad" and errors:
                print(f"{path}: {errors[0].json_path}: {errors[0].message}")
                surprises += 1
    return 1 if surprises else 0


if __name__ == "__main__":
    sys.exit(main())
