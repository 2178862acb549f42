#!/usr/bin/env bash
# Runs the random tests with many cases and a seed of their own: "long-checks.sh [CASES [SEED]]", by default 100000 cases
# and the time as the seed. A failure names its seed: the same seed gives the same cases.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export ARBORIST_CASES=${1:-100000}
export ARBORIST_SEED=${2:-$(date +%s)}

echo "== $ARBORIST_CASES cases of each, seed $ARBORIST_SEED"
cmake --preset dev
cmake --build --preset dev --target evaluation_tests frame_tests stores_tests utilities_tests arborist_tool
ctest --preset dev -R '^(evaluation|stores|utilities)_tests\..*RandomTest'
python3 -B tests/reliability/plain_reading_test.py build/dev/tools/arborist/arborist

# Each bundle of these is run four times.
ARBORIST_CASES=3000 python3 -B tests/reliability/one_rule_set_test.py build/dev/tools/arborist/arborist

# Each bundle of these is packed twice, or run by four rule sets.
for test in redaction compare; do
    ARBORIST_CASES=2000 python3 -B "tests/tools/commands/${test}_random_test.py" build/dev/tools/arborist/arborist
done

# Each moment of these is a detection of its own: a thousand random ones, and every change point with the second before it.
ARBORIST_CASES=1000 ctest --preset dev -R '^frame_tests\..*LogSweepProperty'

# A batch that is killed a hundred times and goes on each time.
cmake --build --preset dev --target tools_tests
ARBORIST_KILLS=100 ctest --preset dev -R '^tools_tests\..*BatchResumeTest.*KilledAgainAndAgain'
