"""A fleet of generated bundles, its lines as one machine prints them, and the comparison with the lines of an engine."""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples" / "fleet"
SECONDS = re.compile(r', "seconds": [-+.e\d]+(?=[,}])')
BUNDLE = re.compile(r'"bundle": "([^"]*)"')


def scratch_folder(test):
    """A folder of a test, in memory where that can be: removing folders waits on some disks."""
    place = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    scratch = tempfile.TemporaryDirectory(prefix="arborist-fleet-", dir=place)
    test.addCleanup(scratch.cleanup)
    folder = Path(scratch.name)
    folder.chmod(0o755)  # munge trusts no socket in a folder that others can't search
    return folder


class Fleet:
    """Bundles in a folder, which is the working directory of every run."""

    def __init__(self, arborist, folder, count, broken_every=250):
        self.arborist = Path(arborist).resolve()
        self.folder = Path(folder)
        subprocess.run([sys.executable, "-B", EXAMPLES / "make_bundles.py", self.arborist, self.folder, "--count", str(count),
                        "--broken-every", str(broken_every)], check=True)
        shutil.copy(EXAMPLES / "shard.sh", self.folder)
        self.rules = (self.folder / "rules").resolve()
        self.bundles = (self.folder / "bundles.txt").read_text().split()

        (self.folder / "tmp").mkdir()
        # Of jobs that are killed, temporary files stay, and some engines leave settings: here they go with the folder.
        temporary = str(self.folder.resolve() / "tmp")
        self.environment = {**os.environ, "PATH": f"{self.arborist.parent}:{os.environ['PATH']}", "TMPDIR": temporary,
                            "HOME": temporary, "XDG_CACHE_HOME": temporary}

    def lines_of_one_machine(self):
        """The line of each bundle from one run on this machine, by its name."""
        result = subprocess.run(["arborist", "detect", "--batch", "bundles.txt", "--rules", self.rules, "--log-level", "none",
                                 "--exit-zero-on-bundle-errors"],
                                cwd=self.folder, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                text=True)
        if result.returncode != 0:
            raise RuntimeError(f"the run on one machine ended with {result.returncode}")
        return by_bundle(result.stdout)


def by_bundle(text):
    """Lines without their seconds, by bundle; a bundle with two lines is an error."""
    lines = {}
    for line in text.splitlines():
        name = BUNDLE.search(line)[1]
        if name in lines:
            raise AssertionError(f"{name} has two lines")
        lines[name] = SECONDS.sub("", line)
    return lines


def faults(fleet, expected, text):
    """What is wrong with the merged lines of a fleet: empty if each bundle has one line, equal to that of one machine."""
    lines = by_bundle(text)
    found = [f"{name}: no line" for name in fleet.bundles if name not in lines]
    found += [f"{name}: not in the list" for name in lines if name not in expected]
    found += [f"{name}: not the line of one machine:\n  {line}\n  {expected[name]}" for name, line in lines.items()
              if name in expected and line != expected[name]]
    return found[:3] + ([f"and {len(found) - 3} more"] if len(found) > 3 else [])
