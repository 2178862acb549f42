"""Bundles of the cases of rule-set tests: what a case says of a device, written as the files of one."""
import contextlib
import json
import re
import shutil
import sqlite3
import subprocess
import zipfile
from pathlib import Path

EVENT_LOG = "programdata/Comms/Lumbra/workDir/0/log.db"


ROOT = Path(__file__).resolve().parents[2]
# At least so many cases have the rule sets of the examples.
EXAMPLES = {"laptop": 40, "host": 15, "start": 3}


def write_examples(arborist, folder, zone):
    """Yields each example that has cases with the bundles of them, all of its rule set."""
    laptop, host, start = (folder / name for name in EXAMPLES)
    subprocess.run([ROOT / "examples/laptop/prepare.sh", arborist, laptop], check=True, capture_output=True)
    shutil.copytree(ROOT / "examples/linux-host", host)
    shutil.copytree(ROOT / "diagnosis/rule_set/start", start)
    description = json.loads((host / "bundle.json").read_text())
    (host / "bundle.json").write_text(json.dumps({**description, "now": "2024-05-20 12:00:00", "tz": zone}))
    for example in (laptop, host, start):
        cases = CaseBundles(arborist, example, zone)
        made = folder / f"{example.name}-cases"
        bundles = [bundle for path in sorted((example / "rules").glob("*.test.json")) for bundle in cases.write(path, made)]
        if len(bundles) < EXAMPLES[example.name]:
            raise ValueError(f"{example.name} has {len(bundles)} cases")
        yield example, [example, *bundles]


class CaseBundles:
    """Writes a folder for each case of a file "*.test.json"; all take the rule set of one bundle.json."""

    def __init__(self, arborist, example, zone):
        self.arborist = arborist
        self.zone = zone
        self.description = json.loads((example / "bundle.json").read_text())
        rules = (example / "rules/FaultTreeRules.xml").read_text()
        self.codes = {name: found.group(1) for name, body in re.findall(r'<codeRule name="([^"]*)"(.*?)</codeRule>', rules, re.S)
                      if (found := re.search("<userDefinedInfo>(.*?)</userDefinedInfo>", body, re.S))}

    def write(self, path, folder):
        """The folders, one for each case."""
        defaults = json.loads(path.read_text())
        made = []
        for number, case in enumerate(defaults["cases"]):
            bundle = folder / f"{path.name.removesuffix('.test.json')}{number}"
            made.append(bundle)
            self.write_case(bundle, lambda key, case=case: case.get(key, defaults.get(key)),
                            {**defaults.get("files", {}), **case.get("files", {})})
        return made

    def write_case(self, bundle, get, files):
        (bundle / EVENT_LOG).parent.mkdir(parents=True)
        answers = {self.codes[name]: answer for name, answer in (get("answers") or {}).items()
                   if answer is not None and name in self.codes}
        description = {**self.description, "detectScene": get("scene"), "ruleFileDir": "rules", "codeAnswers": answers,
                       "device": {**self.description.get("device", {}), **(get("device") or {})},
                       "now": get("now") or "2024-05-20 12:00:00", "tz": get("tz") or self.zone}
        description["settings"] = {"ProgramDataDir": "programdata", "DeviceRootDir": "device", "AppDatabaseDir": "databases",
                                   "VersionName": get("version") or ""}
        (bundle / "bundle.json").write_text(json.dumps(description))
        for name, content in files.items():
            self.write_file(bundle / "device" / name.lstrip("/"), content)
        for name, tables in (get("databases") or {}).items():
            self.write_database(bundle / "device" / name.lstrip("/"), tables)
        self.write_log(bundle, get("events") or [], description["now"], description["tz"])
        for repair, moment in (get("repairs") or {}).items():
            if not moment.startswith("-"):
                self.run("repair", "record", bundle, repair, "--now", moment)

    def run(self, *arguments):
        subprocess.run([self.arborist, *map(str, arguments)], check=True, capture_output=True)

    @staticmethod
    def write_file(path, content):
        if content is not None:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(f"{content}\n")

    @staticmethod
    def write_database(path, tables):
        archive = path.parent if path.parent.suffix == ".zip" else None
        if tables is None:
            return
        place = path.parent.with_suffix(".db") if archive else path
        place.parent.mkdir(parents=True, exist_ok=True)
        with contextlib.closing(sqlite3.connect(place)) as database:
            for name, table in tables.items():
                database.execute(f"CREATE TABLE {name} ({', '.join(table['columns'])})")
                database.executemany(f"INSERT INTO {name} VALUES ({', '.join('?' * len(table['columns']))})", table["rows"])
            database.commit()
        if archive:
            with zipfile.ZipFile(archive, "w") as packed:
                packed.write(place, path.name)
            place.unlink()

    def write_log(self, bundle, events, now, zone):
        """Distances such as "-10d" are left to SQLite: the log's import takes moments only."""
        lines = []
        for event in events:
            moment = event["time"]
            if distance := re.fullmatch(r"-(\d+)([dhms])", moment):
                unit = {"d": "days", "h": "hours", "m": "minutes", "s": "seconds"}[distance.group(2)]
                with contextlib.closing(sqlite3.connect(":memory:")) as clock:
                    moment = clock.execute("SELECT datetime(?, ?)", (now, f"-{distance.group(1)} {unit}")).fetchone()[0]
            line = json.dumps({**{key: event[key] for key in ("event", "version", "extra") if key in event}, "time": moment})
            lines += [line] * event.get("count", 1)
        listed = bundle / "events.jsonl"
        listed.write_text("".join(line + "\n" for line in lines))
        self.run("log", "import", listed, "--to", bundle / EVENT_LOG, "--tz", zone)
