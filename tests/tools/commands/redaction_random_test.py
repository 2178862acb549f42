"""Rules that a redaction doesn't name answer in the redacted bundle what they answer in the plain one.

usage: redaction_random_test.py ARBORIST

Makes as many bundles as the environment's ARBORIST_CASES says, from the seed ARBORIST_SEED.
"""
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "reliability"))
import random_bundles  # noqa: E402
from random_bundles import xml  # noqa: E402

CASES = int(os.environ.get("ARBORIST_CASES", "40"))
SEED = int(os.environ.get("ARBORIST_SEED", "1"))
SECRET = "secret-of-Ann"
KEYS = ["deviceId", "device.Product", "device.Platform", "device.DeviceType", "device.RamSize", "settings.VersionName"]


class Bundle(random_bundles.Bundle):
    """With rules on derived tables, filters of all kinds, and a value that must not leave."""

    def rule(self, name):
        if self.random.random() < 0.3:
            return self.table_rule(name)
        return super().rule(name)

    def table_rule(self, name):
        sql = self.of("select count(*) as n from {} where a is not null", "select max(b) as n from {} where 1",
                      "select count(*) as n from {} where b > '1'", "select sum(count) as n from {} where 1")
        table = self.of("DATA", "MORE", "data")
        params = xml("queryReturnParam", xml("params", xml("param", id="p", key="n", type=self.of("int", "string"))))
        test = xml(self.of("gt", "eq", "ne"), xml("id", "p") + xml("value", self.of("0", "1", "x", "3")), type="static")
        item = xml("SQLItem", xml("sql", sql.format(table).replace(">", "&gt;")) + xml("time", period=30) + xml("BeginFlag", value=4)
                   + xml("condition", xml("or", test, type="single_logic")))
        reference = xml("referenceCommonPart", xml("commonPartName", self.of("DATA", "MORE")))
        return xml("commandRule", reference + params + xml("AnalysisMethod", xml("SQL_Condition", item), type="SQL"), name=name,
                   detectScene=1, production=self.of(None, None, "ABC"), deviceType=self.of(None, None, "laptop,pad"))

    def rule_file(self):
        def table(name):
            first = self.of(*random_bundles.IDS[:5])
            events = xml("alarmId", self.params("a", "b", "COUNT"), Eventid_Min=first, Eventid_Max=first + self.of(0, 2))
            return xml("thresholdsOrLumbraData", xml("retrieveLumbraData", events), name=name)
        common = xml("RuleCommonPart", xml(random_bundles.TAG, xml("commonPart", table("DATA") + table("MORE"))))
        return super().rule_file().replace("</r>", common + "</r>")

    def write(self, folder):
        super().write(folder)
        description = json.loads((folder / "bundle.json").read_text())
        description["deviceId"] = SECRET
        (folder / "bundle.json").write_text(json.dumps(description))

    def redaction(self):
        log = []
        for _ in range(self.random.randint(0, 2)):
            entry = {"members": self.some(["a", "b", "A", "COUNT", "none"], 1, 3)}
            if self.random.random() < 0.6:
                entry["events"] = self.of("931000001-931000003", "920000001,1", "2147483647")
            log.append(entry)
        return {"key": "0123456789abcdef", "bundle": ["deviceId"] + self.some(KEYS[1:], 0, 2),
                "nodes": self.some(["/sys/x", "/sys/.*", "/sys/y"], 0, 1), "log": log}


def run(arborist, *arguments):
    return subprocess.run([arborist, *map(str, arguments)], capture_output=True, text=True, check=False)


def answers_of(arborist, bundle):
    """The answers of the rules at each place of each tree, and the verdicts."""
    line = json.loads(run(arborist, "detect", "--json", "--explain", "--log-level", "none", bundle).stdout)
    rules, verdicts = {}, {}
    for place, tree in enumerate(line.get("explanation", [])):
        for event, evidence in enumerate(tree["evidence"]):
            # A rule of a group runs only if those before it are true: the rules of an alternative are compared as one.
            for number in {rule["alternative"] for rule in evidence["rules"]}:
                group = [rule for rule in evidence["rules"] if rule["alternative"] == number]
                names = tuple(rule["name"] for rule in group)
                rules[place, event, number, names] = [(rule["verdict"], rule["reason"], rule["check"]) for rule in group]
    for place, tree in enumerate(line["results"]):
        verdicts[place] = (tree["verdict"], [cause["id"] for cause in tree["rootCauses"]])
    return rules, verdicts


class RedactionRandomTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def pack(self, bundle, *more):
        target = self.folder / ("redacted.zip" if more else "plain.zip")
        packed = run(ARBORIST, "bundle", "pack", "--json", "--log-level", "none", bundle, "-o", target, *more)
        return target, json.loads(packed.stdout)

    def test_rules_that_are_not_named_answer_as_before(self):
        unnamed, equal = 0, 0
        for number in range(CASES):
            where = f"seed {SEED}, bundle {number}"
            made = Bundle(f"{SEED}/redaction/{number}")
            bundle = self.folder / str(number)
            made.write(bundle)
            (self.folder / "redaction.json").write_text(json.dumps(made.redaction()))
            plain, whole = self.pack(bundle)
            redacted, told = self.pack(bundle, "--redact", self.folder / "redaction.json")
            if not whole["ok"]:  # a rule set without a tree
                self.assertEqual(told["error"], whole["error"], where)
                continue
            self.assertTrue(told["ok"], f"{where}: {told}")
            with zipfile.ZipFile(redacted) as archive:
                for name in archive.namelist():
                    self.assertNotIn(SECRET.encode(), archive.read(name), f"{where}: {name}")
            names = {rule["rule"] for rule in told["redacted"]["rules"]}
            (before, verdicts), (after, others) = answers_of(ARBORIST, plain), answers_of(ARBORIST, redacted)
            for key, answer in before.items():
                if names.isdisjoint(key[-1]):
                    unnamed += 1
                    self.assertEqual(after.get(key), answer, f"{where}: {key}, named are {names}")
            if not names:
                equal += 1
                self.assertEqual(others, verdicts, where)
            shutil.rmtree(bundle)
        self.assertGreater(unnamed, CASES)  # else the cases are worth little
        self.assertGreater(equal, CASES // 10)


if __name__ == "__main__":
    ARBORIST = sys.argv.pop(1)
    sys.exit(unittest.main())
