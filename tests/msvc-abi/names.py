#!/usr/bin/env python3
"""Compares the decorated names that Microsoft's C++ compiler gives the exported members with names.txt beside this script:
    names.py CLANG
fails and shows what differs. names.txt is what existing hosts were linked to: it is written by hand, never from the headers.
A name says everything about a member that a caller relies on: class, access, virtual or not, and each parameter to the
top-level const of a pointer."""

import difflib
import json
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
MEMBERS = ("CXXConstructorDecl", "CXXDestructorDecl", "CXXMethodDecl", "CXXConversionDecl")


def syntax_tree(clang):
    command = [clang, "--target=x86_64-pc-windows-msvc", "-std=c++17", "-nostdinc", "-fsyntax-only", "-I", HERE / "stand-in",
               "-I", ROOT / "include", "-Xclang", "-ast-dump=json", HERE / "names.cpp"]
    return json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)


def decorated(member):
    """clang's tree names the destructor that also ends virtual bases, and is not virtual; callers use the plain one."""
    kind = "U" if member.get("virtual") else "Q"
    return re.sub(r"^\?\?_D(.*)QEAAXXZ$", rf"??1\1{kind}EAA@XZ", member["mangledName"])


def exported_names(node):
    inner = node.get("inner", [])
    is_exported = any(child.get("kind") == "DLLImportAttr" for child in inner)
    if node.get("kind") == "FunctionDecl" and is_exported:
        yield node["mangledName"]
    for child in inner:
        is_member = node.get("kind") == "CXXRecordDecl" and is_exported and child.get("kind") in MEMBERS
        if is_member and not child.get("isImplicit") and not child.get("explicitlyDeleted"):
            yield decorated(child)
        if child.get("kind") in ("NamespaceDecl", "LinkageSpecDecl", "CXXRecordDecl", "FunctionDecl"):
            yield from exported_names(child)


def main(clang):
    expected = sorted(line for line in (HERE / "names.txt").read_text().splitlines() if not line.startswith("#"))
    found = sorted(exported_names(syntax_tree(clang)))
    difference = list(difflib.unified_diff(expected, found, "names.txt", "the headers", lineterm="", n=0))
    print("\n".join(difference) if difference else f"{len(found)} names")
    return 1 if difference else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
