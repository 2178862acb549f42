#!/usr/bin/env bash
# Detects over a tree of a million events, a rule file of 100 MB, an event log of ten million rows, a range of as many event
# numbers and 10,000 external databases: "large-inputs.sh [SHARE]", by default 1, all of it. Prints seconds and memory of each.
# Takes some two gigabytes where temporary files are, or in the folder ARBORIST_LARGE_FOLDER.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cmake --preset dev
cmake --build --preset dev --target arborist_tool
python3 -B tests/reliability/large_inputs_test.py build/dev/tools/arborist/arborist "${1:-1}"
