"""Reads the list of mutants that no test can catch, and names mutants so that the names outlive changes elsewhere."""
import re
from collections import Counter
from pathlib import Path

LIST = Path(__file__).parent / "survivors.md"
ROW = re.compile(r"^\| `(?P<file>[^`]+)` \| `(?P<function>[^`]+)` \| `(?P<original>.+?)` \| `(?P<replacement>.*?)` \| (?P<reason>.+) \|$")


def one_line(text):
    return re.sub(r"\s+", " ", text).replace("|", "¦").replace("`", "'").strip()


def name_of(mutant):
    """File, function, what it was and what it is; twins in one function share the name."""
    return (mutant["file"], mutant["function"], one_line(mutant["original"]), one_line(mutant["replacement"]) or "nothing")


def number_twins(mutants):
    """Counts mutants of the same name, so that each has a key of its own."""
    seen = Counter()
    for number in sorted(mutants, key=int):
        mutants[number]["twin"] = seen[name_of(mutants[number])]
        seen[name_of(mutants[number])] += 1


def key_of(mutant):
    return " | ".join(name_of(mutant)) + f" | {mutant['twin']}"


def row_of(mutant, reason):
    file, function, original, replacement = name_of(mutant)
    return f"| `{file}` | `{function}` | `{original}` | `{replacement}` | {reason} |"


def reasons(lines):
    """The reasons by name, as the rows of survivors.md have them."""
    found = {}
    for line in lines:
        row = ROW.match(line)
        if row and row["file"] != "file":
            found[(row["file"], row["function"], row["original"], row["replacement"])] = row["reason"]
    return found


def listed_reasons():
    return reasons(LIST.read_text().splitlines())
