#!/usr/bin/env python3
"""Sees that the fields of a battery are listed once, and the places of a block spelled once: catalogue.py lists|places

Lists: a source, other than the catalogue and what is made of it, that names several fields by their keys keeps a list of its
own. Places: an offset of a block stands in firmware/ alone. The tests keep copies of both on purpose, so that they do not
take the product's word for it, and so does the plain decoder of the benchmarks.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
NOT_OURS = ("build/", ".deps/", ".git/")
OWN_COPIES = ("tests/", "bench/plain/", "bindings/python/tests/")
PLACES = ("firmware/",)
LISTS = ("src/fields/", "bindings/python/norv_battery/_catalogue.py")
MOST_KEYS = 5  # words that a source has for something else, too


def sources(exempt):
    for path in sorted(ROOT.rglob("*")):
        name = path.relative_to(ROOT).as_posix()
        if path.suffix in (".cpp", ".h", ".py") and not name.startswith(NOT_OURS + OWN_COPIES + exempt):
            yield name, path.read_text(encoding="utf-8")


def lists():
    """Sources with more keys of fields than they should know."""
    catalogue = (ROOT / "src/fields/Catalogue.h").read_text(encoding="utf-8")
    keys = set(re.findall(r'Row\{\s*NORV_BATTERY_\w+,\s*"([^"\[]+)', catalogue))
    assert len(keys) > 60, f"{len(keys)} keys were found in the catalogue"
    for name, text in sources(LISTS):
        found = sorted(keys & set(re.findall(r'"([A-Za-z]+)"', text)))
        if len(found) > MOST_KEYS:
            yield f"{name} names {len(found)} fields: {', '.join(found)}"


def places():
    """Lines with an offset of a block: those that no other number is like, and a field laid out with numbers."""
    layout = "".join(path.read_text(encoding="utf-8") for path in (ROOT / "firmware").glob("*.h"))
    offsets = {int(offset, 16) for offset in re.findall(r"\{(0x[0-9A-F]{2}), \d+", layout)}
    assert {0x1C, 0x2C, 0x3E, 0x4F, 0x5C} <= offsets, "the offsets of the texts were not found in firmware/"
    telling = "|".join(f"0x{offset:02X}" for offset in sorted(offsets) if offset > 0x1A)
    pattern = re.compile(rf"\b({telling})\b|\bField(\s+\w+)?\s*\{{\s*\d|\bblock\w*\s*[\[+]\s*0x")
    for name, text in sources(PLACES):
        for number, line in enumerate(text.split("\n"), 1):
            if pattern.search(line):
                yield f"{name}:{number}: {line.strip()}"


found = list({"lists": lists, "places": places}[sys.argv[1]]())
print("\n".join(found))
sys.exit(1 if found else 0)
