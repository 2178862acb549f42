"""The folders of tests mirror the rooms, and docs/architecture.md has the same rooms as the check of includes."""
import sys
import tempfile
import unittest
from pathlib import Path

import includes
import rooms

ROOT = Path(__file__).resolve().parents[2]


class TreeTest(unittest.TestCase):
    def test_every_room_has_tests(self):
        self.assertEqual(rooms.rooms_without_tests(ROOT), [])

    def test_every_folder_of_tests_has_a_room_or_a_reason(self):
        self.assertEqual(rooms.tests_without_room(ROOT), [])
        self.assertEqual([name for name in rooms.OTHER_TESTS if not (ROOT / name).is_dir()], [])

    def test_the_page_has_the_levels_that_are_checked(self):
        page = (ROOT / "docs/architecture.md").read_text()
        storeys = {storey.folder: storey for storey in includes.STOREYS}
        for heading, folder in rooms.TABLES:
            self.assertEqual(rooms.rows_of(page, heading), rooms.levels_of(storeys[folder]), heading)


class CheckTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, *names):
        for name in names:
            path = self.root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("")

    def test_a_room_without_tests_is_named(self):
        self.write("diagnosis/text/a.cpp", "tests/diagnosis/text/a_helper.cpp", "tools/arborist/batch/b.cpp",
                   "tests/tools/batch/b_test.cpp")
        self.assertEqual(rooms.rooms_without_tests(self.root), ["diagnosis/text: no test in tests/diagnosis/text"])

    def test_a_folder_of_tests_without_a_room_is_named(self):
        self.write("diagnosis/lint/a.cpp", "tests/lint/a_test.cpp", "tests/diagnosis/lint/a_test.cpp",
                   "tests/support/b.h", "arborist/stores/sql/c.cpp", "tests/stores/sql/c_test.cpp",
                   "tests/tools/attic/d_test.py")
        self.assertEqual(rooms.tests_without_room(self.root), ["tests/lint", "tests/tools/attic"])

    def test_rows_are_the_names_of_the_first_cells(self):
        page = "The engine:\n\n| Rooms | See |\n|---|---|\n| `a/b`, `frame/c` | `x` |\n| in `frame`: `d.h` | y |\n\n`z`"
        self.assertEqual(rooms.rows_of(page, "The engine:"), [{"a/b", "c"}, {"d"}])


if __name__ == "__main__":
    sys.exit(unittest.main())
