#!/usr/bin/env bash
# Runs a fleet on GNU parallel, Snakemake, cwltool and a local cluster of Dask, which are installed if they are missing, and parses
# the Kubernetes Job: "test-fleet.sh [BUNDLES]", by default 60. On two cores it takes a minute behind the build. Slurm:
# scripts/test-cluster.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-dependencies.sh parallel snakemake cwltool python3-distributed python3-yaml python3-cffi python3-dev sqlite3

cmake --preset dev
cmake --build --preset dev --target arborist_tool arborist_python
export TZ="CET-1CEST,M3.5.0,M10.5.0/3" PYTHONPATH=$PWD/build/dev/python
for engine in bundles shard kubernetes parallel snakemake cwl dask; do
    echo "== $engine"
    /usr/bin/python3 -B tests/fleet/engines_test.py build/dev/tools/arborist/arborist "$engine" "${1:-60}"
done
