"""Does what docs/getting-started.md and docs/rule-authors.md tell a reader to do, block by block, and compares what it prints.

    followed_pages_test.py ARBORIST

A block of "sh" is run by a shell in a folder that all blocks share. The block of "text" behind it is what it prints, errors
included; a line "..." stands for any lines. "# exits with 1" at the end of a command is the status that it must have. A
block of "diff" changes the file that its first line names.
"""
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import pages

PAGES = [pages.DOCS / "getting-started.md", pages.DOCS / "rule-authors.md"]
STATUS = re.compile(r" +# exits with (\d+)$")


def run(command, folder, path):
    """The output of one command line and whether its status is the one that it announces."""
    announced = STATUS.search(command)
    result = subprocess.run(["bash", "-c", STATUS.sub("", command)], cwd=folder, capture_output=True, text=True,
                            env={**os.environ, "PATH": f"{path}:{os.environ['PATH']}"})
    expected = int(announced[1]) if announced else 0
    status = "" if result.returncode == expected else f"{command}: exits with {result.returncode}\n"
    return status + result.stdout + result.stderr


def is_like(output, expected):
    """True if the output is the expected text, in which a line "..." stands for any lines."""
    parts = [re.escape(part) for part in re.split(r"^\.\.\.\n", expected, flags=re.MULTILINE)]
    return re.fullmatch(r"(?:.*\n)*?".join(parts), output) is not None


def changed(text, lines):
    """The text with a change applied: the lines that begin with " " or "-" are replaced by those with " " or "+"."""
    old = "".join(line[1:] + "\n" for line in lines if line[0] in " -")
    new = "".join(line[1:] + "\n" for line in lines if line[0] in " +")
    if text.count(old) != 1:
        raise AssertionError(f"stands {text.count(old)} times in the file:\n{old}")
    return text.replace(old, new)


class Walk:
    """The page's blocks, done one after the other."""

    def __init__(self, folder, path):
        self.folder, self.path, self.output, self.faults = folder, path, "", []

    def do(self, word, content, line):
        if word == "sh":
            self.output = "".join(run(command, self.folder, self.path) for command in content.splitlines())
        elif word == "text" and not is_like(self.output, content):
            self.faults.append(f"line {line}: prints\n{self.output}")
        elif word == "diff":
            name, *lines = content.splitlines()
            file = Path(self.folder) / name.removeprefix("--- ")
            file.write_text(changed(file.read_text(), lines))


class FollowedPagesTest(unittest.TestCase):
    def test_the_pages_can_be_followed(self):
        for page in PAGES:
            with self.subTest(page=page.name), tempfile.TemporaryDirectory() as folder:
                walk = Walk(folder, Path(ARBORIST).resolve().parent)
                blocks = pages.blocks(page.read_text())
                self.assertGreater(len(blocks), 8)
                for word, content, line in blocks:
                    self.assertIn(word, ("sh", "text", "diff", "xml"), line)
                    walk.do(word, content, line)
                if walk.faults:
                    self.fail("\n".join(walk.faults))

    def test_every_command_is_followed_by_its_output_or_prints_none(self):
        for page in PAGES:
            blocks = pages.blocks(page.read_text())
            for (word, content, line), (after, _, _) in zip(blocks, blocks[1:] + [("", "", 0)]):
                if word == "sh" and after != "text":
                    self.assertNotIn("exits with", content, f"{page.name}:{line}")


class WalkTest(unittest.TestCase):
    def test_three_dots_stand_for_lines(self):
        self.assertTrue(is_like("a\nb\nc\n", "a\n...\nc\n"))
        self.assertTrue(is_like("a\nc\n", "a\n...\nc\n"))
        self.assertFalse(is_like("a\nb\nc\n", "a\nc\n"))
        self.assertFalse(is_like("a.\n", "ab\n"))

    def test_a_change_needs_its_place(self):
        self.assertEqual(changed("a\nb\nc\n", [" a", "-b", "+d"]), "a\nd\nc\n")
        with self.assertRaises(AssertionError):
            changed("a\na\n", [" a"])

    def test_a_wrong_status_shows_in_the_output(self):
        self.assertIn("exits with 3", run("exit 3", ".", ""))
        self.assertEqual(run("exit 3  # exits with 3", ".", ""), "")


if __name__ == "__main__":
    ARBORIST = sys.argv.pop(1)
    sys.exit(unittest.main())
