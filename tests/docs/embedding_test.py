"""The program of docs/embedding.md prints what the page says, built in place and as a stranger would build it.

usage: embedding_test.py PROGRAM
       embedding_test.py --install BUILD_DIR
"""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import embedding_program
import pages

PROGRAM = None
BUILD_DIR = None


def blocks_of(word):
    return [content for kind, content, _ in pages.blocks(embedding_program.PAGE.read_text()) if kind == word]


def first_rule_set():
    """The two files of the first rule set in docs/rule-sets.md."""
    text = (pages.DOCS / "rule-sets.md").read_text()
    blocks = [content for word, content, _ in pages.blocks(text) if word == "xml"]
    return {"FaultTrees.xml": blocks[0], "FaultTreeRules.xml": blocks[1]}


class EmbeddingTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def check_what_it_prints(self, program):
        files = {f"rules/{name}": content for name, content in first_rule_set().items()}
        for name, content in {**files, "nodes/capacity": "47\n", "data/empty": ""}.items():
            path = self.folder / name
            path.parent.mkdir(exist_ok=True)
            path.write_text(content)
        run = subprocess.run([program, "rules", "data"], cwd=self.folder, capture_output=True, text=True, timeout=60)
        self.assertEqual(run.stdout, blocks_of("text")[-1])
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 0)
        self.assertTrue((self.folder / "data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db").exists())

    def run_quietly(self, *command):
        run = subprocess.run(command, capture_output=True, text=True, timeout=600)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def test_the_program_prints_what_the_page_says(self):
        if PROGRAM is None:
            self.skipTest("no program given")
        self.check_what_it_prints(PROGRAM)

    def test_the_page_builds_with_an_installed_package(self):
        if BUILD_DIR is None:
            self.skipTest("no build to install from")
        host = self.folder / "host"
        host.mkdir()
        (host / "CMakeLists.txt").write_text(blocks_of("cmake")[0])
        (host / "host.cpp").write_text(embedding_program.program_of(embedding_program.PAGE.read_text()))
        self.run_quietly("cmake", "--install", BUILD_DIR, "--prefix", self.folder / "prefix")
        self.run_quietly("cmake", "-S", host, "-B", host / "build", "-G", "Ninja",
                         f"-DCMAKE_PREFIX_PATH={self.folder / 'prefix'}")
        self.run_quietly("cmake", "--build", host / "build")
        self.check_what_it_prints(host / "build" / "host")


if __name__ == "__main__":
    if sys.argv[1] == "--install":
        BUILD_DIR = sys.argv.pop(2)
    else:
        PROGRAM = str(Path(sys.argv[1]).resolve())
    sys.argv.pop(1)
    sys.exit(unittest.main())
