"""The program of docs/embedding.md prints what the page says. usage: embedding_test.py PROGRAM"""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import embedding_program
import pages

PROGRAM = None


def first_rule_set():
    """The two files of the first rule set in docs/rule-sets.md."""
    text = (pages.DOCS / "rule-sets.md").read_text()
    blocks = [content for word, content, _ in pages.blocks(text) if word == "xml"]
    return {"FaultTrees.xml": blocks[0], "FaultTreeRules.xml": blocks[1]}


class EmbeddingTest(unittest.TestCase):
    def test_the_program_prints_what_the_page_says(self):
        printed = [content for word, content, _ in pages.blocks(embedding_program.PAGE.read_text()) if word == "text"]
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "rules").mkdir()
            for file, content in first_rule_set().items():
                (folder / "rules" / file).write_text(content)
            (folder / "nodes").mkdir()
            (folder / "nodes" / "capacity").write_text("47\n")
            (folder / "data").mkdir()
            run = subprocess.run([PROGRAM, "rules", "data"], cwd=folder, capture_output=True, text=True, timeout=60)
            self.assertEqual(run.stdout, printed[-1])
            self.assertEqual(run.stderr, "")
            self.assertEqual(run.returncode, 0)
            self.assertTrue((folder / "data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db").exists())


if __name__ == "__main__":
    PROGRAM = str(Path(sys.argv.pop(1)).resolve())
    sys.exit(unittest.main())
