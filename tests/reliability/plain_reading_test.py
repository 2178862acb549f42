"""Detections of random bundles answer what a plain reading of the same files answers.

usage: plain_reading_test.py ARBORIST

Makes as many bundles as the environment's ARBORIST_CASES says, from the seed ARBORIST_SEED.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import plain_reading
import random_bundles

CASES = int(os.environ.get("ARBORIST_CASES", "300"))
SEED = int(os.environ.get("ARBORIST_SEED", "1"))
AT_ONCE = 500  # bundles on disk at a time


def folder_of_memory():
    """Bundles are made of many small files: a folder that no disk is behind, where there is one."""
    return "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


def detected(arborist, folder, numbers):
    """What the command answers, by the number of the bundle."""
    names = "\n".join(str(folder / str(number)) for number in numbers)
    batch = subprocess.run([arborist, "detect", "--batch", "-"], input=names, capture_output=True, text=True, check=False)
    answers = {}
    for line in batch.stdout.splitlines():
        found = json.loads(line)
        answers[int(Path(found["bundle"]).name)] = [
            (tree["treeId"], [cause["id"] for cause in tree["rootCauses"]]) for tree in found["results"]
        ] if found["ok"] else found["error"]
    return answers


class PlainReadingTest(unittest.TestCase):
    def test_detections_answer_what_a_plain_reading_answers(self):
        with_causes = 0
        for first in range(0, CASES, AT_ONCE):
            numbers = range(first, min(first + AT_ONCE, CASES))
            folder = Path(tempfile.mkdtemp(dir=folder_of_memory()))
            try:
                for number in numbers:
                    random_bundles.Bundle(f"{SEED}/{number}").write(folder / str(number))
                answers = detected(ARBORIST, folder, numbers)
                for number in numbers:
                    expected = plain_reading.Detection(folder / str(number), random_bundles.member).answer()
                    self.assertEqual(answers.get(number), expected, f"seed {SEED}, bundle {number}")
                    with_causes += any(causes for _, causes in expected)
            finally:
                if "ARBORIST_KEEP" not in os.environ:
                    shutil.rmtree(folder)
        self.assertGreater(with_causes, CASES // 4)  # else the cases are worth little


if __name__ == "__main__":
    ARBORIST = sys.argv.pop(1)
    sys.exit(unittest.main())
