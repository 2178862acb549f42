"""Compares the folders of tests, and the tables of docs/architecture.md, with the rooms that includes.py lists."""
import re

from includes import STOREYS

# Where the tests of a storey are. The room "text" of diagnosis/ has its tests in tests/diagnosis/text.
TESTS_OF = {"arborist": "tests", "diagnosis": "tests/diagnosis", "tools/arborist": "tests/tools",
            "bindings": "tests/bindings"}

# Folders of tests without a room of their name.
OTHER_TESTS = {
    "tests/architecture": "rules about the sources of all storeys",
    "tests/diagnosis": "the ground of diagnosis, which has no folder of its own",
    "tests/docs": "the pages in docs/",
    "tests/fleet": "batches on the engines of examples/fleet",
    "tests/linux_data": "rule sets and bundles outside of this repository",
    "tests/packaging": "what is installed",
    "tests/scripts": "the scripts that measure the tests",
    "tests/reliability": "calls that fail, sudden death, and inputs that are costly on purpose",
    "tests/stores": "stores that several rooms of stores use",
    "tests/support": "fixtures and builders, with tests of their own",
    "tests/support/windows": "what tests use of POSIX and Windows lacks",
    "tests/support/windows/sys": "the same, headers of a folder of the system",
    "tests/tools": "the command as a whole, the README and the examples",
}

# The tables of the page, in the order of its text: what precedes each, and the storey that it lists.
TABLES = [("The engine:", "arborist"), ("Diagnosis:", "diagnosis"), ("The command:", "tools/arborist"),
          ("The bindings:", "bindings")]


def has_sources(folder):
    return any(path.suffix in (".cpp", ".h", ".py") for path in folder.iterdir())


def has_tests(folder):
    return any(folder.rglob("*_test.*"))


def rooms_without_tests(root):
    """Rooms that are folders and have no test in the folder of the same name below the tests of their storey."""
    missing = []
    for storey in STOREYS:
        for room in storey.level_of:
            tests = f"{TESTS_OF[storey.folder]}/{room}"
            if (root / storey.folder / room).is_dir() and not has_tests(root / tests):
                missing.append(f"{storey.folder}/{room}: no test in {tests}")
    return missing


def has_room(name, root):
    """True if a folder of tests, such as "tests/tools/batch", has the name of a folder in its storey."""
    storey = max((storey for storey in STOREYS if (name + "/").startswith(TESTS_OF[storey.folder] + "/")),
                 key=lambda storey: len(TESTS_OF[storey.folder]))
    inside = name[len(TESTS_OF[storey.folder]) + 1:]
    return inside != "" and (root / storey.folder / inside).is_dir()


def tests_without_room(root):
    folders = [path for path in (root / "tests").rglob("*") if path.is_dir() and has_sources(path)]
    names = sorted(path.relative_to(root).as_posix() for path in folders)
    return [name for name in names if not has_room(name, root) and name not in OTHER_TESTS]


def levels_of(storey):
    """The rooms of each level, highest first. A group of files counts as its files, without endings and "frame/"."""
    levels = {}
    for room, level in storey.level_of.items():
        files = {name for name, group in storey.files.items() if group == room}
        levels.setdefault(level, set()).update(files or {room})
    return [{name.removeprefix("frame/") for name in levels[level]} for level in sorted(levels, reverse=True)]


def rows_of(page, heading):
    """The names in backticks of each first cell in the table below a heading."""
    lines = page[page.index(heading):].split("\n|", 1)[1].split("\n\n", 1)[0].split("\n")[2:]
    cells = [line.split("|")[1] for line in lines]
    return [{name.removeprefix("frame/") for name in re.findall(r"`([\w/]+)(?:\.h)?`", cell)} - {"frame"}
            for cell in cells]
