"""The pages hang together: links lead somewhere, every page is in the index, XML examples are well-formed."""
import re
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import pages


class PagesTest(unittest.TestCase):
    def test_every_relative_link_leads_somewhere(self):
        self.assertEqual([broken for page in pages.pages() for broken in pages.broken_links(page)], [])

    def test_every_page_can_be_reached(self):
        reached = set().union(*(pages.targets_of(page) for page in pages.pages()))
        self.assertEqual([page.name for page in sorted(pages.DOCS.rglob("*.md")) if page not in reached], [])

    def test_every_path_in_the_architecture_exists(self):
        paths = re.findall(r"`((?:arborist|diagnosis|tests|bench|fuzz|tools|examples|scripts|docs)/[^`\s]*\.\w+)`",
                           (pages.DOCS / "architecture.md").read_text())
        self.assertGreater(len(paths), 30)
        self.assertEqual([path for path in paths if not (pages.ROOT / path).exists()], [])

    def test_commands_that_are_named_exist(self):
        sources = "".join(path.read_text() for path in (pages.ROOT / "tools" / "arborist").rglob("*.cpp"))
        unknown = []
        for page in sorted(pages.DOCS.glob("*.md")):
            for verb, rest in re.findall(r"`arborist ([a-z]+)([^`]*)`", page.read_text()):
                unknown += [f"{page.name}: {word}" for word in [verb] + re.findall(r"--[a-z-]+", rest)
                            if f'"{word}' not in sources and f",{word}" not in sources]
        self.assertEqual(unknown, [])

    def test_xml_examples_are_well_formed(self):
        faults = []
        for page in pages.pages():
            for word, content, line in pages.blocks(page.read_text()):
                if word == "xml":
                    try:
                        ElementTree.fromstring(content)
                    except ElementTree.ParseError as error:
                        faults.append(f"{page.name}:{line}: {error}")
        self.assertEqual(faults, [])

    def test_tests_that_are_named_exist(self):
        known = pages.tests_of(pages.ROOT / "tests")
        unknown = []
        for name in ("security.md", "process.md", "testing.md"):
            text = (pages.DOCS / name).read_text()
            unknown += [f"{name}: {test}" for test in re.findall(r"`(\w+\.[A-Z]\w{8,})`", text) if test not in known]
        self.assertEqual(unknown, [])

    def test_every_boundary_of_security_names_a_test(self):
        text = (pages.DOCS / "security.md").read_text()
        section = text[text.index("## What each boundary checks"):text.index("## What stays open")]
        rows = pages.table_rows(section)[1:]
        self.assertGreater(len(rows), 15)
        self.assertEqual([row[0] for row in rows if not re.search(r"`\w+\.[A-Z]\w+`", row[-1])], [])

    def test_every_setting_is_listed_and_has_its_row(self):
        header = (pages.ROOT / "arborist" / "frame" / "settings.h").read_text()
        keys = re.findall(r'inline constexpr char (\w+)\[\] = "(\w+)"', header)
        listed = re.search(r"ALL\[\] = \{([^}]*)\}", header)[1].replace(",", " ").split()
        self.assertGreater(len(keys), 5)
        self.assertEqual(sorted(listed), sorted(name for name, _ in keys))
        rows = [tuple(cell.strip("`") for cell in cells[:2])
                for cells in pages.table_rows((pages.DOCS / "embedding.md").read_text())]
        self.assertEqual([key for key in keys if key not in rows], [])


class ReaderTest(unittest.TestCase):
    def test_anchors_follow_the_headings(self):
        text = "# A page\n## `Code`: and, more\n```sh\n# no heading\n```\n## A page\n"
        self.assertEqual(pages.anchors_of(text), {"a-page", "code-and-more", "a-page-1"})

    def test_a_broken_link_is_found(self):
        with tempfile.TemporaryDirectory() as name:
            page = Path(name) / "page.md"
            page.write_text("# One\n[a](#one) [b](#two) [c](page.md#one) [d](gone.md) `[e](gone.md)` "
                            "[f](https://x.y/z)\n")
            self.assertEqual(pages.broken_links(page),
                             ["page.md: #two: no such heading", "page.md: gone.md: no such file"])

    def test_blocks_tell_their_word_and_line(self):
        self.assertEqual(pages.blocks("x\n```xml\n<a/>\n```\n"), [("xml", "<a/>\n", 2)])

    def test_tests_are_found_in_sources_and_listings(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "a.cpp").write_text("TEST(A, One)\nTEST_F(B, Two)\nTEST_P(C,\n    Three)\n// TEST(D, Four)\n")
            (folder / "CMakeLists.txt").write_text("add_test(NAME docs.Five COMMAND x)\n")
            self.assertEqual(pages.tests_of(folder), {"A.One", "B.Two", "C.Three", "docs.Five"})

    def test_a_pipe_in_a_code_span_stays_in_its_cell(self):
        self.assertEqual(pages.table_rows("| a | `b|c` |\n|---|---|\n"), [["a", "`b|c`"]])


if __name__ == "__main__":
    sys.exit(unittest.main())
