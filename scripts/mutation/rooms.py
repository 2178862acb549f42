"""The rooms whose mutants are tried, and the programs that test them."""
from dataclasses import dataclass


@dataclass(frozen=True)
class Room:
    name: str
    folder: str
    programs: tuple
    files: tuple = () # all of the folder that no other room has

# What judges a tree as incomplete or complete: the fold with each open check true, and the one that the engine left.
VERDICT = ("arborist/deduction/judge_tree.cpp", "arborist/deduction/possible_causes.cpp",
           "arborist/deduction/surviving_tree.cpp", "arborist/deduction/verdict_fold.cpp")

# The sweep of a log and the record of a rule set are tested through the facade.
ROOMS = (
    Room("evaluation", "arborist/evaluation", ("evaluation/evaluation_tests", "frame/frame_tests")),
    Room("deduction", "arborist/deduction", ("deduction/deduction_tests",)),
    Room("loading", "arborist/loading", ("loading/loading_tests", "frame/frame_tests")),
    Room("stores", "arborist/stores", ("stores/stores_tests",)),
    Room("verdict", "arborist/deduction", ("deduction/deduction_tests", "frame/frame_tests"), VERDICT),
)


def files_of(room, root):
    if room.files:
        return list(room.files)
    elsewhere = {name for other in ROOMS for name in other.files}
    names = (path.relative_to(root).as_posix() for path in (root / room.folder).rglob("*.cpp"))
    return sorted(name for name in names if name not in elsewhere and "/plain/" not in name)
