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


def kept_lines(results):
    """The lines of an earlier run that count: whole ones, and no failures that another try may mend."""
    lines = results.read_text().splitlines(keepends=True) if results.exists() else []
    whole = [line for line in lines if line.endswith("\n")]
    return [line for line in whole if not json.loads(line).get("error", {}).get("retry")]


def run(client, folder, piece):
    results = folder / "results.jsonl"
    kept = kept_lines(results)
    done = {json.loads(line)["bundle"] for line in kept}
    rest = [bundle for bundle in (folder / "bundles.txt").read_text().splitlines() if bundle not in done]
    pieces = [rest[first:first + piece] for first in range(0, len(rest), piece)]
    futures = client.map(diagnose, [str(folder)] * len(pieces), pieces, pure=False)
    lost = 0
    with results.open("w") as out:
        out.writelines(kept)
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
