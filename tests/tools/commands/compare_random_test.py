"""compare finds what results diff finds between two batches, and nothing between equal rule sets, in any order of bundles.

usage: compare_random_test.py ARBORIST

Takes the examples and the cases of their rule sets, and makes as many bundles as the environment's ARBORIST_CASES says, from the seed ARBORIST_SEED.
"""
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "reliability"))
import random_bundles  # noqa: E402
from case_bundles import write_examples  # noqa: E402

CASES = int(os.environ.get("ARBORIST_CASES", "60"))
SEED = int(os.environ.get("ARBORIST_SEED", "1"))
OF_ONE_SIDE = ("path", "seconds")
ZONE = "CET-1CEST,M3.5.0,M10.5.0/3"


def run(*arguments):
    return subprocess.run([ARBORIST, *map(str, arguments), "--log-level", "none"], capture_output=True, text=True, check=False)


class CompareRandomTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.random = random.Random(SEED)
        self.names = []
        for number in range(CASES):
            bundle = self.folder / f"b{number}"
            random_bundles.Bundle(f"{SEED}/compare/{number}").write(bundle)
            self.names.append(bundle)
            if number % 3 == 0:
                zipped = run("bundle", "pack", bundle, "-o", f"{bundle}.zip")
                self.names.append(Path(f"{bundle}.zip") if zipped.returncode == 0 else bundle)
        (self.folder / "bad.zip").write_text("PK, but no zip")
        self.names = list(dict.fromkeys(self.names)) + [self.folder / "bad.zip", self.folder / "nowhere"]
        self.rules = [self.names[0] / "rules", self.folder / "b1/rules", self.folder / "b2/rules"]

    def listed(self, names):
        path = self.folder / "list"
        path.write_text("".join(f"{name}\n" for name in names))
        return path

    def compared(self, before, after, names, *more):
        result = run("compare", "--rules", before, "--rules", after, "--batch", self.listed(names), "--json", *more)
        self.assertIn(result.returncode, (0, 1), result.stderr)
        return result.returncode, json.loads(result.stdout)["results"]

    @staticmethod
    def without_times(found):
        for side in ("before", "after"):
            for key in OF_ONE_SIDE:
                del found[side][key]
        return found

    def assert_equal_in_any_order(self, rules, names):
        copy = self.folder / "copies" / rules.parent.name
        shutil.copytree(rules, copy)
        orders = []
        for jobs in (1, 3):
            self.random.shuffle(names)
            status, found = self.compared(rules, copy, names, "--fail-on", "any", "--jobs", jobs)
            self.assertEqual((status, found["equal"], found["newlyOpen"]), (0, True, []))
            self.assertEqual(found["before"]["bundles"], len(names))
            orders.append(self.without_times(found))
        self.assertEqual(orders[0], orders[1])

    def test_equal_rule_sets_have_no_difference_in_any_order(self):
        self.assert_equal_in_any_order(self.rules[0], self.names)

    def test_nor_have_they_over_the_examples(self):
        for example, bundles in write_examples(ARBORIST, self.folder, ZONE):
            self.assert_equal_in_any_order(example / "rules", bundles)

    def test_it_finds_what_two_batches_differ_in(self):
        differences = 0
        for before, after in ((self.rules[0], self.rules[1]), (self.rules[1], self.rules[2])):
            _, found = self.compared(before, after, self.names)
            for side, rules in (("before", before), ("after", after)):
                batch = run("detect", "--rules", rules, "--batch", self.listed(self.names), "--output", self.folder / f"{side}.jsonl")
                self.assertIn("bundles", batch.stderr)
            diff = subprocess.run([ARBORIST, "results", "diff", "--json", self.folder / "before.jsonl", self.folder / "after.jsonl"],
                                  capture_output=True, text=True, check=False)
            self.assertEqual(self.without_times(found), self.without_times({**json.loads(diff.stdout), "schema": found["schema"]}))
            differences += not found["equal"]
        self.assertGreater(differences, 0)


if __name__ == "__main__":
    ARBORIST = str(Path(sys.argv.pop(1)).resolve())
    sys.exit(unittest.main())
