"""What the observer costs where there is none: instructions of one work with and without the calls to it."""
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BENCH = Path(sys.argv[1]).resolve() / "bench"
WORK = "ObservedWork*"


def millions_of_instructions(program):
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(["valgrind", "--tool=callgrind", f"--toggle-collect={WORK}",
                              f"--callgrind-out-file={folder}/out", program],
                             check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    return int(re.search(r"Collected : (\d+)", run.stderr).group(1)) / 1e6


def main():
    ours = millions_of_instructions(BENCH / "observer_work")
    baseline = millions_of_instructions(BENCH / "unobserved_work")
    print(f"observer: none set against the code without the calls [millions of instructions], {ours:.1f}, "
          f"{baseline:.1f}, {ours / baseline:.4f}, 1.01")


if __name__ == "__main__":
    main()
