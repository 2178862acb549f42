#!/usr/bin/env bash
# Cross-builds engine, command and C interface for 64-bit Windows, runs the engine's tests under Wine and tries the command.
# What can't run there is listed, with the reason, in tests/windows_left_out.txt. Installs what is missing.
# "test-windows.sh build" runs nothing, and "test-windows.sh command" builds no tests.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

part=${1:-all}
case $part in
all | build) targets=() ;;
command) targets=(--target arborist_tool arborist_c) ;;
*)
    echo "usage: scripts/test-windows.sh [command|build]" >&2
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
export wine left_out
"$wine" wineboot --init >build/windows/wine.log 2>&1 # before two programs try at once

# The command over the laptop example, which it makes itself.
try_command() {
    local arborist=$PWD/build/windows/arborist-under-wine laptop=build/windows/laptop call
    printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "$wine" "$PWD/build/windows/tools/arborist/arborist.exe" >"$arborist"
    chmod +x "$arborist"
    rm -rf "$laptop"
    examples/laptop/prepare.sh "$arborist" "$laptop" >/dev/null
    "$arborist" bundle pack "$laptop" --output "$laptop.zip" >/dev/null 2>&1
    for call in "detect $laptop" "detect $laptop.zip" "explain $laptop" "sweep $laptop" "lint $laptop/rules" \
        "rules stats $laptop/rules" "log inspect $laptop/programdata/Comms/Lumbra/workDir/0/log.db"; do
        # shellcheck disable=SC2086
        if ! "$arborist" $call >"build/windows/${call%% *}.txt" 2>"build/windows/${call%% *}.err"; then
            echo "failed under Wine: arborist $call" >&2
            return 1
        fi
    done
    grep -q BATTERY_WORN build/windows/detect.txt
    echo "== The command runs over the laptop example"
}
try_command

run_program() { # PROGRAM
    local name log summary status=0
    name=$(basename "$1" .exe)
    log=build/windows/$name.log
    "$wine" "$1" --gtest_filter="-$left_out" --gtest_brief=1 >"$log" 2>&1 || status=1
    summary=$(grep -E '^\[ +(PASSED|FAILED|SKIPPED) +\]|tests? ran' "$log") || summary=$(tail -n 3 "$log")
    printf '== %s\n%s\n' "$name" "${summary//$'\r'/}" # in one piece: another program may print beside it
    return $status
}
export -f run_program
# shellcheck disable=SC2016
if ! printf '%s\n' build/windows/tests/*/*_tests.exe |
    xargs -P "${JOBS:-$(nproc)}" -I '{}' bash -c 'run_program "$1"' run '{}'; then
    echo "failed; see build/windows/*.log" >&2
    exit 1
fi
