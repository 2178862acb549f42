#!/usr/bin/env bash
# Lets each single allocation, SQLite call and file system call of a small detection fail in turn, of which the ordinary
# tests try a sample: "failing-calls.sh [PRESET]". With the preset "asan" allocations and SQLite calls only, with leaks.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:-dev}
programs="failing_allocation_tests failing_sqlite_tests"
[ "$preset" = dev ] && programs="$programs failing_file_tests"
export ARBORIST_EVERY_CALL=1

cmake --preset "$preset"
# shellcheck disable=SC2086 # each word is a target
cmake --build --preset "$preset" --target $programs
for program in $programs; do
    "build/$preset/tests/reliability/$program"
done
