#!/usr/bin/env bash
# Installs what is missing, builds optimised, runs every benchmark beside its baseline and prints one table:
# name, ours, baseline, ratio, goal. The table goes into docs/performance.md too with --write,
# which also measures alarm rules on 10,000,000 rows (1 GB in the folder for temporary files).
# usage: scripts/bench.sh [--write] [NAME...]     NAME: a program, "deduction" for bench/deduction_bench.cpp
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

write=
if [ "${1:-}" = --write ]; then
    write=--write
    shift
fi

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config ccache python3 \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev \
    libgtest-dev libgmock-dev sqlite3 binutils valgrind >&2

echo "== Building (preset release)" >&2
cmake --preset release >&2
cmake --build --preset release --parallel --target bench >&2

exec python3 -B bench/run_all.py $write --build build/release "$@"
