#!/usr/bin/env bash
# Measures which lines and branches of library, diagnosis and command the tests run: "coverage.sh [PROGRAM...]" builds the
# preset "coverage", runs its test programs, or those that are named ("stores_tests"), and prints the figures by folder.
# Fails where a line or branch that never ran is not listed with its reason in scripts/coverage/unreached.md, and where a
# folder for which that page has shares instead falls below them. Named programs add to what earlier runs counted, as far
# as nothing that they consist of was built again.
#
# Clang's own coverage counts the conditions of the source, and neither exceptions nor what the compiler adds. Its counters
# lie in the profile's file from the start: workers, signal handlers and processes that are killed have counted, too.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$PWD/build/coverage

if [ $# -eq 0 ]; then
    scripts/install-dependencies.sh clang llvm libclang-rt-14-dev
    rm -rf "$build/profiles"
fi
cmake --preset coverage >/dev/null
cmake --build --preset coverage --parallel

export LLVM_PROFILE_FILE=$build/profiles/%m%c.profraw TZ="CET-1CEST,M3.5.0,M10.5.0/3"
mapfile -t programs < <(find "$build/tests" -type f -executable -name '*_tests' | sort)
failed=()
for program in "${programs[@]}"; do
    name=$(basename "$program")
    if [ $# -ne 0 ] && [[ " $* " != *" $name "* ]]; then
        continue
    fi
    start=$SECONDS
    "$program" >"$build/$name.log" 2>&1 || failed+=("$name")
    echo "== $name: $((SECONDS - start)) seconds"
done

if [ $# -eq 0 ]; then
    ctest --preset coverage -R '^fuzz\.' >"$build/replays.log" || failed+=(replays)
fi

llvm-profdata merge -sparse -o "$build/tests.profdata" "$build"/profiles/*.profraw
objects=()
for program in "${programs[@]}"; do
    objects+=(-object "$program")
done
llvm-cov export "$build/tools/arborist/arborist" "${objects[@]}" -instr-profile="$build/tests.profdata" \
    "$PWD/arborist" "$PWD/diagnosis" "$PWD/tools" >"$build/coverage.json"
if [ ${#failed[@]} -ne 0 ]; then
    echo "Failed: ${failed[*]}; see build/coverage/*.log" >&2
fi
python3 -B scripts/coverage/report.py "$build/coverage.json"
[ ${#failed[@]} -eq 0 ]
