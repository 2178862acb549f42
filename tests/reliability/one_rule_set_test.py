"""A batch that reads a rule set once tells of each bundle what a detection of that bundle alone tells: the results with all
evidence, byte for byte but for the seconds, and the log lines.

usage: one_rule_set_test.py ARBORIST

Takes the examples, the cases of their rule sets, and as many random bundles as the environment's ARBORIST_CASES says, from the
seed ARBORIST_SEED.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import random_bundles
from case_bundles import write_examples
from plain_reading_test import folder_of_memory

CASES = int(os.environ.get("ARBORIST_CASES", "120"))
SEED = int(os.environ.get("ARBORIST_SEED", "1"))
OF_ONE_RULE_SET = 6  # random bundles
ZONE = "CET-1CEST,M3.5.0,M10.5.0/3"
SECONDS = re.compile(r'"seconds": [^,}]*')


def detect(*arguments):
    """The lines of the answer and those of the log."""
    command = [ARBORIST, "detect", "--json", "--explain", "--log-level", "trace", *map(str, arguments)]
    done = subprocess.run(command, capture_output=True, encoding="utf-8", errors="surrogateescape", check=False)
    log = [line for line in done.stderr.splitlines() if not re.match(r"arborist: \d+ bundles? in ", line)]
    return SECONDS.sub("", done.stdout).splitlines(), log


class OneRuleSetTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(dir=folder_of_memory()))
        if "ARBORIST_KEEP" not in os.environ:
            self.addCleanup(shutil.rmtree, self.folder)
        self.faults = 0

    def compare(self, bundles, *options):
        listed = self.folder / "list"
        listed.write_text("".join(f"{bundle}\n" for bundle in bundles))
        lines, log = detect("--batch", listed, "--jobs", 1, "--ordered", *options)
        alone = [detect(bundle, *options) for bundle in bundles]
        self.assertEqual(len(lines), len(bundles))
        for bundle, line, (expected, _) in zip(bundles, lines, alone):
            self.assertEqual([line], expected, f"seed {SEED}, {bundle}")
        self.assertEqual(log, [line for _, of_bundle in alone for line in of_bundle])
        self.faults += sum('"isFault": true' in line for line in lines)

    def compare_both_ways(self, bundles, rules):
        """With a rule set of the command line, and with a copy of it in each bundle."""
        self.compare(bundles, "--rules", rules)
        for bundle in bundles:
            if (bundle / "rules").resolve() != rules.resolve():
                shutil.rmtree(bundle / "rules", ignore_errors=True)
                shutil.copytree(rules, bundle / "rules")
        self.compare(bundles)

    def test_of_the_examples_and_their_cases(self):
        for example, bundles in write_examples(ARBORIST, self.folder, ZONE):
            self.compare_both_ways([*bundles, example], example / "rules")
        self.assertGreater(self.faults, 40)

    def test_of_random_bundles(self):
        made = []
        for number in range(CASES):
            made.append(self.folder / str(number))
            random_bundles.Bundle(f"{SEED}/{number}").write(made[-1])
        for first in range(0, CASES, OF_ONE_RULE_SET):
            bundles = made[first:first + OF_ONE_RULE_SET]
            self.compare_both_ways(bundles, bundles[0] / "rules")
        self.assertGreater(self.faults, CASES // 4)

    def test_of_bundles_whose_rule_sets_take_turns(self):
        made = []
        for number in range(3 * OF_ONE_RULE_SET):
            made.append(self.folder / str(number))
            random_bundles.Bundle(f"{SEED}/turns/{number}").write(made[-1])
            if number >= 3:
                shutil.rmtree(made[-1] / "rules")
                shutil.copytree(made[number % 3] / "rules", made[-1] / "rules")
        (made[5] / "rules/FaultTreeRules.xml").write_text("<broken")
        (made[7] / "rules/FaultTrees.xml").unlink()
        self.compare(made)


if __name__ == "__main__":
    ARBORIST = Path(sys.argv.pop(1)).resolve()
    sys.exit(unittest.main())
