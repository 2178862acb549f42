"""Runs the benchmark programs and prints what they measured as one table.

Each program prints lines "name, ours, baseline, ratio, goal"; lines that begin with "#" are notes.
"""
import argparse
import datetime
import platform
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs/performance.md"
BEGIN, END = "<!-- bench table: written by scripts/bench.sh --write -->", "<!-- end of bench table -->"
HEAD = ("name", "ours", "baseline", "ratio", "goal")


def commands(build, names, isWhole):
    found = {path.stem.removesuffix("_bench"): [path] for path in sorted((build / "bench").glob("*_bench"))}
    if isWhole:
        found["alarm"].append("largest")
    if "results" in found:
        found["results"].append(ROOT / "examples/results/before.jsonl")
    found["observer"] = [sys.executable, "-B", ROOT / "bench/observer_bench.py", build]
    found["batch"] = [sys.executable, "-B", ROOT / "bench/batch_bench.py", build]
    found["compare"] = [sys.executable, "-B", ROOT / "bench/compare_bench.py", build]
    found["process"] = [sys.executable, "-B", ROOT / "bench/process_bench.py", build]
    return {name: command for name, command in found.items() if not names or name in names}


def rows_of(output):
    for line in output.splitlines():
        cells = [cell.strip() for cell in line.rsplit(",", len(HEAD) - 1)]
        if line.startswith("#") or tuple(cells) == HEAD:
            print(line, file=sys.stderr)
        elif len(cells) == len(HEAD):
            yield cells
        elif line.strip():
            raise ValueError(f"no row of the table: {line}")


def aligned(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(HEAD))]
    return ["  ".join(cell.ljust(width) if column == 0 else cell.rjust(width)
                      for column, (cell, width) in enumerate(zip(row, widths))) for row in rows]


def machine():
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    cores = subprocess.run(["nproc"], capture_output=True, text=True, check=True).stdout.strip()
    return f"{cpu.group(1) if cpu else platform.machine()}, {cores} cores, {platform.system()} {platform.release()}"


def write_page(rows):
    table = ["| " + " | ".join(HEAD) + " |", "|---|" + "---:|" * (len(HEAD) - 1)]
    table += ["| " + " | ".join(row) + " |" for row in rows]
    text = PAGE.read_text()
    head, rest = text.split(BEGIN)
    tail = rest.split(END)[1]
    today = datetime.date.today().isoformat()
    PAGE.write_text(f"{head}{BEGIN}\nMeasured {today} on {machine()}.\n\n" + "\n".join(table) + f"\n{END}{tail}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--write", action="store_true")
    parser.add_argument("names", nargs="*")
    arguments = parser.parse_args()
    rows = []
    for name, command in commands(arguments.build, arguments.names, arguments.write).items():
        print(f"== {name}", file=sys.stderr)
        run = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True)
        rows += rows_of(run.stdout)
    print("\n".join(aligned([list(HEAD)] + rows)))
    if arguments.write:
        write_page(rows)


if __name__ == "__main__":
    main()
