"""Whole processes: the command on an example beside SQLite's own shell on the same log, and the library's size."""
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
BUILD = Path(sys.argv[1]).resolve()
COMMAND = BUILD / "tools/arborist/arborist"
RUNNER = BUILD / "bench/process_runner"
RUNS = 61
MOST_BYTES = 700_000


def laptop(folder):
    """The example as the demo makes it, with its event log."""
    bundle = folder / "laptop"
    subprocess.run([ROOT / "examples/laptop/prepare.sh", COMMAND, bundle], check=True, stdout=subprocess.DEVNULL)
    return bundle, bundle / "programdata/Comms/Lumbra/workDir/0/log.db"


def report_runs():
    with tempfile.TemporaryDirectory() as name:
        bundle, log = laptop(Path(name))
        counting = ["sqlite3", log, "select count(*) from event_info"]
        run = subprocess.run([RUNNER, str(RUNS), COMMAND, "detect", bundle, "--json", "--", *counting],
                             check=True, stdout=subprocess.PIPE, text=True)
        ours, baseline, peak = (float(word) for word in run.stdout.split())
        empty = subprocess.run([RUNNER, str(RUNS), COMMAND, "--version", "--", *counting],
                               check=True, stdout=subprocess.PIPE, text=True)
    print(f"# whole process: --version alone takes {empty.stdout.split()[0]} ms")
    print(f"whole process: detect examples/laptop, {ours:.2f}, {baseline:.2f}, {ours / baseline:.2f}, 3")
    print(f"whole process: peak kilobytes against 12 MB, {peak:.0f}, 12288, {peak / 12288:.2f}, 1")


def shared_library():
    """Built as a package would build it, beside the benchmarks."""
    folder = BUILD / "shared"
    subprocess.run(["cmake", "-S", ROOT, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                    "-DBUILD_SHARED_LIBS=ON", "-DARBORIST_BUILD_TESTS=OFF", "-DARBORIST_BUILD_TOOLS=OFF"],
                   check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", folder], check=True, stdout=subprocess.DEVNULL)
    return (folder / "arborist/libarborist.so").resolve()


def bytes_of_initialisers(library):
    """Code that runs when the library is loaded; there is none."""
    symbols = subprocess.run(["nm", "-S", library], check=True, stdout=subprocess.PIPE, text=True).stdout
    return sum(int(size, 16) for size in re.findall(r"^\S+ (\S+) t _GLOBAL__sub_I", symbols, re.MULTILINE))


def report_size():
    library = shared_library()
    with tempfile.TemporaryDirectory() as name:
        stripped = Path(name) / "libarborist.so"
        subprocess.run(["strip", "-o", stripped, library], check=True)
        size = stripped.stat().st_size
    print(f"size: bytes of the stripped shared library, {size}, {MOST_BYTES}, {size / MOST_BYTES:.3f}, 1")
    early = bytes_of_initialisers(library)
    print(f"size: bytes of code before the first call, {early}, {size}, {early / size:.3f}, 0")


if __name__ == "__main__":
    report_runs()
    report_size()
