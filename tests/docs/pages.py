"""Reads the pages under docs/: their links, their fenced blocks, their tables."""
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DOCS = ROOT / "docs"

FENCE = re.compile(r"^(`{3,})([^\n`]*)\n(.*?)^\1 *$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ +(.*?) *$", re.MULTILINE)


def pages():
    """Every page that links are followed in."""
    return sorted(DOCS.rglob("*.md")) + [ROOT / name for name in ("README.md", "CHANGELOG.md", "CONTRIBUTING.md")]


def blocks(text):
    """The fenced blocks of a page as (info word, content, line of the opening fence)."""
    return [(match[2].strip(), match[3], text.count("\n", 0, match.start()) + 1) for match in FENCE.finditer(text)]


def prose(text):
    """The page without its fenced blocks."""
    return FENCE.sub("", text)


def without_code(text):
    return re.sub(r"`[^`\n]*`", "", prose(text))


def anchor_of(heading):
    """The anchor that a heading gets on the usual hosts."""
    heading = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading.replace("`", "")).lower()
    return re.sub(r"[^\w\- ]", "", heading).replace(" ", "-")


def anchors_of(text):
    """All anchors of a page; a heading that stands twice gets a number."""
    anchors = set()
    for heading in HEADING.findall(prose(text)):
        anchor, number = anchor_of(heading), 0
        while (numbered := anchor if number == 0 else f"{anchor}-{number}") in anchors:
            number += 1
        anchors.add(numbered)
    return anchors


def tests_of(folder):
    """The names of all tests below a folder: "Suite.Name" of C++, and those that CMake files add."""
    names = set()
    for source in folder.rglob("*.cpp"):
        names.update(f"{suite}.{name}" for suite, name in
                     re.findall(r"^TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\)", source.read_text(), re.MULTILINE))
    for listing in folder.rglob("CMakeLists.txt"):
        names.update(re.findall(r"add_test\(NAME ([\w.]+)", listing.read_text()))
    return names


def targets_of(path):
    """The files that a page links to, itself left out."""
    links = (link.partition("#")[0] for link in LINK.findall(without_code(path.read_text())))
    return {(path.parent / link).resolve() for link in links if link and not re.match(r"[a-z]+:", link)} - {path}


def broken_links(path):
    """The relative links of a page that lead nowhere."""
    broken = []
    for link in LINK.findall(without_code(path.read_text())):
        if re.match(r"[a-z]+:", link):
            continue
        name, _, anchor = link.partition("#")
        target = path.parent / name if name else path
        if not target.exists():
            broken.append(f"{path.name}: {link}: no such file")
        elif anchor and anchor not in anchors_of(target.read_text()):
            broken.append(f"{path.name}: {link}: no such heading")
    return broken


def table_rows(text):
    """The cells of each table row of a page, headings and rulers left out. A pipe in a code span stays in its cell."""
    rows = []
    for line in prose(text).splitlines():
        if line.startswith("|") and not re.fullmatch(r"[|\-: ]+", line):
            cells = re.split(r"\|(?=(?:[^`]*`[^`]*`)*[^`]*$)", line.strip().strip("|"))
            rows.append([cell.strip() for cell in cells])
    return rows
