"""Holds the schemas of rule files against xmllint, the examples, and the samples of lint.

    rule_schemas_test.py ARBORIST
"""
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ARBORIST = sys.argv.pop(1)
ROOT = Path(__file__).resolve().parents[3]
SAMPLES = ROOT / "tests" / "diagnosis" / "lint" / "samples"
FILES = {"FaultTrees.xml": "trees", "FaultTreeRules.xml": "rules"}
PAGES = {"trees": ROOT / "docs/schema/fault-trees.rng", "rules": ROOT / "docs/schema/fault-tree-rules.rng"}

# Mistakes of structure. What is wrong in values, names and numbers is left to lint.
STRUCTURAL = """A101-tag-not-closed A103-second-condition A104-attribute-misspelt A202-tree-without-a-type
    A205-gate-below-a-basic-event A210-event-without-an-id A305-alternative-without-a-type A404-rule-without-a-name
    A408-begin-flag-as-an-element A426-word-gte A427-alternative-without-a-type A428-test-without-an-id
    A429-parameter-without-a-type A503-misspelt-type A814-path-without-a-type
    A905-entry-with-the-word-of-another-section A908-code-rule-without-a-code""".split()


def schema(*arguments):
    return subprocess.run([ARBORIST, "rules", "schema", *map(str, arguments)], check=True, capture_output=True,
                          text=True).stdout


def is_valid(option, page, *files):
    run = subprocess.run(["xmllint", "--noout", "--nonet", option, str(page), *map(str, files)], capture_output=True, text=True)
    if run.returncode not in (0, 1, 3, 4):
        raise AssertionError(run.stderr)
    return run.returncode == 0


def converted_from(page):
    return f"# Made by trang from {page.name} with the SHA-256 {hashlib.sha256(page.read_bytes()).hexdigest()}."


def compact(page):
    with tempfile.TemporaryDirectory() as folder:
        target = Path(folder) / page.with_suffix(".rnc").name
        subprocess.run(["trang", str(page), str(target)], check=True)
        return converted_from(page) + "\n" + target.read_text()


def good_folders():
    return sorted(SAMPLES.glob("A*/good")) + [SAMPLES / "plain"] + sorted(ROOT.glob("examples/*/rules"))


def tag_of(folder):
    """The first tag of a rule set: a child of the tree file's root."""
    return ElementTree.parse(folder / "FaultTrees.xml").getroot()[0].tag


class RelaxNgTest(unittest.TestCase):
    def test_the_pages_are_those_that_the_command_prints(self):
        for kind, page in PAGES.items():
            self.assertEqual(page.read_text(), schema("--relax-ng", kind))

    def test_the_compact_pages_were_made_of_these_pages(self):
        # The first line names the digest of the page that was converted, so that no converter is needed to see that it changed.
        for page in PAGES.values():
            first = page.with_suffix(".rnc").read_text().splitlines()[0]
            self.assertEqual(first, converted_from(page), f"{page} has changed: run this test with ARBORIST_WRITE_PAGES=1 and "
                             "the program trang, of the Debian package trang")

    @unittest.skipUnless(shutil.which("trang"), "the converter is not installed; the digests are compared all the same")
    def test_the_compact_pages_say_the_same(self):
        for page in PAGES.values():
            self.assertEqual(page.with_suffix(".rnc").read_text(), compact(page))

    def test_examples_and_good_samples_are_valid(self):
        for name, kind in FILES.items():
            files = [folder / name for folder in good_folders() if (folder / name).exists()]
            self.assertGreater(len(files), 20)
            if not is_valid("--relaxng", PAGES[kind], *files):
                self.assertEqual([str(file) for file in files if not is_valid("--relaxng", PAGES[kind], file)], [])

    def test_samples_with_mistakes_of_structure_are_not(self):
        invalid = {folder.parent.name for folder in SAMPLES.glob("A*/bad") for name, kind in FILES.items()
                   if (folder / name).exists() and not is_valid("--relaxng", PAGES[kind], folder / name)}
        self.assertEqual(sorted(invalid), sorted(STRUCTURAL))

    def test_an_unknown_element_an_unknown_attribute_and_an_unknown_section_are_invalid(self):
        for kind, text in [("rules", "<R><RuleList><T><rule><alarmrule name='r'/></rule></T></RuleList></R>"),
                           ("rules", "<R><RuleList><T><rule><alarmRule name='r' scene='1'/></rule></T></RuleList></R>"),
                           ("rules", "<R><Rulelist/></R>"),
                           ("trees", "<R><T><t id='T' version='1' type='x'><Basic-Event><ID>T</ID></Basic-Event></t></T></R>")]:
            with tempfile.NamedTemporaryFile("w", suffix=".xml") as file:
                file.write(text)
                file.flush()
                self.assertFalse(is_valid("--relaxng", PAGES[kind], file.name), text)


class XmlSchemaTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def page(self, *arguments):
        page = Path(self.folder.name) / "page.xsd"
        page.write_text(schema(*arguments))
        return page

    def merged(self, folder):
        """A sample with the file that it lacks from "plain"."""
        target = Path(self.folder.name) / "rules"
        target.mkdir(exist_ok=True)
        for name in FILES:
            source = folder / name if (folder / name).exists() else SAMPLES / "plain" / name
            (target / name).write_bytes(source.read_bytes())
        return target

    def test_examples_and_good_samples_are_valid_for_their_tag(self):
        for folder in good_folders():
            rules = self.merged(folder)
            page = self.page("--tag", tag_of(rules), rules)
            self.assertTrue(is_valid("--schema", page, *[rules / name for name in FILES]), folder)

    def test_without_a_rule_set_the_usual_names_are_known(self):
        page = self.page("--tag", "Laptop")
        rules = ROOT / "examples" / "laptop" / "rules"
        self.assertTrue(is_valid("--schema", page, *[rules / name for name in FILES]))

    def test_mistakes_are_invalid(self):
        for sample in ("A104-attribute-misspelt", "A202-tree-without-a-type", "A404-rule-without-a-name", "A503-misspelt-type",
                       "A426-word-gte"):
            bad = self.merged(SAMPLES / sample / "bad")
            page = self.page("--tag", tag_of(bad), bad)
            self.assertFalse(is_valid("--schema", page, *[bad / name for name in FILES]), sample)

    def test_other_tags_and_names_of_the_rule_set_are_known(self):
        rules = Path(self.folder.name) / "any"
        rules.mkdir()
        (rules / "FaultTrees.xml").write_text(
            "<R><More><x/></More><T><mine id='T' version='1' type='x'><Intermediate-Event><ID>T</ID><Or-Gate>"
            "<House><ID>H</ID></House></Or-Gate></Intermediate-Event></mine></T></R>")
        (rules / "FaultTreeRules.xml").write_text("<R><RuleList><More><x/></More><T/></RuleList></R>")
        page = self.page("--tag", "T", rules)
        self.assertTrue(is_valid("--schema", page, *[rules / name for name in FILES]))


if __name__ == "__main__":
    if "ARBORIST_WRITE_PAGES" in os.environ:
        for changed in PAGES.values():
            changed.with_suffix(".rnc").write_text(compact(changed))
    sys.exit(unittest.main())
