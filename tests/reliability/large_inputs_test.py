"""Detections over inputs that are large on purpose come out right, and print what they took.

usage: large_inputs_test.py ARBORIST [SHARE]

SHARE is the part of the full sizes, 0.01 by default: scripts/large-inputs.sh runs all of them. The answers depend on the
last event, rule, row, number and file, so that one that is left out shows.
"""
import json
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

NOW = 1700000000
LOG = "data/Comms/Lumbra/workDir/0/log.db"
HOT = ("<nodeRule name='hot' detectScene='1'><nodeInfo param='T' path='/sys/t'/><params><param id='t' key='T' type='int'/>"
       "</params><condition><or type='single_logic'><gt><id>t</id><value>70</value></gt></or></condition></nodeRule>")


def alarm(name, first, last, threshold):
    return (f"<alarmRule name='{name}' detectScene='1'><alarmId Eventid_Min='{first}' Eventid_Max='{last}' BeginFlag='4'>"
            f"<time type='duration' period='30' threshold='{threshold}'/></alarmId></alarmRule>")


def entry(event, rule):
    return f"<Event><ID>{event}</ID><or type='singleRule'><Rule><Rule-name>{rule}</Rule-name></Rule></or></Event>"


def basic(event):
    return f"<Basic-Event><ID>{event}</ID></Basic-Event>"


