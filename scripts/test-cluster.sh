#!/usr/bin/env bash
# Runs a fleet on a Slurm cluster of its own on this machine's loopback, kills a shard and a node on the way, and compares the
# lines with a run without a cluster: "test-cluster.sh [BUNDLES]", by default 5,000. It takes some two minutes behind the
# build. As any user; only installing Slurm and munge, where they are missing, needs root. Daemons, jobs and folders are gone
# at the end, and nothing of a Slurm of the system is used.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install-dependencies.sh slurm-wlm munge python3 sqlite3 util-linux

cmake --preset dev
cmake --build --preset dev --target arborist_tool
export TZ="CET-1CEST,M3.5.0,M10.5.0/3"
exec python3 -B tests/fleet/slurm_test.py build/dev/tools/arborist/arborist "${1:-5000}"
