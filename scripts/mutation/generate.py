"""Writes the sources of the mutation check: "generate.py ROOT FOLDER", where FOLDER has or gets

    source/        a copy of the repository's files in which the rooms' files have all mutants compiled in
    build/         what CMake makes of it (see mutation.sh); its compile_commands.json is read here
    mutants.json   the mutants by number: room, file, function, kind, what it was and what it is
    refused.txt    numbers of mutants that the compiler refused (see refused.py), which are left out
"""
import hashlib
import json
import shlex
import subprocess
import sys
from dataclasses import asdict
from multiprocessing import Pool
from pathlib import Path

from rooms import ROOMS, files_of

MUTANTS_PER_FILE = 8192


def write_if_changed(path, content):
    if not path.exists() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def copy_tree(root, folder, mutated):
    """Copies all files that git knows or could know, but those with mutants."""
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            check=True, capture_output=True, text=True).stdout
    for name in filter(None, listed.split("\0")):
        if name not in mutated and (root / name).is_file():
            write_if_changed(folder / "source" / name, (root / name).read_bytes())
            (folder / "source" / name).chmod((root / name).stat().st_mode)


def arguments_of_files(folder):
    """What the compiler is told for each file of the copy: languages, folders and definitions."""
    commands = json.loads((folder / "build/compile_commands.json").read_text())
    arguments = {}
    for command in commands:
        words = shlex.split(command["command"])
        kept = [word for index, word in enumerate(words)
                if word.startswith(("-I", "-D", "-std=")) or word == "-isystem" or words[index - 1] == "-isystem"]
        arguments[command["file"]] = [word for word in kept if not word.endswith("cmake_pch.hxx")]
    return arguments


def find_mutants(root, folder, name, arguments):
    """The mutants of a file as dictionaries; what was found is kept until the file or this script changes."""
    from clang.cindex import Index
    from mutants import mutants_of

    source = (root / name).read_bytes()
    code = (Path(__file__).parent / "mutants.py").read_bytes()
    digest = hashlib.sha256(source + code).hexdigest()
    kept = folder / "found" / (name.replace("/", "_") + ".json")
    if kept.exists() and (found := json.loads(kept.read_text()))["digest"] == digest:
        return found["mutants"]
    path = str(folder / "source" / name)
    unit = Index.create().parse(path, args=arguments, unsaved_files=[(path, source.decode())])
    errors = [str(note) for note in unit.diagnostics if note.severity >= 3]
    if errors:
        raise RuntimeError("\n".join(errors))
    mutants = [asdict(mutant) for mutant in mutants_of(unit, path, source)]
    kept.parent.mkdir(parents=True, exist_ok=True)
    kept.write_text(json.dumps({"digest": digest, "mutants": mutants}))
    return mutants


def write_mutated(root, folder, name, numbered):
    from mutants import Mutant
    from schemata import with_switches

    pairs = [(number, Mutant(**mutant)) for number, mutant in numbered]
    write_if_changed(folder / "source" / name, with_switches((root / name).read_bytes(), pairs))


def drop_overlapping(mutants):
    """`mutants` without those that begin inside of an earlier one and end behind it."""
    kept, open_ends = [], []
    for mutant in sorted(mutants, key=lambda mutant: (mutant["start"], -mutant["end"])):
        while open_ends and open_ends[-1] <= mutant["start"]:
            open_ends.pop()
        if not open_ends or mutant["end"] <= open_ends[-1]:
            kept.append(mutant)
            open_ends.append(mutant["end"])
    return kept


def main():
    root, folder = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    room_of = {name: room.name for room in ROOMS for name in files_of(room, root)}
    names = sorted(room_of)
    if sys.argv[3:] == ["copy"]:
        copy_tree(root, folder, room_of)
        for name in names:
            if not (folder / "source" / name).exists():
                write_if_changed(folder / "source" / name, (root / name).read_bytes())
        return
    refused_list = folder / "refused.txt"
    refused = {int(line) for line in refused_list.read_text().split()} if refused_list.exists() else set()
    header = (Path(__file__).parent / "mutant.h").read_bytes()
    write_if_changed(folder / "source/mutant.h", header)
    arguments = arguments_of_files(folder)
    with Pool(2) as pool:
        found = pool.starmap(find_mutants, [(root, folder, name, arguments[str(folder / "source" / name)]) for name in names])
    listed = {}
    for index, (name, mutants) in enumerate(zip(names, found)):
        first = index * MUTANTS_PER_FILE
        numbered = [(first + offset, mutant) for offset, mutant in enumerate(drop_overlapping(mutants))]
        numbered = [(number, mutant) for number, mutant in numbered if number not in refused]
        write_mutated(root, folder, name, numbered)
        listed.update({number: {"room": room_of[name], "file": name, **mutant} for number, mutant in numbered})
    (folder / "mutants.json").write_text(json.dumps(listed, indent=1))
    print(f"{len(listed)} mutants in {len(names)} files, {len(refused)} refused by the compiler")


if __name__ == "__main__":
    main()
