#!/usr/bin/env bash
# Makes many detections in one process and fails if its memory or its open files grow: "load.sh [DETECTIONS]", by default
# 10,000.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export ARBORIST_DETECTIONS=${1:-10000}

echo "== $ARBORIST_DETECTIONS detections"
cmake --preset dev
cmake --build --preset dev --target long_run_tests
build/dev/tests/reliability/long_run_tests
