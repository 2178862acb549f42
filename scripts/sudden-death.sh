#!/usr/bin/env bash
# Kills processes in the midst of detections, copies, unpacks and records of repairs: "sudden-death.sh [TIMES]", by default
# 1000 times each.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export ARBORIST_DEATHS=${1:-1000}

echo "== $ARBORIST_DEATHS deaths of each"
cmake --preset dev
cmake --build --preset dev --target sudden_death_tests
build/dev/tests/reliability/sudden_death_tests
