#!/usr/bin/env python3
"""Makes a fleet to try batches with: laptops whose event logs and batteries differ by chance, one rule set for all.

    make_bundles.py ARBORIST FOLDER [--count N] [--rows N] [--seed N] [--broken-every N]

FOLDER gets `devices/00001.zip` and so on, as devices would send them, the folder `rules`, and `bundles.txt`, the list of
the devices. Equal arguments make bundles with equal answers. Needs Python 3.11.
"""
import argparse
import random
import sqlite3
import subprocess
import tempfile
import zipfile
from pathlib import Path

LAPTOP = Path(__file__).resolve().parents[1] / "laptop"
LOG = "programdata/Comms/Lumbra/workDir/0/log.db"
CHARGE = "device/sys/class/power_supply/BAT0/charge_full"
NOW = 1716199200  # the laptop's now
DAY = 86400


class Template:
    """The prepared laptop: the files that all devices share, and its event log."""

    def __init__(self, laptop):
        inside = [path for name in ("device", "programdata") for path in sorted((laptop / name).rglob("*"))]
        files = [laptop / "bundle.json"] + [path for path in inside if path.is_file()]
        self.files = {path.relative_to(laptop).as_posix(): path.read_bytes() for path in files}
        del self.files[CHARGE]
        log = opened(self.files.pop(LOG))
        self.events = log.execute("SELECT event_id, extra, version_id FROM event_info").fetchall()
        log.executescript("DELETE FROM event_info; DELETE FROM event_info_flow; VACUUM;")
        self.bare_log = log.serialize()


def opened(data):
    """A database in memory with these bytes."""
    database = sqlite3.connect(":memory:")
    database.deserialize(data)
    return database


def log_bytes(template, chance, rows):
    """An event log of so many rows in the order of their times: events of the laptop, at random moments of sixty days."""
    times = sorted(NOW - chance.randrange(60 * DAY) for _ in range(rows))
    events = [chance.choice(template.events) for _ in range(rows)]
    log = opened(template.bare_log)
    with log:
        log.executemany("INSERT INTO event_info (event_id, extra, version_id) VALUES (?, ?, ?)", events)
        log.executemany("INSERT INTO event_info_flow (event_pid, occurrence_time) VALUES (?, ?)", enumerate(times, 1))
    return log.serialize()


def write_device(template, path, chance, rows):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as bundle:
        for name, data in template.files.items():
            bundle.writestr(name, data)
        bundle.writestr(LOG, log_bytes(template, chance, chance.randrange(2 * rows + 1)))
        bundle.writestr(CHARGE, f"{chance.randrange(500, 5000)}000\n")


def break_device(path):
    """What arrives when a device loses its network."""
    data = path.read_bytes()
    path.write_bytes(data[:len(data) // 2])


def make_fleet(arborist, fleet, count, rows, seed, broken_every):
    chance = random.Random(seed)
    (fleet / "devices").mkdir(parents=True)
    with tempfile.TemporaryDirectory(dir=fleet) as scratch:
        laptop = Path(scratch) / "laptop"
        subprocess.run([LAPTOP / "prepare.sh", arborist, laptop], check=True, stdout=subprocess.DEVNULL)
        template = Template(laptop)
        (laptop / "rules").rename(fleet / "rules")
    names = [f"devices/{number:05}.zip" for number in range(1, count + 1)]
    for number, name in enumerate(names, 1):
        write_device(template, fleet / name, chance, rows)
        if broken_every and number % broken_every == 0:
            break_device(fleet / name)
    (fleet / "bundles.txt").write_text("".join(f"{name}\n" for name in names))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("arborist", type=Path, metavar="ARBORIST")
    parser.add_argument("folder", type=Path, metavar="FOLDER")
    parser.add_argument("--count", type=int, default=5000)
    parser.add_argument("--rows", type=int, default=30, help="rows of an event log, on average")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--broken-every", type=int, default=250, help="one bundle of so many is broken; 0: none")
    given = parser.parse_args()
    make_fleet(given.arborist.resolve(), given.folder, given.count, given.rows, given.seed, given.broken_every)


if __name__ == "__main__":
    main()
