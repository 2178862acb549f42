"""Whole processes: the command on an example beside SQLite's own shell on the same log, and the library's size."""
import os
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
BUILD = Path(sys.argv[1]).resolve()
COMMAND = BUILD / "tools/arborist/arborist"
RUNS = 31


def run_once(command):
    """Seconds and peak kilobytes of one run."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, _, usage = os.wait4(process.pid, 0)
    return time.perf_counter() - start, usage.ru_maxrss


def paired(ours, baseline):
    """Medians of both, taken in turn so that both see the same machine."""
    pairs = [(run_once(ours), run_once(baseline)) for _ in range(RUNS)]
    return (statistics.median(first[0] for first, _ in pairs), statistics.median(second[0] for _, second in pairs),
            max(first[1] for first, _ in pairs))


def laptop(folder):
    """The example as the demo makes it, with its event log."""
    bundle = folder / "laptop"
    subprocess.run([ROOT / "examples/laptop/prepare.sh", COMMAND, bundle], check=True, stdout=subprocess.DEVNULL)
    return bundle, bundle / "programdata/Comms/Lumbra/workDir/0/log.db"


def main():
    with tempfile.TemporaryDirectory() as name:
        bundle, log = laptop(Path(name))
        seconds, baseline, peak = paired(
            [COMMAND, "detect", bundle, "--json"],
            ["sqlite3", log, "select count(*) from event_info"])
        print(f"whole process: detect examples/laptop, {seconds * 1e3:.2f} ms, {baseline * 1e3:.2f} ms, "
              f"{seconds / baseline:.2f}, <= 3")
        print(f"whole process: peak memory, {peak / 1024:.1f} MB, 12 MB, {peak / 1024 / 12:.2f}, <= 1")
    with tempfile.TemporaryDirectory() as name:
        library = Path(name) / "build"
        subprocess.run(["cmake", "-S", ROOT, "-B", library, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                        "-DBUILD_SHARED_LIBS=ON", "-DARBORIST_BUILD_TESTS=OFF", "-DARBORIST_BUILD_TOOLS=OFF"],
                       check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["cmake", "--build", library], check=True, stdout=subprocess.DEVNULL)
        stripped = Path(name) / "libarborist.so"
        subprocess.run(["strip", "-o", stripped, (library / "arborist/libarborist.so").resolve()], check=True)
        size = stripped.stat().st_size
        print(f"size: stripped shared library, {size / 1000:.0f} KB, 700 KB, {size / 7e5:.2f}, <= 1")


if __name__ == "__main__":
    main()
