"""docs/rule-sets.md tells every word that the loader knows, and its index names no other."""
import re
import sys
import unittest

import pages

PAGE = pages.DOCS / "rule-sets.md"


def words_of(source):
    """The words among the string literals of a source, comments left out."""
    return set(re.findall(r'"([A-Za-z][\w-]*)"', re.sub(r"//.*", "", source)))


def code_of(text):
    return set(re.findall(r"`([^`\n]+)`", text))


class RuleWordsTest(unittest.TestCase):
    def setUp(self):
        folder = pages.ROOT / "arborist" / "loading"
        sources = [path.read_text() for ending in ("*.h", "*.cpp") for path in sorted(folder.glob(ending))]
        self.words = set().union(*map(words_of, sources))
        self.page = pages.prose(PAGE.read_text())

    def test_the_loader_is_read(self):
        self.assertGreater(len(self.words), 80)
        self.assertIn("alarmRule", self.words)

    def test_the_page_tells_every_word(self):
        self.assertEqual(sorted(self.words - code_of(self.page)), [])

    def test_the_index_names_words_of_the_loader_only(self):
        index = self.page[self.page.index("## Index of words"):]
        self.assertEqual(sorted(code_of(index) - self.words), [])

    def test_the_index_names_every_element(self):
        index = code_of(self.page[self.page.index("## Index of words"):])
        values = {"single_logic", "multiple_logic", "singleRule", "multipleRule", "true"}
        self.assertEqual(sorted(self.words - index - values), [])


if __name__ == "__main__":
    sys.exit(unittest.main())
