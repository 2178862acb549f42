"""Tries mutants: "run.py FOLDER COUNT SEED [ROOM...]", on what generate.py wrote to FOLDER and mutation.sh built there.
With rooms only their share of COUNT.

What was tried is kept in FOLDER/state.json: a second run goes on where the first stopped, and tries those again that no
test caught. Each test runs once without a mutant, to see which mutants it comes past; a mutant is tried with these tests
only. Exits with 1 if a mutant survived that survivors.md doesn't list.
"""
import json
import sys
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from choice import chosen
from programs import reach_of, tests_of, verdict_on
from rooms import ROOMS
from survivors import key_of, listed_reasons, name_of, number_twins, row_of

JOBS = 2
FAST = 0.5 # seconds of a test
CAUGHT = ("failed", "crashed", "time")


def read(path, default):
    return json.loads(path.read_text()) if path.exists() else default


def write(path, content):
    new = path.with_suffix(".new")
    new.write_text(json.dumps(content, indent=1))
    new.replace(path)


def path_of(folder, program):
    return folder / "build/tests" / program


def find_reach(folder, program, pool):
    """For each test of a program what it reaches; kept until the program is built again."""
    kept = folder / "reach" / (program.replace("/", "_") + ".json")
    path = path_of(folder, program)
    if kept.exists() and kept.stat().st_mtime > path.stat().st_mtime:
        return json.loads(kept.read_text())
    names = tests_of(path)
    reach = {}
    for test, (numbers, seconds, passed) in zip(names, pool.map(lambda test: reach_of(path, test), names)):
        if passed:
            reach[test] = {"mutants": numbers, "seconds": seconds}
        else:
            print(f"{test} fails without a mutant and is left out", flush=True)
    kept.parent.mkdir(exist_ok=True)
    write(kept, reach)
    return reach


def try_mutant(folder, number, programs, reach):
    """How the tests of the mutant's room take it; "unreached" if none comes past it. Fast tests are asked first."""
    verdict = "unreached"
    for program in programs:
        seconds_of = reach[program]["seconds"]
        tests = reach[program]["of_mutant"].get(number, [])
        for batch in ([test for test in tests if seconds_of[test] <= FAST], [test for test in tests if seconds_of[test] > FAST]):
            if batch:
                verdict = verdict_on(number, path_of(folder, program), batch, sum(map(seconds_of.get, batch)))
            if verdict in CAUGHT:
                return verdict
    return verdict


def by_mutant(reach):
    """The tests that come past each mutant, the fastest first, and the seconds of each test."""
    of_mutant = {}
    for test in sorted(reach, key=lambda test: reach[test]["seconds"]):
        for number in reach[test]["mutants"]:
            of_mutant.setdefault(str(number), []).append(test)
    return {"of_mutant": of_mutant, "seconds": {test: found["seconds"] for test, found in reach.items()}}


def report(rooms, mutants, picked, state):
    reasons = listed_reasons()
    unlisted = 0
    for room in rooms:
        numbers = [number for number in picked if mutants[number]["room"] == room.name]
        verdicts = Counter(state[key_of(mutants[number])] for number in numbers)
        survivors = [number for number in numbers if state[key_of(mutants[number])] not in CAUGHT]
        equivalent = [number for number in survivors if name_of(mutants[number]) in reasons]
        caught = len(numbers) - len(survivors)
        print(f"{room.name}: {caught} of {len(numbers)} caught, {len(equivalent)} listed with a reason, "
              f"{len(survivors) - len(equivalent)} more survived; {dict(verdicts)}")
        for number in survivors:
            if number not in equivalent:
                print(f"  {number} {state[key_of(mutants[number])]}: {row_of(mutants[number], '')}")
                unlisted += 1
    total = sum(state[key_of(mutants[number])] in CAUGHT for number in picked)
    print(f"{total} of {len(picked)} mutants caught, {100 * total / len(picked):.1f} %; {unlisted} survivors without a reason")
    return unlisted


def main():
    folder, count, seed = Path(sys.argv[1]).resolve(), int(sys.argv[2]), sys.argv[3]
    tried_rooms = [room for room in ROOMS if room.name in sys.argv[4:] or len(sys.argv) == 4]
    mutants = json.loads((folder / "mutants.json").read_text())
    number_twins(mutants)
    state = read(folder / "state.json", {})
    programs = {room.name: room.programs for room in tried_rooms}
    picked = [number for number in chosen(mutants, count, seed) if mutants[number]["room"] in programs]
    with ThreadPoolExecutor(JOBS) as pool:
        reach = {program: by_mutant(find_reach(folder, program, pool))
                 for program in sorted({program for room in tried_rooms for program in room.programs})}
        open_ones = [number for number in picked if state.get(key_of(mutants[number])) not in CAUGHT]
        tried = pool.map(lambda number: try_mutant(folder, number, programs[mutants[number]["room"]], reach), open_ones)
        for number, verdict in zip(open_ones, tried):
            state[key_of(mutants[number])] = verdict
            write(folder / "state.json", state)
    sys.exit(1 if report(tried_rooms, mutants, picked, state) else 0)


if __name__ == "__main__":
    main()
