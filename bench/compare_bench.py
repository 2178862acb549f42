"""Two rule sets over a thousand zips: one run of compare against two batches."""
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
ARBORIST = Path(sys.argv[1]).resolve() / "tools/arborist/arborist"
BUNDLES = 1000
RUNS = 3


def prepare(folder):
    """The laptop as a zip a thousand times, its rules, and the same with another threshold."""
    laptop = folder / "laptop"
    subprocess.run([ROOT / "examples/laptop/prepare.sh", ARBORIST, laptop], check=True, stdout=subprocess.DEVNULL)
    subprocess.run([ARBORIST, "bundle", "pack", laptop, "-o", folder / "b0.zip", "--log-level", "none"], check=True,
                   stdout=subprocess.DEVNULL)
    names = [f"b{number}.zip" for number in range(BUNDLES)]
    for name in names[1:]:
        shutil.copy(folder / "b0.zip", folder / name)
    (folder / "list").write_text("\n".join(names) + "\n")
    for side, threshold in (("old", "100"), ("new", "200")):
        shutil.copytree(laptop / "rules", folder / side)
        rules = folder / side / "FaultTreeRules.xml"
        rules.write_text(rules.read_text().replace('period="30" threshold="100"', f'period="30" threshold="{threshold}"'))


def seconds_of(folder, *command):
    start = time.perf_counter()
    subprocess.run([ARBORIST, *command, "--log-level", "none"], cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   check=True)
    return time.perf_counter() - start


def compared(folder):
    return seconds_of(folder, "compare", "--rules", "old", "--rules", "new", "--batch", "list", "--jobs", "2")


def one_by_one(folder):
    return sum(seconds_of(folder, "detect", "--rules", side, "--batch", "list", "--jobs", "2") for side in ("old", "new"))


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        prepare(folder)
        compared(folder)
        pairs = [(compared(folder), one_by_one(folder)) for _ in range(RUNS)]
        ours = statistics.median(one for one, _ in pairs)
        baseline = statistics.median(two for _, two in pairs)
        print(f"compare: two rule sets over {BUNDLES} zips against two batches, {ours * 1e3:.0f}, {baseline * 1e3:.0f}, "
              f"{ours / baseline:.3f}, 1.0")


if __name__ == "__main__":
    main()
