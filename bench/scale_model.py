"""Measures what a bundle costs by size of log and rule set, fits a model to it, and tells what fleets need.

    scale_model.py ARBORIST [--write]     --write puts the tables into docs/scale.md

A cost is the processor time (user and system) that a batch of more bundles takes more than one of fewer, so that its start and
other work on the machine count little. Bundles are zips that examples/fleet/make_bundles.py makes, and the rule set is the
laptop's, several times with ids of their own. Bytes are those of read and write calls, of the bundle's file, and of the line.
"""
import argparse
import copy
import datetime
import math
import os
import platform
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs/scale.md"
RULES = 23  # of the laptop's rule set
DAY = 86400
ROUNDS = 3
LIST = 10 ** 6

# Rows of the log, copies of the rules, bundles.
SIZES = [(10, 1, 400), (1000, 1, 300), (10000, 1, 60), (100000, 1, 12), (10, 10, 100), (1000, 10, 60), (10000, 10, 24),
         (10, 50, 24), (1000, 50, 16), (10000, 50, 8)]


@dataclass
class Cost:
    """Of one bundle; `peak` is the memory of a worker."""
    rows: int
    rules: int
    seconds: float
    peak: int
    file_bytes: float
    read: float
    written: float
    line: float


@dataclass
class Run:
    seconds: float
    peak: int
    read: int
    written: int


def input_and_output():
    """Bytes of read and write calls of this process and of those children that it waited for."""
    lines = dict(line.split(": ") for line in Path("/proc/self/io").read_text().splitlines())
    return int(lines["rchar"]), int(lines["wchar"])


def memory_of(process):
    """The most memory that a process and each of its children had so far: of the largest. What wait4 tells includes Python's."""
    peak = 0
    try:
        for number in [process, *Path(f"/proc/{process}/task/{process}/children").read_text().split()]:
            status = Path(f"/proc/{number}/status").read_text()
            peak = max(peak, int(status.split("VmHWM:")[1].split()[0]) * 1024)
    except (OSError, IndexError):
        pass  # it has ended
    return peak


def wait_for(process):
    """Its peak of memory and its processor time, that of its children included."""
    peak = 0
    while True:
        ended, status, usage = os.wait4(process.pid, os.WNOHANG)
        if ended:
            process.returncode = os.waitstatus_to_exitcode(status)
            return peak, usage.ru_utime + usage.ru_stime
        peak = max(peak, memory_of(process.pid))
        time.sleep(0.01)


def run(arborist, folder, temporary, *options):
    """One batch with one worker; its lines go to the folder's file `lines`."""
    before = input_and_output()
    with (folder / "lines").open("wb") as out, open(os.devnull, "wb") as nothing:
        command = [arborist, "detect", "--batch", "list", "--rules", "rules", "--jobs", "1", "--log-level", "none", *options]
        process = subprocess.Popen(command, cwd=folder, env={**os.environ, "TMPDIR": temporary}, stdout=out, stderr=nothing)
        peak, seconds = wait_for(process)
    after = input_and_output()
    if process.returncode != 0:
        raise RuntimeError(f"{folder}: ended with {process.returncode}")
    return Run(seconds, peak, after[0] - before[0], after[1] - before[1])


def run_first(arborist, fleet, bundles, temporary):
    """A batch of the first bundles of a fleet."""
    names = (fleet / "bundles.txt").read_text().splitlines(keepends=True)
    (fleet / "list").write_text("".join(names[:bundles]))
    result = run(arborist, fleet, temporary)
    if (fleet / "lines").read_bytes().count(b"\n") != bundles:
        raise RuntimeError(f"{fleet}: not a line for each bundle")
    return result


def cost_of_a_list(arborist, fleet, temporary):
    """A shard of one bundle in a list of a million names: what it takes to read the list."""
    (fleet / "list").write_text("".join(f"devices/{number:05}.zip\n" for number in range(1, LIST + 1)))
    return run(arborist, fleet, temporary, "--shard", f"1/{LIST}")


