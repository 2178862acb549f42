#!/usr/bin/env bash
# Cross-builds the engine for 64-bit Windows and runs its tests under Wine. What can't run there is listed, with the reason,
# in tests/windows_left_out.txt. Installs what is missing. "test-windows.sh build" runs no tests, and
# "test-windows.sh engine" builds none: only the library.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

part=${1:-all}
case $part in
all | build) targets=() ;;
engine) targets=(--target arborist) ;;
*)
    echo "usage: scripts/test-windows.sh [engine|build]" >&2
    exit 2
    ;;
esac

scripts/windows-dependencies.sh

echo "== Building (preset windows)"
cmake --preset windows >/dev/null
cmake --build --preset windows --parallel "${JOBS:-$(nproc)}" "${targets[@]}"

if [ "$part" != all ]; then
    exit 0
fi
scripts/install-dependencies.sh wine64

# A Windows of its own, without what the user has installed in another one.
WINEPREFIX=$PWD/build/windows/wine
export WINEPREFIX WINEDEBUG=-all TZ="CET-1CEST,M3.5.0,M10.5.0/3"
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)

left_out=$(sed -n 's/^\([^# ][^ ]*\).*/\1/p' tests/windows_left_out.txt | paste -sd:)
failed=()
for program in build/windows/tests/*/*_tests.exe; do
    name=$(basename "$program" .exe)
    log=build/windows/$name.log
    echo "== $name"
    "$wine" "$program" --gtest_filter="-$left_out" --gtest_brief=1 >"$log" 2>&1 || failed+=("$name")
    grep -E '^\[ +(PASSED|FAILED|SKIPPED) +\]|tests? ran' "$log" | tr -d '\r' || tail -n 3 "$log"
done
if [ ${#failed[@]} -ne 0 ]; then
    echo "failed: ${failed[*]}; see build/windows/*.log" >&2
    exit 1
fi
