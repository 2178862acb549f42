"""A batch of 1,000 bundles: with one worker process and with two, its temporary files in memory and on disk, and with a
small and a large rule set."""
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import large_rule_set

ROOT = Path(__file__).resolve().parents[1]
ARBORIST = Path(sys.argv[1]).resolve() / "tools/arborist/arborist"
BUNDLES = 1000
RUNS = 5
SMALL, LARGE = 10_000, 2_000_000  # bytes of rule sets


def prepare(folder):
    """The laptop a thousand times: one rule set for all, a log and databases for each."""
    laptop = folder / "laptop"
    subprocess.run([ROOT / "examples/laptop/prepare.sh", ARBORIST, laptop], check=True, stdout=subprocess.DEVNULL)
    names = []
    for number in range(BUNDLES):
        names.append(f"b{number}")
        shutil.copytree(laptop, folder / names[-1])
    (folder / "list").write_text("\n".join(names) + "\n")


def run_once(folder, temporary, jobs, *options):
    command = [ARBORIST, "detect", "--batch", "list", "--jobs", str(jobs), "--log-level", "none", *options]
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


def report_rule_sets(folder, temporary):
    """Both sets have the same tree: what differs is how much more a set has than a detection asks."""
    for name, size in (("small", SMALL), ("large", LARGE)):
        large_rule_set.write(folder / name, size)
    run_once(folder, temporary, 2, "--rules", "small")
    pairs = [(run_once(folder, temporary, 2, "--rules", "large"), run_once(folder, temporary, 2, "--rules", "small"))
             for _ in range(RUNS)]
    ours = statistics.median(large for large, _ in pairs)
    baseline = statistics.median(small for _, small in pairs)
    print(f"batch with one rule set: {BUNDLES} bundles with one of 2 MB against one of 10 KB, {ours * 1e3:.0f}, "
          f"{baseline * 1e3:.0f}, {ours / baseline:.3f}, 1.3")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        prepare(folder)
        with tempfile.TemporaryDirectory(dir="/dev/shm") as memory:
            in_memory = report(folder, "in memory", memory)
            report_rule_sets(folder, memory)
        on_disk = report(folder, "on disk", name)
        print(f"batch: {BUNDLES} bundles with temporary files on disk against in memory, {on_disk * 1e3:.0f}, "
              f"{in_memory * 1e3:.0f}, {on_disk / in_memory:.3f}, 1.3")


if __name__ == "__main__":
    main()