def measure(arborist, fleet, rows, copies, bundles, temporary):
    few = bundles // 4
    more = bundles - few
    shorter = [run_first(arborist, fleet, few, temporary) for _ in range(ROUNDS)]
    longer = [run_first(arborist, fleet, bundles, temporary) for _ in range(ROUNDS)]
    names = (fleet / "list").read_text().split()
    seconds = min(entry.seconds for entry in longer) - min(entry.seconds for entry in shorter)
    return Cost(rows, RULES * copies, seconds / more, max(entry.peak for entry in longer),
                sum((fleet / name).stat().st_size for name in names) / bundles,
                (longer[0].read - shorter[0].read) / more, (longer[0].written - shorter[0].written) / more,
                (fleet / "lines").stat().st_size / bundles)


def renamed(element, number):
    """A copy whose events, trees and rules have a number behind their ids."""
    twin = copy.deepcopy(element)
    for inside in twin.iter():
        if inside.tag in ("ID", "Rule-name"):
            inside.text += f"_{number}"
        for name in ("id",) if inside.tag == "tree" else ("name",) if inside.tag.endswith("Rule") else ():
            inside.set(name, f"{inside.get(name)}_{number}")
    return twin


def multiply_rules(folder, copies):
    for file in (folder / "FaultTrees.xml", folder / "FaultTreeRules.xml"):
        document = ElementTree.parse(file)
        common = document.find("RuleCommonPart/Laptop")
        for section in list(document.iter("Laptop")):
            for element in list(section) if section is not common else ():
                section.extend(renamed(element, number) for number in range(2, copies + 1))
        document.write(file, encoding="utf-8", xml_declaration=True)


def measure_all(arborist):
    """The costs, and that of a list."""
    costs = []
    with tempfile.TemporaryDirectory(dir="/dev/shm") as scratch:
        temporary = Path(scratch) / "tmp"
        temporary.mkdir()
        for rows, copies, bundles in SIZES:
            fleet = Path(scratch) / f"{rows}-{copies}"
            subprocess.run([sys.executable, "-B", ROOT / "examples/fleet/make_bundles.py", arborist, fleet,
                            "--count", str(bundles), "--rows", str(rows), "--broken-every", "0"], check=True)
            multiply_rules(fleet / "rules", copies)
            cost = measure(arborist, fleet, rows, copies, bundles, temporary)
            print(cost, file=sys.stderr)
            costs.append(cost)
        return costs, cost_of_a_list(arborist, Path(scratch) / f"{SIZES[0][0]}-{SIZES[0][1]}", temporary)


# The model: the cost of a bundle is a sum of these terms, each with a factor of 0 or more.
TERMS = [("a bundle", lambda cost: 1.0), ("a row of the log", lambda cost: cost.rows), ("a rule", lambda cost: cost.rules)]


def solved(matrix, right):
    """The solution of a small system of linear equations, by Gauss's elimination with the largest pivot."""
    rows = [line + [value] for line, value in zip(matrix, right)]
    for column in range(len(rows)):
        best = max(range(column, len(rows)), key=lambda row: abs(rows[row][column]))
        rows[column], rows[best] = rows[best], rows[column]
        for row in range(len(rows)):
            if row != column:
                share = rows[row][column] / rows[column][column]
                rows[row] = [value - share * other for value, other in zip(rows[row], rows[column])]
    return [rows[index][-1] / rows[index][index] for index in range(len(rows))]


def fitted(costs, value):
    """The factors of TERMS for which the squares of the relative errors are least; a term that would be negative is left out."""
    used = list(range(len(TERMS)))
    while True:
        lines = [[TERMS[term][1](cost) / value(cost) for term in used] for cost in costs]
        matrix = [[sum(line[a] * line[b] for line in lines) for b in range(len(used))] for a in range(len(used))]
        factors = solved(matrix, [sum(line[a] for line in lines) for a in range(len(used))])
        if min(factors) >= 0:
            return [factors[used.index(term)] if term in used else 0.0 for term in range(len(TERMS))]
        used.remove(used[factors.index(min(factors))])


