"""docs/log-messages.md tells every message of the library, and none that the library doesn't log."""
import sys
import unittest

import log_messages


class LogMessagesTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        sources = log_messages.source_texts()
        self.formats = set().union(*map(log_messages.messages_of, sources))
        self.calls = set().union(*map(log_messages.calls_of, sources))
        self.rows = log_messages.rows_of(log_messages.PAGE.read_text())
        self.told = {message for _, message, _ in self.rows}

    def test_the_sources_are_read(self):
        self.assertIn("fault tree rule xml path %s", self.formats)
        self.assertIn(("ERROR", "Parse input tag empty", "RuleParser::Parse"), self.calls)

    def test_the_page_tells_every_message(self):
        self.assertEqual(sorted(text for text in self.formats
                                if not any(log_messages.fits(told, text) for told in self.told)), [])

    def test_the_sources_log_every_message_of_the_page(self):
        self.assertEqual(sorted(text for text in self.told
                                if not any(log_messages.fits(text, logged) for logged in self.formats)), [])

    def test_levels_and_functions_are_those_of_the_sources(self):
        self.assertEqual(sorted(self.calls - self.rows), [])


class ReaderTest(unittest.TestCase):
    def test_adjacent_literals_are_one_message(self):
        self.assertEqual(log_messages.messages_of('"FUNc:%s: a "\n    "b \\"c\\""'), {'a b "c"'})

    def test_a_word_may_stand_for_a_text(self):
        self.assertTrue(log_messages.fits("Execute db is null", "%s db is null"))
        self.assertFalse(log_messages.fits("two words db is null", "%s db is null"))
        self.assertFalse(log_messages.fits("file gone", "file %s not exist."))

    def test_a_row_may_name_several_functions(self):
        self.assertEqual(log_messages.rows_of("| WARN | `A::B`, `A::C` | `x %s ` | y |\n"),
                         {("WARN", "x %s ", "A::B"), ("WARN", "x %s ", "A::C")})


if __name__ == "__main__":
    sys.exit(unittest.main())
