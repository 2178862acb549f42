"""A batch of 1,000 bundles with one worker process and with two."""
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
    """The laptop a thousand times: one rule set for all, a log and databases for each."""
    laptop = folder / "laptop"
    subprocess.run([ROOT / "examples/laptop/prepare.sh", ARBORIST, laptop], check=True, stdout=subprocess.DEVNULL)
    names = []
    for number in range(BUNDLES):
        names.append(f"b{number}")
        shutil.copytree(laptop, folder / names[-1])
    (folder / "list").write_text("\n".join(names) + "\n")


def run_once(folder, jobs):
    command = [ARBORIST, "detect", "--batch", "list", "--jobs", str(jobs), "--log-level", "none"]
    start = time.perf_counter()
    run = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, check=True)
    seconds = time.perf_counter() - start
    if run.stdout.count(b"\n") != BUNDLES:
        raise ValueError("not one line for each bundle")
    return seconds


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        prepare(folder)
        run_once(folder, 2)
        pairs = [(run_once(folder, 2), run_once(folder, 1)) for _ in range(RUNS)]
    ours = statistics.median(two for two, _ in pairs)
    baseline = statistics.median(one for _, one in pairs)
    print(f"batch: {BUNDLES} bundles with --jobs 2 against --jobs 1, {ours * 1e3:.0f}, {baseline * 1e3:.0f}, "
          f"{ours / baseline:.3f}, {1 / 1.8:.3f}")


if __name__ == "__main__":
    main()