def predicted(factors, cost):
    return sum(factor * term(cost) for factor, (_, term) in zip(factors, TERMS))


def short(value):
    """A number with two digits that count, and without an exponent."""
    digits = max(0, 1 - math.floor(math.log10(value))) if value > 0 else 0
    return f"{float(f'{value:.2g}'):,.{digits}f}"


def cost_table(costs, factors):
    lines = ["| rows of the log | rules | bundles a second and core | ms of processor time | the model's ms | "
             "MB of a worker | KB of the bundle | KB read | KB written | KB of the line |", "|" + "---:|" * 10]
    for cost in costs:
        lines.append(f"| {cost.rows:,} | {cost.rules:,} | {1 / cost.seconds:.0f} | {cost.seconds * 1e3:.2f} | "
                     f"{predicted(factors, cost) * 1e3:.2f} | {cost.peak / 1e6:.1f} | {cost.file_bytes / 1e3:.1f} | "
                     f"{cost.read / 1e3:.0f} | {cost.written / 1e3:.0f} | {cost.line / 1e3:.1f} |")
    return lines


def error_of(factors, costs, value):
    return max(abs(predicted(factors, cost) / value(cost) - 1) for cost in costs)


def fleet_table(costs, seconds):
    """What fleets need with the laptop's rules, by the model's seconds and the bytes that were measured."""
    lines = ["| devices a day | rows of the log | bundles a second | cores | GB of memory | MB/s of bundles read | "
             "GB of lines a day | MB/s written to temporary files |", "|" + "---:|" * 8]
    for devices in (10 ** 6, 10 ** 9):
        for cost in (entry for entry in costs if entry.rules == RULES):
            rate = devices / DAY
            cores = rate * predicted(seconds, cost)
            cells = (cores, cores * cost.peak / 1e9, rate * cost.file_bytes / 1e6, devices * cost.line / 1e9,
                     rate * (cost.written - cost.line) / 1e6)
            lines.append(f"| {devices:,} | {cost.rows:,} | {rate:,.0f} | " + " | ".join(map(short, cells)) + " |")
    return lines


def processor():
    lines = Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.split(": ")[1] for line in lines if line.startswith("model name")), platform.machine())


def replaced(text, name, lines):
    begin, end = f"<!-- {name}: written by bench/scale_model.py -->\n", f"<!-- end of {name} -->"
    head, rest = text.split(begin)
    return head + begin + "\n".join(lines) + "\n" + end + rest.split(end)[1]


def model_lines(costs, seconds, of_list):
    parts = ", ".join(f"{factor * 1e6:,.2f} µs for {name}" for factor, (name, _) in zip(seconds, TERMS))
    return [f"Measured {datetime.date.today()} on {processor()}, Linux {platform.release()}. The model of processor time: {parts};",
            f"its largest error is {error_of(seconds, costs, lambda cost: cost.seconds) * 100:.0f} % of what was measured.",
            f"A list of {LIST:,} names costs each of its shards {of_list.seconds:.2f} s and {of_list.peak / 1e6:.0f} MB."]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("arborist", type=Path, metavar="ARBORIST")
    parser.add_argument("--write", action="store_true")
    given = parser.parse_args()
    costs, of_list = measure_all(given.arborist.resolve())
    seconds = fitted(costs, lambda cost: cost.seconds)
    tables = {"costs": model_lines(costs, seconds, of_list) + [""] + cost_table(costs, seconds), "fleets": fleet_table(costs, seconds)}
    for lines in tables.values():
        print("\n".join(lines) + "\n")
    if given.write:
        text = PAGE.read_text()
        for name, lines in tables.items():
            text = replaced(text, name, lines)
        PAGE.write_text(text)


if __name__ == "__main__":
    main()
