"""Checks the #include lines of the tree: they point down its list of rooms, never up, and make no cycle."""
import re
from pathlib import Path


class Storey:
    """A folder of the root with its rooms, from the highest level to the lowest.

    A room includes itself, with the folders in it, and the rooms of lower levels. `files` names, without their endings,
    files that belong to another room than their folder's.
    """

    def __init__(self, folder, levels, files=None):
        self.folder = folder
        self.files = files or {}
        self.level_of = {room: len(levels) - index for index, rooms in enumerate(levels) for room in rooms}

    def owns(self, path):
        return path.startswith(self.folder + "/")

    def inside(self, path):
        return path[len(self.folder) + 1:]

    def room(self, path):
        """The room of a file, or None: the deepest whose folder contains it."""
        name = self.inside(path)
        stem = name.rsplit(".", 1)[0]
        if stem in self.files:
            return self.files[stem]
        folder = name.rpartition("/")[0]
        while folder and folder not in self.level_of:
            folder = folder.rpartition("/")[0]
        return folder if folder in self.level_of else None

    def place(self, path):
        """The place of a file in the graph of folders: the room that `files` names, otherwise its own folder."""
        stem = self.inside(path).rsplit(".", 1)[0]
        return self.files.get(stem, self.inside(path).rpartition("/")[0])


def files_in(room, names):
    return {name: room for name in names.split()}


# The highest first. A file includes its own storey and the public headers of those below.
STOREYS = [
    Storey("tools/arborist", [
        ["the command"],
        ["commands"],
        ["batch", "manual", "render"],
        ["options", "terminal"],
    ], {"main": "the command"}),
    Storey("bindings", [
        ["python"],
        ["c"],
    ]),
    Storey("diagnosis", [
        ["results_report"],
        ["report"],
        ["results", "drawing"],
        ["capture", "cases", "sweep"],
        ["analysis", "detection"],
        ["evidence"],
        ["rule_set"],
        ["redaction"],
        ["lint"],
        ["log_db", "results_db"],
        ["bundle"],
        ["archive", "sqlite", "rule_source"],
        ["scratch"],
        ["process"],
        ["digest", "text"],
        ["the ground"],
    ], files_in("the ground", "problem warning_code failure_code exit_status")),
    Storey("arborist", [
        ["deduction/plain"],  # for the tests: no part of the library
        ["the facade"],
        ["evaluation", "deduction"],
        ["loading", "stores"],
        ["stores/sql"],
        ["model", "the records"],
        ["utilities"],
        ["the ground"],
    ], {
        **files_in("the facade", "arborist frame/arborist frame/loaded_rule_set frame/log_sweep frame/repair"
                                " frame/stoppable_detection"),
        **files_in("the records", "frame/check frame/comparable frame/detect_info frame/fault_tree_result"
                                  " frame/detection_observer frame/evidence frame/evidence_alarm frame/evidence_code"
                                  " frame/evidence_command frame/evidence_node frame/evidence_rule_set"
                                  " frame/evidence_tree frame/evidence_values frame/evidence_words"
                                  " frame/rule_set_summary frame/sweep_observer frame/tree_verdict"),
        **files_in("the ground", "arborist_export arborist_version frame/lock_waits frame/log frame/log_recording"
                                 " frame/settings frame/fault_tree_prop_global"
                                 " frame/stopping frame/thread_value frame/trouble frame/trouble_watch"),
    }),
]
ENGINE = STOREYS[-1]

# Storeys of one level, which don't know each other.
BESIDE = {"tools/arborist", "bindings"}

# Where installed headers are kept that lie elsewhere than their names say.
HOMES = {"arborist/arborist_c.h": "bindings/c/include/arborist/arborist_c.h"}

# Pairs of rooms of one level that may know each other, and rooms that see less than all below them.
NEIGHBOURS = [{"model", "the records"}]
SEES_ONLY = {"arborist/stores/sql": {"the ground"}}

# What only the engine knows of a system: sources of higher storeys for that system may see it, where the engine is linked as
# an archive.
SHOWN = {"diagnosis/process/local_time_windows.cpp": {"arborist/utilities/platform.h", "arborist/utilities/posix_zone.h"}}

# Foreign headers that stay behind one door in each storey.
DOORS = {
    "tinyxml2.h": ("arborist/loading/", "diagnosis/rule_source/"),
    "sqlite3.h": ("arborist/stores/sql/", "diagnosis/sqlite/", "tools/arborist/commands/versions."),
    **{header: ("arborist/utilities/", "diagnosis/archive/")
       for header in ("unzip.h", "zip.h", "minizip/unzip.h", "minizip/zip.h")},
    **{f"sodium{header}.h": ("diagnosis/digest/",)
       for header in ("", "/crypto_auth_hmacsha256", "/crypto_hash_sha256", "/utils")},
    "CLI/CLI.hpp": ("tools/arborist/options/", "tools/arborist/commands/command_line.",
                    "tools/arborist/manual/reference."),
}

# The two ways to run SQL. A source, together with its header, takes one of them.
SQL_OBJECTS = {f"arborist/stores/sql/{name}.h" for name in (
    "simple_database_helper", "sql_field", "sql_operator", "sql_record", "sql_table", "sql_value")}
