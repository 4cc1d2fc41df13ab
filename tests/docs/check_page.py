#!/usr/bin/env python3
"""Tries what a page shows, in the page's order and in a folder of its own, with what was installed:

  check_page.py --prefix FOLDER [--cc COMPILER] [--cxx COMPILER] PAGE

- C and C++ are compiled and run. Lines of C++ without a main() are the body of one that includes every public header.
- Commands run in the order of the page, each block in a shell of its own, and end with 0. `./dev report` is the installed
  tool's; other commands of ./dev are what runs this test, and are not run again.
- Output stands, line by line, in what the block before it prints; a line of `...` stands for any others.
- JSON and CMake are left alone.
- `<!-- file: NAME -->` before a block lays it under that name instead; `<!-- not run: WHY -->` passes over it.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import pages

ROOT = pathlib.Path(__file__).resolve().parents[2]
WARNINGS = ["-Wall", "-Wextra", "-pedantic", "-Werror"]
STANDARDS = {"c": "-std=c99", "cpp": "-std=c++17"}
LEFT_ALONE = ("json", "cmake")
SECONDS = 120  # for one block

# A watch without an end is interrupted as its reader would do it. No battery in this machine is no mistake of the page.
TOOL = """#!/bin/sh
timeout --preserve-status --signal=INT 2 "$HOME/norv/bin/norv-battery" "$@"
status=$?
case "$1 $status" in "report 1" | "record 1") exit 0 ;; esac
exit $status
"""
DEV = """#!/bin/sh
[ "$1" = report ] || exit 0
shift
[ $# -gt 0 ] || set -- --machine two-batteries
exec norv-battery report "$@"
"""
COMPILER = """#!/bin/sh
exec {} {} "$@"
"""
# What the pages take for granted, as commands that make it.
READERS_OWN = """
ln -s {root}/tests {root}/bindings .
norv-battery encode --machine two-batteries --format bin >blocks.bin
norv-battery encode --machine two-batteries --format hex >dump.hex
mkdir dumps && cp blocks.bin dumps/first.bin
cp tests/fixtures/power-supply/charge-limit.txt notebook.txt
mkdir -p copied/BAT0 && echo Battery >copied/BAT0/type
"""


class Mistake(Exception):
    """What a block does not do as the page has it."""


class Scratch:
    """A folder in which a reader follows one page: the tree is installed in ~/norv, and its command is found."""

    def __init__(self, folder, prefix, compilers):
        self._home = folder
        self._page = folder / "page"
        self._programs = folder / "bin"
        self._compilers = compilers
        self._environment = dict(os.environ, HOME=str(folder), TZ="UTC", PATH=f"{self._programs}:{os.environ['PATH']}",
                                 CC=compilers["c"], CXX=compilers["cpp"])
        self._page.mkdir()
        self._programs.mkdir()
        (folder / "norv").symlink_to(prefix)
        self._lay_program(self._programs / "norv-battery", TOOL)
        self._lay_program(self._programs / "collect-blocks", "#!/bin/sh\nexec cat blocks.bin\n")
        for name, language in (("cc", "c"), ("c++", "cpp")):
            self._lay_program(self._programs / name, COMPILER.format(compilers[language], " ".join(WARNINGS)))
        self._lay_program(self._page / "dev", DEV)
        self.run(READERS_OWN.format(root=ROOT))

    @staticmethod
    def _lay_program(path, text):
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def lay(self, name, text):
        (self._page / name).write_text(text, encoding="utf-8")

    def run(self, commands):
        """What the commands print, on standard error too."""
        done = subprocess.run(["bash", "-euo", "pipefail", "-c", commands], cwd=self._page, env=self._environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False,
                              encoding="utf-8", errors="backslashreplace", timeout=SECONDS)
        if done.returncode != 0:
            raise Mistake(f"ends with {done.returncode} and prints\n{done.stdout}")
        return done.stdout

    def _headers(self):
        include = self._home / "norv" / "include"
        return sorted(str(path.relative_to(include)) for path in include.rglob("*.h"))

    def compile_and_run(self, language, text):
        if language == "cpp" and "int main(" not in text:
            includes = "".join(f"#include <{header}>\n" for header in ["fstream", "iostream", *self._headers()])
            text = f"{includes}int main() {{\n{text}}}\n"
        self.lay(f"shown.{language}", text)
        return self.run(f"{self._compilers[language]} {STANDARDS[language]} {' '.join(WARNINGS)} -I ~/norv/include "
                        f"shown.{language} -L ~/norv/lib -lnorv-battery-simulator -lnorv-battery-info "
                        "-Wl,-rpath,$HOME/norv/lib -o shown && ./shown")


def compare(shown, printed):
    """Looks for the shown lines, one after another, in what was printed."""
    rest = "\n" + printed
    for lines in re.split(r"(?m)^\.\.\.\n", shown):
        _, found, rest = rest.partition("\n" + lines)
        if not found:
            raise Mistake(f"shows\n{lines}but what the block before it prints has\n{printed}")
        rest = "\n" + rest


def try_block(block, scratch, printed):
    """What the block prints; nothing of one that prints nothing."""
    if "not run" in block.marks:
        return None
    if "file" in block.marks:
        scratch.lay(block.marks["file"], block.text)
        return None
    if block.language == pages.COMMANDS:
        return scratch.run(block.text)
    if block.language in STANDARDS:
        return scratch.compile_and_run(block.language, block.text)
    if block.language == pages.OUTPUT:
        if printed is None:
            raise Mistake("shows what is printed by nothing that was run")
        compare(block.text, printed)
    elif block.language not in LEFT_ALONE:
        raise Mistake(f"is of the language '{block.language}', which this test does not know")
    return printed


def mistakes(page, scratch):
    printed = None
    for block in pages.blocks(page.read_text(encoding="utf-8")):
        try:
            printed = try_block(block, scratch, printed)
        except (Mistake, subprocess.TimeoutExpired) as mistake:
            printed = None
            yield f"{page}:{block.line}: {mistake}\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--prefix", required=True, type=pathlib.Path)
    parser.add_argument("--cc", default="gcc")
    parser.add_argument("--cxx", default="g++")
    parser.add_argument("page", type=pathlib.Path)
    options = parser.parse_args()
    compilers = {"c": shutil.which(options.cc), "cpp": shutil.which(options.cxx)}
    if None in compilers.values():
        sys.exit(f"{options.cc} and {options.cxx} have to be installed: run './dev setup'")
    with tempfile.TemporaryDirectory() as folder:
        scratch = Scratch(pathlib.Path(folder).resolve(), options.prefix.resolve(), compilers)
        found = list(mistakes(options.page, scratch))
    print(*found, sep="\n")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
