"""Reads what llvm-cov exported: how often each line ran, and each condition was true and false."""
from dataclasses import dataclass, field


@dataclass
class File:
    name: str
    lines: dict = field(default_factory=dict)    # how often each line with code ran
    branches: dict = field(default_factory=dict) # place of a condition: how often it was [true, false]


@dataclass(frozen=True)
class Gap:
    """What never ran: a condition that was never true, or never false, or lines that follow each other."""
    file: str
    function: str
    text: str
    what: str # "true", "false" or "lines"
    line: int


def lines_of(segments):
    """How often each line with code ran, as llvm-cov shows it: the most of the regions that begin in it, or around it."""
    by_line = {}
    for line, _, count, has_count, is_entry, is_gap in segments:
        by_line.setdefault(line, []).append((count, has_count, is_entry and not is_gap and has_count, is_entry))
    counts, around = {}, None
    for line in range(segments[0][0], segments[-1][0] + 1) if segments else ():
        here = by_line.get(line, [])
        begins = [count for count, _, begins, _ in here if begins]
        is_skipped = bool(here) and not here[0][1] and here[0][3]
        inside = [around] if around is not None else []
        if not is_skipped and begins + inside:
            counts[line] = max(begins + inside)
        if here:
            around = here[-1][0] if here[-1][1] else None
    return counts


def written_lines(counts, text):
    """Without functions that the compiler makes."""
    return {line: count for line, count in counts.items() if not text[line - 1].rstrip().endswith("= default;")}


def branches_of(records, text):
    """The conditions of a file. Those of a template are counted for all of its instances together."""
    found = {}
    for first, column, last, end, is_true, is_false, *_ in records:
        place = (first, column, last, end)
        counts = found.setdefault(place, [0, 0])
        counts[0] += is_true
        counts[1] += is_false
    return {place: counts for place, counts in found.items() if not _is_settled(place, text)}


# What the compiler settles, such as "while (true)", is no branch, and neither is the value of a switch, which stands for
# the values without a case.
def _is_settled(place, text):
    line = text[place[0] - 1]
    return (words_at(place, text) in ("true", "false") or "if constexpr" in line or
            line[:place[1] - 1].rstrip().endswith("switch ("))


def words_at(place, text):
    first, column, last, end = place
    if first == last:
        words = text[first - 1][column - 1:end - 1]
    else:
        words = " ".join([text[first - 1][column - 1:], *text[first:last - 1], text[last - 1][:end - 1]])
    if words == ":": # the end of a loop over a range
        words = text[first - 1]
    return " ".join(words.split())


def files_of(export, root):
    """The files below `root` by name."""
    files = {}
    for record in export["files"]:
        name = record["filename"].removeprefix(f"{root}/")
        if name == record["filename"]:
            continue
        text = (root / name).read_text().splitlines()
        files[name] = File(name, written_lines(lines_of(record["segments"]), text), branches_of(record["branches"], text))
    return files


def functions_of(export, root):
    """For each file the spans of its functions as (first line, last line, mangled name)."""
    spans = {}
    for record in export["functions"]:
        for region in record["regions"]:
            if region[5] == 0 and region[7] == 0: # code of the function's own file
                name = record["filenames"][0].removeprefix(f"{root}/")
                spans.setdefault(name, set()).add((region[0], region[2], record["name"].split(":")[-1]))
                break
    return {name: sorted(found) for name, found in spans.items()}


def gaps_of(file, text, function_at):
    gaps = []
    for place, counts in sorted(file.branches.items()):
        for what, count in zip(("true", "false"), counts):
            if count == 0:
                gaps.append(Gap(file.name, function_at(place[0]), words_at(place, text), what, place[0]))
    before = None
    for line, count in sorted(file.lines.items()):
        if count == 0 and before != line - 1:
            gaps.append(Gap(file.name, function_at(line), " ".join(text[line - 1].split()), "lines", line))
        before = line if count == 0 else before
    return gaps