SQL_STREAMS = {f"arborist/stores/sql/{name}.h" for name in ("sql_cursor", "sql_scan")}

# Headers that the build makes.
GENERATED = {"arborist_export.h", "arborist_version.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]', re.MULTILINE)


def includes_of(text):
    return [HOMES.get(include, include) for include in INCLUDE.findall(text)]


def storey_of(path):
    return next((storey for storey in STOREYS if storey.owns(path)), None)


def is_public(include, public):
    return not ENGINE.owns(include) or ENGINE.inside(include) in public


def fault_inside(storey, path, include):
    """What is wrong with an include within one storey, or None."""
    room, target = storey.room(path), storey.room(include)
    if target is None:
        return f"{include} is in no known room"
    if storey.folder + "/" + room in SEES_ONLY and target not in SEES_ONLY[storey.folder + "/" + room] | {room}:
        return f"{include} is not for {room}"
    if room != target and {room, target} not in NEIGHBOURS and storey.level_of[target] >= storey.level_of[room]:
        return f"{include} points up or sideways"
    return None


def public_header_faults(name, include, public):
    """What is wrong with an include of a public header: others can read it who have public headers alone."""
    if ENGINE.owns(include):
        target = ENGINE.inside(include)
        return [] if target in public or target in GENERATED else [f"a public header includes the private {include}"]
    return [f"a public header includes {include}"] if "/" in include else []


def file_faults(path, text, public):
    """What is wrong with one file, named from the root; `public` are the engine's public headers."""
    storey = storey_of(path)
    faults = []
    if storey and storey.room(path) is None:
        return [f"{path}: in no known room"]
    for include in includes_of(text):
        target = storey_of(include)
        if include in DOORS and not path.startswith(DOORS[include]):
            faults.append(f"{path}: {include} stays in " + ", ".join(DOORS[include]))
        if storey is ENGINE and ENGINE.inside(path) in public:
            faults += [f"{path}: {fault}" for fault in public_header_faults(path, include, public)]
        if target is None:
            continue
        if target is storey:
            fault = fault_inside(storey, path, include)
            faults += [f"{path}: {fault}"] if fault else []
        elif storey and {storey.folder, target.folder} == BESIDE:
            faults.append(f"{path}: {include} is of a storey beside")
        elif storey and STOREYS.index(target) < STOREYS.index(storey):
            faults.append(f"{path}: {include} is of a higher storey")
        elif not is_public(include, public) and include not in SHOWN.get(path, set()):
            faults.append(f"{path}: {include} is not public")
    return faults


def sql_faults(files):
    """The sources that run SQL both by objects and by streams; `files` are texts by their path from the root."""
    included = {}
    for path, text in files.items():
        if not path.startswith("arborist/stores/sql/"):
            included.setdefault(path.rsplit(".", 1)[0], set()).update(includes_of(text))
    return [f"{stem}: objects and streams of stores/sql in one source" for stem, includes in included.items()
            if includes & SQL_OBJECTS and includes & SQL_STREAMS]


def cycle_in(graph):
    """One cycle of a graph as the list of its nodes, or None."""
    state = {}
    for start in graph:
        if start in state:
            continue
        stack = [(start, iter(graph[start]))]
        state[start] = "open"
        while stack:
            node, targets = stack[-1]
            for target in targets:
                if state.get(target) == "open":
                    path = [entry for entry, _ in stack]
                    return path[path.index(target):] + [target]
                if target in graph and target not in state:
                    state[target] = "open"
                    stack.append((target, iter(graph[target])))
                    break
            else:
                state[node] = "done"
                stack.pop()
    return None


def cycle_faults(storey, files):
    """A cycle of files and one of folders in a storey, if there are any; `files` are texts by their path from the root."""
    graph = {path: [include for include in includes_of(text) if storey.owns(include)]
             for path, text in files.items() if storey.owns(path)}
    folders = {}
    for path, targets in graph.items():
        folders.setdefault(storey.place(path), set()).update(
            storey.place(target) for target in targets if storey.place(target) != storey.place(path))
    return [f"{storey.folder}: a circle of {what}: " + " -> ".join(cycle)
            for what, cycle in (("files", cycle_in(graph)), ("folders", cycle_in(folders))) if cycle]


def public_headers(root):
    """Names, from the engine's folder, of the headers in the target's header set."""
    public = {"arborist.h"}
    for lists in (root / "arborist").rglob("CMakeLists.txt"):
        folder = lists.parent.relative_to(root / "arborist").as_posix()
        text = lists.read_text()
        for block in re.findall(r"FILE_SET HEADERS FILES([^)]*)\)", text):
            public.update(f"{folder}/{header}" if folder != "." else header
                          for header in block.split() if header.endswith(".h"))
    return public


def source_files(root):
    folders = [storey.folder for storey in STOREYS] + ["examples"]
    return {path.relative_to(root).as_posix(): path.read_text()
            for folder in folders for ending in ("*.h", "*.cpp") for path in sorted((root / folder).rglob(ending))}


def faults_of(root):
    public = public_headers(root)
    files = source_files(root)
    faults = [fault for path, text in files.items() for fault in file_faults(path, text, public)] + sql_faults(files)
    return faults + [fault for storey in STOREYS for fault in cycle_faults(storey, files)]
