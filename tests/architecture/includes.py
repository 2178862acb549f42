"""Holds the #include lines of the tree against the map of the house: they point down, never up."""
import re
from pathlib import Path

# Level of each subsystem; a file includes its own subsystem and what lies lower.
LEVELS = {
    "utilities": 1,
    "model": 2,
    "loading": 3,
    "stores": 3,
    "evaluation": 4,
    "deduction": 4,
}
GROUND = {"arborist_export", "frame/log", "frame/settings", "frame/fault_tree_prop_global"}
RECORDS = {"frame/detect_info", "frame/fault_tree_result", "frame/detection_observer"}
FACADE = {"arborist", "frame/arborist", "frame/repair"}

# Foreign headers that stay behind one door inside the library.
DOORS = {
    "tinyxml2.h": "loading/",
    "sqlite3.h": "stores/sql/",
    "unzip.h": "utilities/",
    "zip.h": "utilities/",
    "minizip/unzip.h": "utilities/",
    "minizip/zip.h": "utilities/",
}

INCLUDE = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]', re.MULTILINE)


def includes_of(text):
    return INCLUDE.findall(text)


def place_of(path):
    """The level and the subsystem of a library file, named from the library's folder without its ending."""
    if path in GROUND:
        return 0, "ground"
    if path in RECORDS:
        return 2, "model"
    if path in FACADE:
        return 5, "facade"
    subsystem = path.split("/")[0]
    if subsystem not in LEVELS:
        return None, subsystem
    if path.startswith("stores/sql/"):
        return 3, "stores/sql"
    return LEVELS[subsystem], subsystem


def library_faults(name, text, public):
    """What is wrong with one library file; `name` from the library's folder, `public` the public headers."""
    faults = []
    stem = name.rsplit(".", 1)[0]
    level, subsystem = place_of(stem)
    if level is None:
        return [f"arborist/{name}: in no known subsystem"]
    for include in includes_of(text):
        if include in DOORS and not name.startswith(DOORS[include]):
            faults.append(f"arborist/{name}: {include} stays in {DOORS[include]}")
        if not include.startswith("arborist/"):
            if name in public and "/" in include:
                faults.append(f"arborist/{name}: a public header includes {include}")
            continue
        target = include[len("arborist/"):]
        if name in public and target not in public and target != "arborist_export.h":
            faults.append(f"arborist/{name}: a public header includes the private {include}")
        target_level, target_subsystem = place_of(target.rsplit(".", 1)[0])
        if target_level is None:
            faults.append(f"arborist/{name}: {include} is in no known subsystem")
        elif subsystem == "stores/sql" and target_subsystem not in ("stores/sql", "ground"):
            faults.append(f"arborist/{name}: the layer over SQLite knows the log alone, not {include}")
        elif target_subsystem != subsystem and target_level >= level \
                and not (subsystem == "stores" and target_subsystem == "stores/sql"):
            faults.append(f"arborist/{name}: {include} points up or sideways")
    return faults


def outside_faults(name, text, public):
    """What is wrong with a file of tools/ or examples/: it sees public headers alone."""
    return [f"{name}: {include} is not public" for include in includes_of(text)
            if include.startswith("arborist/") and include[len("arborist/"):] not in public]


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


def public_headers(root):
    """Names, from the library's folder, of the headers in the target's header set."""
    public = {"arborist.h"}
    for lists in (root / "arborist").rglob("CMakeLists.txt"):
        folder = lists.parent.relative_to(root / "arborist").as_posix()
        text = lists.read_text()
        for block in re.findall(r"FILE_SET HEADERS FILES([^)]*)\)", text):
            public.update(f"{folder}/{header}" if folder != "." else header
                          for header in block.split() if header.endswith(".h"))
    return public


def source_files(folder):
    return [path for ending in ("*.h", "*.cpp") for path in folder.rglob(ending)]


def faults_of(root):
    public = public_headers(root)
    faults = []
    graph = {}
    for path in source_files(root / "arborist"):
        name = path.relative_to(root / "arborist").as_posix()
        text = path.read_text()
        faults += library_faults(name, text, public)
        graph[name] = [include[len("arborist/"):] for include in includes_of(text)
                       if include.startswith("arborist/")]
    for folder in ("tools", "examples"):
        for path in source_files(root / folder):
            faults += outside_faults(path.relative_to(root).as_posix(), path.read_text(), public)
    cycle = cycle_in(graph)
    if cycle:
        faults.append("cycle: " + " -> ".join(cycle))
    return faults
