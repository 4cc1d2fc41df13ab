#!/usr/bin/env python3
"""The checks of the pages find what they are for."""

import pathlib
import tempfile
import unittest

import check_page
import links
import pages


class LinksTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        (self.root / "docs").mkdir()
        (self.root / "docs" / "other.md").write_text("# Other\n\n## The `--key`: one\n\n## Other\n", encoding="utf-8")

    def dead(self, text):
        page = self.root / "page.md"
        page.write_text(text, encoding="utf-8")
        return list(links.dead_links(self.root, page))

    def test_takes_what_is_there(self):
        for link in ("docs", "docs/other.md", "docs/other.md#the---key-one", "docs/other.md#other-1", "#here",
                     "mailto:nobody", "https://a.invalid/b"):
            with self.subTest(link):
                self.assertEqual(self.dead(f"# Here\n\n[text]({link})\n"), [])

    def test_names_what_is_not(self):
        for link, why in (("docs/gone.md", "leads to nothing"), ("docs/other.md#other-2", "no heading of other.md has that anchor"),
                          ("#there", "no heading of page.md has that anchor"), ("../", "leads out of the folder")):
            with self.subTest(link):
                self.assertEqual(self.dead(f"# Here\n\n[text]({link})\n"), [f"page.md: {link}: {why}"])

    def test_code_holds_no_links(self):
        for code in ("`a[0](1)`", "```c\na[0](1);\n```", "text\n\n    a[0](1)"):
            with self.subTest(code):
                self.assertEqual(self.dead(code + "\n"), [])
        self.assertEqual(len(self.dead("`a` [text](gone) `b`\n")), 1)


class BlocksTest(unittest.TestCase):
    def test_kinds_and_marks(self):
        page = ("text\n\n    one\n    two\n\n```\nshown\n```\n\n<!-- file: a.c -->\n```c\nint a;\n```\n"
                "<!-- not run: no time -->\n    three\n")
        self.assertEqual([(block.line, block.language, block.text, block.marks) for block in pages.blocks(page)],
                         [(3, "sh", "one\ntwo\n", {}), (7, "text", "shown\n", {}), (12, "c", "int a;\n", {"file": "a.c"}),
                          (15, "sh", "three\n", {"not run": "no time"})])

    def test_an_open_end_is_named(self):
        with self.assertRaisesRegex(ValueError, "^line 2: "):
            list(pages.blocks("text\n```c\nint a;\n"))


class OutputTest(unittest.TestCase):
    def test_whole_lines_in_their_order(self):
        printed = "one\ntwo\nthree\nfour\n"
        for shown in ("one\n", "two\nthree\n", "one\n...\nfour\n", "...\nthree\n...\n"):
            with self.subTest(shown):
                check_page.compare(shown, printed)
        for shown in ("wo\n", "one\nthree\n", "four\n...\none\n", "five\n"):
            with self.subTest(shown), self.assertRaises(check_page.Mistake):
                check_page.compare(shown, printed)


if __name__ == "__main__":
    unittest.main()