class Device:
    """A bundle in a folder of its own."""

    def __init__(self, folder):
        self.folder = Path(folder)
        for path in ("rules", "device/sys", "device/data", Path(LOG).parent, "copies"):
            (self.folder / path).mkdir(parents=True)
        (self.folder / "device/sys/t").write_text("80")
        (self.folder / "bundle.json").write_text(json.dumps({
            "detectScene": 1, "treeTag": "t", "now": NOW, "tz": "UTC0", "device": {"Product": "P", "Platform": "x", "DeviceType": "d"},
            "settings": {"ProgramDataDir": "data", "DeviceRootDir": "device", "AppDatabaseDir": "copies", "VersionName": "1"}}))
        self.log([])

    def trees(self, events):
        (self.folder / "rules/FaultTrees.xml").write_text(
            f"<r version='1'><t><T id='T' version='1' type='t'><Intermediate-Event><ID>T</ID><Or-Gate>{events}</Or-Gate>"
            "</Intermediate-Event></T></t></r>")

    def rules(self, entries, rules, common=""):
        with open(self.folder / "rules/FaultTreeRules.xml", "w", encoding="utf-8") as file:
            file.write("<r><EventRules><t>")
            file.writelines(entries)
            file.write(f"</t></EventRules><RuleCommonPart><t><commonPart>{common}</commonPart></t></RuleCommonPart><RuleList><t><rule>")
            file.writelines(rules)
            file.write("</rule></t></RuleList></r>")

    def log(self, rows):
        """Rows of (event number, time)."""
        path = self.folder / LOG
        path.unlink(missing_ok=True)
        database = sqlite3.connect(path)
        database.executescript("PRAGMA synchronous=OFF; PRAGMA journal_mode=OFF;"
                               "CREATE TABLE event_version (_ID integer primary key, VERSION_NAME text);"
                               "CREATE TABLE event_info (_ID integer primary key, event_id integer, extra text, version_id integer);"
                               "CREATE TABLE event_info_flow (_ID integer primary key, event_pid integer, occurrence_time integer);"
                               "CREATE TABLE made (number integer primary key, event integer, time integer);"
                               "INSERT INTO event_version VALUES (1, '1');")
        database.executemany("INSERT INTO made VALUES (null, ?, ?)", rows)
        database.executescript("INSERT INTO event_info SELECT number, event, '{}', 1 FROM made;"
                               "INSERT INTO event_info_flow SELECT number, number, time FROM made; DROP TABLE made;")
        database.close()

    def detect(self):
        """The root causes, seconds, and mebibytes at the most."""
        start = time.monotonic()
        process = subprocess.Popen([ARBORIST, "detect", "--json", self.folder], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        answer = json.loads(process.stdout.read())
        usage = os.wait4(process.pid, 0)[2]
        process.stdout.close()
        process.returncode = 0
        causes = [cause["id"] for tree in answer["results"] for cause in tree["rootCauses"]]
        return causes, time.monotonic() - start, usage.ru_maxrss // 1024


class LargeInputs(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(dir=os.environ.get("ARBORIST_LARGE_FOLDER"))
        self.device = Device(Path(self.folder) / "b")

    def tearDown(self):
        shutil.rmtree(self.folder)

    def expect(self, what, causes):
        found, seconds, mebibytes = self.device.detect()
        print(f"{what}: {seconds:.1f} s, {mebibytes} MiB", file=sys.stderr)
        self.assertEqual(found, causes)

    def test_tree_of_a_million_events(self):
        count = int(1_000_000 * SHARE)
        groups = "".join(
            f"<Intermediate-Event><ID>G{first}</ID><Or-Gate>{''.join(basic(f'E{number}') for number in range(first, min(first + 1000, count)))}"
            "</Or-Gate></Intermediate-Event>" for first in range(0, count, 1000))
        self.device.trees(groups)
        self.device.rules([entry(f"E{count - 1}", "hot")], [HOT])
        self.expect(f"tree of {count} events", [f"E{count - 1}"])

    def test_rule_file_of_a_hundred_megabytes(self):
        count = int(270_000 * SHARE)
        self.device.trees(basic("FIRST") + basic("LAST"))
        rules = [alarm(f"rule {number} " + "x" * 200, number + 1, number + 1, 1) for number in range(count)]
        self.device.rules([entry("FIRST", "rule 0 " + "x" * 200), entry("LAST", f"rule {count - 1} " + "x" * 200)], rules)
        self.device.log([(count, NOW - 100)])
        size = (self.device.folder / "rules/FaultTreeRules.xml").stat().st_size
        self.expect(f"rule file of {size // 1_000_000} MB, {count} rules", ["LAST"])

    def test_log_of_ten_million_rows(self):
        count = int(10_000_000 * SHARE)
        self.device.trees(basic("ENOUGH") + basic("ONE_SHORT"))
        per_event = count // 50
        self.device.rules([entry("ENOUGH", "enough"), entry("ONE_SHORT", "short")],
                          [alarm("enough", 900000001, 900000001, per_event), alarm("short", 900000049, 900000049, per_event + 1)])
        self.device.log((900000000 + number % 50, NOW - 1 - number % (29 * 86400)) for number in range(count))
        self.expect(f"event log of {count} rows", ["ENOUGH"])

    def test_range_of_ten_million_event_numbers(self):
        count = int(10_000_000 * SHARE)
        self.device.trees(basic("AT_THE_END") + basic("BEHIND_IT"))
        self.device.rules([entry("AT_THE_END", "whole"), entry("BEHIND_IT", "without")],
                          [alarm("whole", 1, count, 1), alarm("without", 1, count - 1, 1)])
        self.device.log([(count, NOW - 100)])
        self.expect(f"range of {count} event numbers", ["AT_THE_END"])

    def test_ten_thousand_external_files(self):
        count = int(10_000 * SHARE)
        for number in range(count):
            database = sqlite3.connect(self.device.folder / f"device/data/usage{number}.db")
            database.executescript("PRAGMA synchronous=OFF; PRAGMA journal_mode=OFF; PRAGMA page_size=512;"
                                   f"CREATE TABLE rows (n integer); INSERT INTO rows VALUES ({number});")
            database.close()

        def counting(name, least):
            return (f"<commandRule name='{name}' detectScene='1'><referenceDefDB type='counted'><defDBName>USAGE</defDBName>"
                    f"<defDBNum>{least}</defDBNum></referenceDefDB><queryReturnParam><params><param id='n' key='n' type='int'/></params>"
                    "</queryReturnParam><AnalysisMethod type='SQL'><SQL_Condition type='defDBSql'><SQLItem><sql>select n from rows</sql>"
                    "<condition><or type='single_logic'><ge type='static'><id>n</id><value>0</value></ge></or></condition>"
                    "</SQLItem></SQL_Condition></AnalysisMethod></commandRule>")
        self.device.trees(basic("ALL") + basic("ONE_MORE"))
        self.device.rules([entry("ALL", "all"), entry("ONE_MORE", "more")], [counting("all", count), counting("more", count + 1)],
                          "<defDBTable name='USAGE'><dbPaths><dbPath decompression='true' type='folder' value='/data'/></dbPaths>"
                          "<dbName name='.*usage.*'/>"
                          "</defDBTable>")
        self.expect(f"{count} external databases", ["ALL"])


if __name__ == "__main__":
    ARBORIST = Path(sys.argv.pop(1)).resolve()
    SHARE = float(sys.argv.pop(1)) if len(sys.argv) > 1 and sys.argv[1][0].isdigit() else 0.01
    sys.exit(unittest.main())
