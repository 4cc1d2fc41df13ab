"""Markdown as the pages of this project use it: blocks, headings and links."""

import dataclasses
import re

# A comment of HTML, which no reader sees: `<!-- not run: WHY -->` or `<!-- file: NAME -->`, right before a block.
_MARK = re.compile(r"<!-- (not run|file): (.*?) -->")
_FENCE = re.compile(r"```(\S*)$")
_INDENT = "    "
COMMANDS = "sh"
OUTPUT = "text"


@dataclasses.dataclass
class Block:
    line: int  # of its first line, counted from 1
    language: str
    text: str
    marks: dict


def blocks(page):
    """The blocks of code of a page's text. An indented one is commands; a fence that names no language is output."""
    lines = page.splitlines()
    marks = {}
    at = 0
    while at < len(lines):
        fence = _FENCE.match(lines[at])
        if fence:
            end = _end_of_fenced(lines, at)
            yield Block(at + 2, fence[1] or OUTPUT, _text(lines[at + 1:end]), marks)
            marks, at = {}, end + 1
        elif lines[at].startswith(_INDENT) and (marks or not lines[at - 1]):
            end = _end_of_indented(lines, at)
            yield Block(at + 1, COMMANDS, _text(line.removeprefix(_INDENT) for line in lines[at:end]), marks)
            marks, at = {}, end
        else:
            if lines[at]:
                marks = dict(_MARK.findall(lines[at]))
            at += 1


def _end_of_fenced(lines, start):
    if "```" not in lines[start + 1:]:
        raise ValueError(f"line {start + 1}: the block that begins here does not end")
    return lines.index("```", start + 1)


def _end_of_indented(lines, start):
    end = start
    while end < len(lines) and lines[end].startswith(_INDENT):
        end += 1
    return end


def _text(lines):
    return "".join(line + "\n" for line in lines)


def _prose(page):
    """A page's text without its blocks and pieces of code."""
    page = re.sub(r"^```.*?^```$", "", page, flags=re.MULTILINE | re.DOTALL)
    page = re.sub(r"(?<=\n\n)( {4}.*\n)+", "", page)
    return re.sub(r"`(?:[^`\n]|\n(?!\n))*`", lambda code: code[0] if "](" not in code[0] else "", page)


def links(page):
    """What the links of a page's text lead to."""
    return re.findall(r"\]\(\s*<?([^)>\s]+)[^)]*\)", _prose(page)) + re.findall(r"^\[[^\]]+\]:\s*(\S+)", _prose(page), re.M)


def anchors(page):
    """The names by which links lead to the headings of a page's text: the second of two alike ends in -1."""
    seen = {}
    for heading in re.findall(r"^#{1,6} +(.*?)(?: +#+)?$", _prose(page), re.MULTILINE):
        text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading)
        name = re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")
        seen[name] = seen.get(name, -1) + 1
        yield f"{name}-{seen[name]}" if seen[name] else name
