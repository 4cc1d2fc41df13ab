#!/usr/bin/env python3
"""Fails unless each relative link of each Markdown file below FOLDER leads to something there, and each anchor to a heading:

  links.py FOLDER
"""

import argparse
import os
import pathlib
import re
import sys
import urllib.parse

import pages

NOT_OF_THE_PROJECT = {".git", ".deps", "build"}


def pages_below(folder):
    for place, folders, files in os.walk(folder):
        folders[:] = sorted(set(folders) - NOT_OF_THE_PROJECT)
        yield from (pathlib.Path(place, name) for name in sorted(files) if name.endswith(".md"))


def what_is_wrong(root, page, link):
    """Why a link of a page is dead, or None."""
    path, _, anchor = urllib.parse.unquote(link).partition("#")
    target = (page.parent / path).resolve() if path else page
    if not target.is_relative_to(root):
        return "leads out of the folder"
    if not target.exists():
        return "leads to nothing"
    if anchor and anchor not in pages.anchors(target.read_text(encoding="utf-8")):
        return f"no heading of {target.name} has that anchor"
    return None


def dead_links(root, page):
    for link in pages.links(page.read_text(encoding="utf-8")):
        why = None if re.match(r"[a-z]+:", link) else what_is_wrong(root, page, link)
        if why:
            yield f"{page.relative_to(root)}: {link}: {why}"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    root = parser.parse_args().folder.resolve()
    found = list(pages_below(root))
    if not found:
        sys.exit(f"{root}: expected Markdown files, found none")
    dead = [line for page in found for line in dead_links(root, page)]
    print(f"{len(found)} pages, {len(dead)} dead links", *dead, sep="\n")
    sys.exit(1 if dead else 0)


if __name__ == "__main__":
    main()
