"""Adds the mutants that the compiler refused to FOLDER/refused.txt: "refused.py FOLDER LOG", with the log of the build.

An error names a line and column of a mutated file: the mutant is the one whose switch was the last before it. Exits with
1 if the log has errors of which none belongs to a mutant.
"""
import re
import sys
from pathlib import Path

ERROR = re.compile(r"^(?P<path>/[^:\n]+):(?P<line>\d+):(?P<column>\d+): error:", re.MULTILINE)


def number_at(text, line, column):
    """The number of the last switch before a place of a mutated file, or None."""
    before = text.split("\n")[line - 1].encode()[:column + len("::mutant::Is(")].decode(errors="replace")
    numbers = re.findall(r"::mutant::Is\((\d+)\)", before + text.split("\n")[line - 1][len(before):][:8])
    return int(numbers[-1]) if numbers else None


def refused_in(log):
    numbers = set()
    for error in ERROR.finditer(log):
        number = number_at(Path(error["path"]).read_text(), int(error["line"]), int(error["column"]))
        if number is not None:
            numbers.add(number)
    return numbers


def main():
    folder, log = Path(sys.argv[1]), Path(sys.argv[2]).read_text()
    refused = refused_in(log)
    listed = folder / "refused.txt"
    known = {int(line) for line in listed.read_text().split()} if listed.exists() else set()
    listed.write_text("".join(f"{number}\n" for number in sorted(known | refused)))
    print(f"{len(refused - known)} more mutants refused by the compiler")
    sys.exit(0 if refused - known else 1)


if __name__ == "__main__":
    main()
