"""A batch of 1,000 bundles with one worker process and with two, its temporary files in memory and on disk."""
import os
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
RUNS = 5


def prepare(folder):
    """The laptop a thousand times: one rule set for all, a log and databases for each."""
    laptop = folder / "laptop"
    subprocess.run([ROOT / "examples/laptop/prepare.sh", ARBORIST, laptop], check=True, stdout=subprocess.DEVNULL)
    names = []
    for number in range(BUNDLES):
        names.append(f"b{number}")
        shutil.copytree(laptop, folder / names[-1])
    (folder / "list").write_text("\n".join(names) + "\n")


def run_once(folder, temporary, jobs):
    command = [ARBORIST, "detect", "--batch", "list", "--jobs", str(jobs), "--log-level", "none"]
    answers = folder / "answers"
    with answers.open("wb") as out:
        start = time.perf_counter()
        subprocess.run(command, cwd=folder, env={**os.environ, "TMPDIR": temporary}, stdout=out, check=True)
        seconds = time.perf_counter() - start
    if answers.read_bytes().count(b"\n") != BUNDLES:
        raise ValueError("not one line for each bundle")
    return seconds


def report(folder, place, temporary):
    run_once(folder, temporary, 2)
    pairs = [(run_once(folder, temporary, 2), run_once(folder, temporary, 1)) for _ in range(RUNS)]
    ours = statistics.median(two for two, _ in pairs)
    baseline = statistics.median(one for _, one in pairs)
    print(f"batch: {BUNDLES} bundles with --jobs 2 against --jobs 1 [temporary files {place}], {ours * 1e3:.0f}, "
          f"{baseline * 1e3:.0f}, {ours / baseline:.3f}, {1 / 1.8:.3f}")
    return ours


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        prepare(folder)
        with tempfile.TemporaryDirectory(dir="/dev/shm") as memory:
            in_memory = report(folder, "in memory", memory)
        on_disk = report(folder, "on disk", name)
        print(f"batch: {BUNDLES} bundles with temporary files on disk against in memory, {on_disk * 1e3:.0f}, "
              f"{in_memory * 1e3:.0f}, {on_disk / in_memory:.3f}, 1.3")


if __name__ == "__main__":
    main()
