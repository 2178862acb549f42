"""What llvm-cov exports is read as lines, branches and gaps, and the list of gaps as it is written."""
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts/coverage"))

import counts
import report

TEXT = """int f(int x)
{
    if (x > 3 &&
        x < 9) {
        return 1;
    }
    while (true) {
    }
    switch (x) {
    for (int y : z) {
}""".splitlines()


def segment(line, count, begins=True):
    """A region that begins at the start of a line; without a count the end of one."""
    return (line, 1, count or 0, count is not None, begins, False)


class LinesTest(unittest.TestCase):
    def test_a_line_ran_as_often_as_the_region_around_it(self):
        lines = counts.lines_of([segment(1, 2), segment(3, 0), segment(5, 2, False), segment(7, None, False)])
        self.assertEqual(lines, {1: 2, 2: 2, 3: 2, 4: 0, 5: 0, 6: 2, 7: 2})

    def test_what_the_compiler_makes_is_no_line(self):
        self.assertEqual(counts.written_lines({1: 0, 2: 0}, ["T() = default;", "int x;"]), {2: 0})

    def test_nothing_exported_is_no_line(self):
        self.assertEqual(counts.lines_of([]), {})


class BranchesTest(unittest.TestCase):
    def test_instances_of_a_template_count_together(self):
        self.assertEqual(counts.branches_of([(3, 9, 3, 14, 1, 0, 0), (3, 9, 3, 14, 0, 2, 0)], TEXT), {(3, 9, 3, 14): [1, 2]})

    def test_what_the_compiler_settles_is_no_branch(self):
        self.assertEqual(counts.branches_of([(7, 12, 7, 16, 0, 0, 0), (9, 13, 9, 14, 0, 0, 0)], TEXT), {})


class GapsTest(unittest.TestCase):
    def test_gaps_are_conditions_and_the_first_of_lines_that_follow_each_other(self):
        file = counts.File("a.cpp", {1: 1, 4: 0, 5: 0, 8: 0}, {(3, 9, 4, 14): [0, 5], (10, 16, 10, 17): [3, 0]})
        gaps = counts.gaps_of(file, TEXT, lambda line: "f")
        self.assertEqual([(gap.text, gap.what) for gap in gaps], [
            ("x > 3 && x < 9", "true"), ("for (int y : z) {", "false"), ("x < 9) {", "lines"), ("}", "lines")])

    def test_a_row_is_read_as_it_is_written(self):
        gap = counts.Gap("a.cpp", "f", "x || `y`", "true", 3)
        row = report.row_of(gap)
        self.assertEqual(report.text_of(row), "| `a.cpp` | `f` | `x ¦¦ 'y'` | true |")
        self.assertEqual(list(report.listed_rows(["# T", report.text_of(row), "| File | Function | Text | |"])), [row])

    def test_a_folder_may_have_shares_instead_of_a_list(self):
        floors = report.listed_floors(["| `tools/` | 50 | 75.5 |", "| Folder | Lines | Branches |"])
        self.assertEqual(floors, {"tools": (50.0, 75.5)})
        self.assertEqual(report.folder_with_floor("tools/a.cpp", floors), "tools")
        self.assertIsNone(report.folder_with_floor("toolsmith/a.cpp", floors))
        files = {"tools/a.cpp": counts.File("tools/a.cpp", {1: 1, 2: 0}, {(1, 1, 1, 2): [1, 1], (2, 1, 2, 2): [1, 0]})}
        self.assertEqual(len(report.folders_below(files, floors)), 1)
        self.assertEqual(report.folders_below(files, {"tools": (50.0, 75.0)}), [])

    def test_every_listed_row_has_a_reason_above(self):
        reason = ""
        for line in report.LIST.read_text().splitlines():
            reason = line if line.startswith("## ") else reason
            self.assertTrue(not report.ROW.match(line) or reason, line)


if __name__ == "__main__":
    unittest.main()
