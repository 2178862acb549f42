"""Prints lines and branches that ran, by folder, and what never ran: "report.py EXPORT", of "llvm-cov export".

Exits with 1 if something never ran that unreached.md doesn't list, and if a folder for which that page tells shares
instead has lower ones.
"""
import json
import re
import subprocess
import sys
from collections import Counter
from pathlib import Path

from counts import files_of, functions_of, gaps_of

ROOT = Path(__file__).resolve().parents[2]
LIST = Path(__file__).parent / "unreached.md"
ROW = re.compile(r"^\| `(.+?)` \| `(.+?)` \| `(.+?)` \| (true|false|lines) \|$")
FLOOR = re.compile(r"^\| `([^`]+)/` \| ([0-9.]+) \| ([0-9.]+) \|$")


def cell(text):
    return text.replace("|", "¦").replace("`", "'")


def row_of(gap):
    return (gap.file, cell(gap.function), cell(gap.text), gap.what)


def text_of(row):
    return "| " + " | ".join(f"`{part}`" for part in row[:3]) + f" | {row[3]} |"


def listed_rows(lines):
    return Counter(row.groups() for row in map(ROW.match, lines) if row)


def listed_floors(lines):
    """The least shares of lines and branches, in percent, by folder."""
    return {row[1]: (float(row[2]), float(row[3])) for row in map(FLOOR.match, lines) if row}


def folder_with_floor(name, floors):
    return next((folder for folder in floors if name.startswith(folder + "/")), None)


def folders_below(files, floors):
    """What the script says of the folders whose shares are below those listed."""
    below = []
    for folder, least in floors.items():
        ran, lines, taken, branches = shares([file for name, file in files.items() if folder_with_floor(name, floors) == folder])
        share = (100 * ran / max(lines, 1), 100 * taken / max(branches, 1))
        if share[0] < least[0] or share[1] < least[1]:
            below.append(f"{folder}: {share[0]:.2f} % of the lines and {share[1]:.2f} % of the branches ran, less than listed")
    return below


def demangled(names):
    """The names of functions without their parameters."""
    words = subprocess.run(["llvm-cxxfilt"], input="\n".join(names), check=True, capture_output=True, text=True).stdout
    short = (re.sub(r"\(anonymous namespace\)::", "", word) for word in words.splitlines())
    return dict(zip(names, (re.sub(r"(\[abi:\w+\])|\(.*$", "", re.sub(r"<.*>", "", word)).split(" ")[-1] for word in short)))


def finder(spans, names):
    def function_at(line):
        around = [(last - first, name) for first, last, name in spans if first <= line <= last]
        around = [entry for entry in around if "$_" not in entry[1]] or around
        return (names[min(around)[1]] if around else "") or "-"
    return function_at


def find_gaps(export, files):
    spans = functions_of(export, ROOT)
    names = demangled(sorted({name for found in spans.values() for _, _, name in found}))
    gaps = []
    for name, file in sorted(files.items()):
        gaps += gaps_of(file, (ROOT / name).read_text().splitlines(), finder(spans.get(name, []), names))
    return gaps


def shares(files):
    """Lines that ran, lines, branches that ran, branches."""
    lines = [count for file in files for count in file.lines.values()]
    branches = [count for file in files for counts in file.branches.values() for count in counts]
    return sum(map(bool, lines)), len(lines), sum(map(bool, branches)), len(branches)


def print_shares(name, files):
    ran, lines, taken, branches = shares(files)
    print(f"{name:34} lines {ran:6} of {lines:6} {100 * ran / max(lines, 1):6.2f} %   "
          f"branches {taken:6} of {branches:6} {100 * taken / max(branches, 1):6.2f} %")


def print_table(files):
    for storey in ("arborist", "diagnosis", "tools"):
        inside = {name: file for name, file in files.items() if name.startswith(storey + "/")}
        for folder in sorted({str(Path(name).parent) for name in inside}):
            print_shares(folder, [file for name, file in inside.items() if str(Path(name).parent) == folder])
        print_shares(f"== {storey}", inside.values())


def main():
    export = json.loads(Path(sys.argv[1]).read_text())["data"][0]
    files = {name: file for name, file in files_of(export, ROOT).items() if "/plain/" not in name}
    print_table(files)
    lines = LIST.read_text().splitlines()
    floors = listed_floors(lines)
    found = [gap for gap in find_gaps(export, files) if folder_with_floor(gap.file, floors) is None]
    gaps, listed = Counter(map(row_of, found)), listed_rows(lines)
    line_of = {row_of(gap): gap.line for gap in found}
    unlisted = [f"never ran: {text_of(row)} (line {line_of[row]})" for row in sorted(gaps - listed)]
    below = folders_below(files, floors)
    ran = [f"listed, but ran this time: {text_of(row)}" for row in sorted(listed - gaps)]
    print(*unlisted, *below, *ran, sep="\n")
    print(f"{sum(gaps.values())} gaps, {sum((gaps & listed).values())} of them listed with a reason")
    sys.exit(1 if unlisted or below else 0)


if __name__ == "__main__":
    main()
