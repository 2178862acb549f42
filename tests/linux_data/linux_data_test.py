"""Detections over a real server's log come out as worked out by SQL beside it.

usage: linux_data_test.py ARBORIST DATA_DIR

The data may be used for research only and is no part of this repository: where its folder is missing the test is
skipped (exit status 77).
"""
import json
import os
import re
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

ARBORIST = Path(sys.argv[1]).resolve()
DATA = Path(sys.argv[2])
BASELINE = Path(__file__).with_name("lint-baseline.txt")
SKIPPED = 77

FIRED = re.compile(r"check error true ([^:]*):")


def make_log(path, now, options):
    subprocess.run([sys.executable, DATA / "to_logdb.py", DATA / "linux_slice.csv", path, "--map",
                    DATA / "map_linux.json", "--templates", DATA / "linux_templates.csv", "--now", str(now),
                    "--lag", "300", *options.split()], check=True, stdout=subprocess.DEVNULL)


def write_repairs(path, now, ages):
    with sqlite3.connect(path) as database:
        database.execute("CREATE TABLE repair_data (_id INTEGER PRIMARY KEY NOT NULL, repair_id TEXT, repair_date TEXT)")
        for repair, age in ages.items():
            date = time.strftime("%Y-%m-%d %H:%M:%S", time.localtime(now - age))
            database.execute("insert into repair_data values (null, ?, ?)", (repair, date))
    database.close()


def make_bundle(folder, scenario, tree_tag, now):
    data = folder / "programdata/Comms/Lumbra"
    (data / "workDir/0").mkdir(parents=True)
    (data / "zxdetectrepair/databases").mkdir(parents=True)
    make_log(data / "workDir/0/log.db", now, scenario["log_options"])
    write_repairs(data / "zxdetectrepair/databases/repair_record.db", now, scenario["repairs_age_seconds"])
    (folder / "rules").mkdir()
    for name in ("FaultTrees.xml", "FaultTreeRules.xml"):
        (folder / "rules" / name).write_bytes((DATA / name).read_bytes())
    settings = {"ProgramDataDir": "programdata"}
    if scenario["VersionName"]:
        settings["VersionName"] = scenario["VersionName"]
    bundle = {"detectScene": scenario["detect_scene"], "treeTag": tree_tag, "device": scenario["device"],
              "settings": settings, "now": now}
    (folder / "bundle.json").write_text(json.dumps(bundle))


def told(cause):
    return {"id": cause["id"], "name": cause["name"], "user_defined": cause["userDefined"],
            "description": cause["faultDescription"], "suggestions": cause["suggestions"],
            "repairs": [[repair["id"], repair["extra"]] for repair in cause["repairs"]]}


class LinuxDataTest(unittest.TestCase):
    maxDiff = None

    def detect(self, scenario, now):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            make_bundle(folder, scenario, EXPECTED["tree_tag"], now)
            run = subprocess.run([ARBORIST, "detect", "--json", "--log-file", folder / "log.txt", folder],
                                 capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, 0, run.stderr)
            log = (folder / "log.txt").read_text(errors="replace")
        return json.loads(run.stdout), FIRED.findall(log)

    def check(self, scenario, now):
        answer, fired = self.detect(scenario, now)
        self.assertTrue(answer["ok"], answer)
        self.assertEqual([tree["treeId"] for tree in answer["results"]], [tree["id"] for tree in scenario["trees"]])
        self.assertEqual(fired, [event for tree in scenario["trees"] for event in tree["fired_events_in_order"]])
        for tree, expected in zip(answer["results"], scenario["trees"]):
            self.assertEqual(tree["version"], expected["version"])
            self.assertEqual(tree["isFault"], expected["is_fault"])
            self.assertEqual([told(cause) for cause in tree["rootCauses"]], expected["root_causes"])

    def test_every_scenario_comes_out_as_sql_says(self):
        # Both sides of a year's end, midnight and midday; the expectation holds for any of them.
        for now in (1800000000, 1798761600, 1782907200):
            for name, scenario in EXPECTED["scenarios"].items():
                with self.subTest(scenario=name, now=now):
                    self.check(scenario, now)

    def test_lint_finds_what_the_baseline_gives_reasons_for_and_no_more(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "rules").mkdir()
            for file in ("FaultTrees.xml", "FaultTreeRules.xml"):
                (folder / "rules" / file).write_bytes((DATA / file).read_bytes())
            baseline = folder / "lint-baseline.txt"
            baseline.write_bytes(BASELINE.read_bytes())
            run = subprocess.run([ARBORIST, "lint", "rules", "--baseline", baseline, "--fail-level", "info"], cwd=folder,
                                 capture_output=True, text=True, check=False)
        known = [line for line in BASELINE.read_text().splitlines() if not line.startswith("#")]
        number = sum(int(line.rpartition("\t")[2]) for line in known)
        self.assertEqual((run.stdout, run.returncode), (f"no findings, {number} in the baseline\n", 0))


if __name__ == "__main__":
    if not (DATA / "expected.json").exists():
        print(f"skipped: no data at {DATA}")
        sys.exit(SKIPPED)
    os.environ["TZ"] = "UTC"  # the zone that the expected daily peaks were worked out in
    time.tzset()
    EXPECTED = json.loads((DATA / "expected.json").read_text())
    unittest.main(argv=sys.argv[:1])
