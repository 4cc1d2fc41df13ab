#!/usr/bin/python3
"""Checks machine files against the schema of their format.

check_schema.py SCHEMA FOLDER CASES: every file of the folder must be valid, and of the cases, which are written as in
machine-files.txt, those that the loader takes and no other.
"""
import json
import pathlib
import sys

import jsonschema


def files_of(folder):
    """The name and the text of each, and that it is to be taken."""
    return [(path, path.read_text(encoding="utf-8"), True) for path in sorted(folder.glob("*.json"))]


def cases_of(path):
    cases = []
    for case in path.read_text(encoding="utf-8").split("\n== ")[1:]:
        machine, message = case.split("\n=> ")
        name, text = machine.split("\n", 1)
        cases.append((f"{path}: {name}", text, message.strip() == "taken"))
    return cases


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    schema = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    surprises = 0
    for source, read in zip(map(pathlib.Path, sys.argv[2:]), (files_of, cases_of)):
        machines = read(source)
        if not machines:
            sys.exit(f"{source}: expected machine files, found none")
        for name, text, is_good in machines:
            errors = list(validator.iter_errors(json.loads(text)))
            if is_good == bool(errors):
                why = f"{errors[0].json_path}: {errors[0].message}" if errors else "expected the schema to refuse it"
                print(f"{name}: {why}")
                surprises += 1
    return 1 if surprises else 0


if __name__ == "__main__":
    sys.exit(main())
