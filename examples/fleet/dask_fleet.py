#!/usr/bin/env python3
"""Runs a list of bundles on a Dask cluster, by the Python package.

    dask_fleet.py FOLDER [--scheduler ADDRESS] [--piece N]

FOLDER has bundles.txt, rules and the bundles, on storage of all workers; the lines go to its results.jsonl. Bundles that
have a line there are passed over, so that a run which was ended goes on when it is started again. Without a scheduler the
workers are processes of this machine. Status 1: a piece of the list has no lines, as its bundles ended four workers.
"""
import argparse
import json
import os
import sys
from collections import Counter
from pathlib import Path

import arborist
from distributed import Client, LocalCluster, as_completed


def line_of(bundle, rules):
    """The line that the command would print, failure or not."""
    try:
        return arborist.detect(bundle, rules=rules).json
    except arborist.ArboristError as failure:
        return failure.json


def diagnose(folder, bundles):
    os.chdir(folder)
    return [line_of(bundle, f"{folder}/rules") for bundle in bundles]


def lines_of(path):
    """The lines of a file, which line feeds alone end: names and texts may have other separators of lines."""
    return path.read_bytes().decode("utf-8", "surrogateescape").split("\n") if path.exists() else []


def kept_lines(results):
    """The lines of an earlier run that count: whole ones, and no failures that another try may mend."""
    whole = lines_of(results)[:-1]
    return [line for line in whole if not json.loads(line)["error"]["retry"]]


def rest_of(bundles, kept):
    """The bundles that have no line yet; one that is listed twice needs two."""
    done = Counter(json.loads(line)["bundle"] for line in kept)
    rest = []
    for bundle in filter(None, bundles):
        if done[bundle] > 0:
            done[bundle] -= 1
        else:
            rest.append(bundle)
    return rest


def write_anew(results, lines):
    """Puts the lines in place of what is there at once, so that a run which is ended meanwhile loses none."""
    part = results.with_name(results.name + ".new")
    with part.open("w", encoding="utf-8", errors="surrogateescape", newline="\n") as out:
        out.writelines(line + "\n" for line in lines)
    part.replace(results)


def run(client, folder, piece):
    results = folder / "results.jsonl"
    kept = kept_lines(results)
    rest = rest_of(lines_of(folder / "bundles.txt"), kept)
    pieces = [rest[first:first + piece] for first in range(0, len(rest), piece)]
    futures = client.map(diagnose, [str(folder)] * len(pieces), pieces, pure=False)
    write_anew(results, kept)
    lost = 0
    with results.open("a", encoding="utf-8", errors="surrogateescape", newline="\n") as out:
        for future in as_completed(futures):
            if future.status == "finished":
                out.writelines(line.rstrip("\n") + "\n" for line in future.result())
                out.flush()
            else:
                lost += 1
                print(f"a piece has no lines: {future.exception()}", file=sys.stderr)
    return 1 if lost else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=Path, metavar="FOLDER")
    parser.add_argument("--scheduler", metavar="ADDRESS")
    parser.add_argument("--piece", type=int, default=25, help="bundles of one task")
    given = parser.parse_args()
    # A process runs one detection at a time, so that a worker has one thread.
    cluster = given.scheduler or LocalCluster(threads_per_worker=1, dashboard_address=None)
    with Client(cluster) as client:
        return run(client, given.folder.resolve(), given.piece)


if __name__ == "__main__":
    sys.exit(main())
