#!/usr/bin/env bash
# Cross-builds everything for 64-bit Windows, runs the tests of engine, diagnosis and command under Wine, the tests of the
# C interface with its programs there, and tries the command. What can't run there is listed, with the reason, in
# tests/windows_left_out.txt. Installs what is missing. "test-windows.sh build" runs nothing, and "test-windows.sh command"
# builds no tests either.
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
scripts/install-dependencies.sh wine64 python3 sqlite3

build=$PWD/build/windows
# A Windows of its own, without what the user has installed in another one.
export WINEPREFIX=$build/wine WINEDEBUG=-all WINEPATH=$build/bindings/c TZ="CET-1CEST,M3.5.0,M10.5.0/3" LC_ALL=C.UTF-8
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
left_out=$(sed -n 's/^\([^# ][^ ]*\).*/\1/p' tests/windows_left_out.txt | paste -sd:)
export wine left_out build
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT

# The folder for temporary files is that of this machine, and on the drive of the checkout: "/x" is the same file for both.
start_wine() {
    local name
    "$wine" wineboot --init # before two programs try at once
    for name in TEMP TMP; do
        "$wine" reg add 'HKCU\Environment' /v "$name" /d "Z:${temporary//\//\\}" /f
    done
}
start_wine >"$build/wine.log" 2>&1

# A script that runs a program there.
under_wine() { # PROGRAM NAME
    printf '#!/bin/sh\nexec "%s" "%s" "$@"\n' "$wine" "$1" >"$build/$2-under-wine"
    chmod +x "$build/$2-under-wine"
}
under_wine "$build/tools/arborist/arborist.exe" arborist
under_wine "$build/tests/bindings/c/c_call.exe" c_call
under_wine "$build/tests/bindings/c/c_contract.exe" c_contract

# The command over the laptop example, which it makes itself, and over results of a fleet.
try_command() {
    local arborist=$build/arborist-under-wine laptop=$build/laptop calls=$build/calls call number=0
    rm -rf "$laptop" "$calls"
    mkdir "$calls"
    examples/laptop/prepare.sh "$arborist" "$laptop" >/dev/null
    while read -r call; do
        number=$((number + 1))
        # shellcheck disable=SC2086
        if ! (cd "$build" && "$arborist" $call >"$calls/$number.txt" 2>"$calls/$number.err" </dev/null); then
            echo "failed under Wine: arborist $call; see $calls/$number.err" >&2
            return 1
        fi
    done <<END
detect laptop
bundle pack laptop --output calls/laptop.zip
detect calls/laptop.zip
explain laptop
sweep laptop
lint laptop/rules
rules stats laptop/rules
log inspect laptop/programdata/Comms/Lumbra/workDir/0/log.db
test laptop/rules --coverage
results import $PWD/examples/results/before.jsonl --to calls/results.db
results diff $PWD/examples/results/before.jsonl $PWD/examples/results/after.jsonl
results report calls/results.db -o calls/results.html
END
    grep -q BATTERY_WORN "$calls/1.txt"
    grep -q '</html>' "$calls/results.html"
    echo "== The command runs over the laptop example"
}
try_command

# The library has the functions of its header, and shows nothing else.
check_exports() {
    local dll=$build/bindings/c/libarborist-c.dll
    x86_64-w64-mingw32-objdump -p "$dll" | sed -n '/^\[Ordinal\/Name Pointer\]/,/^$/s/.* \(arborist_[a-z_]*\)$/\1/p' |
        sort | diff - tests/bindings/c/exported_symbols.txt
}

run_program() { # PROGRAM
    local name log summary status=0
    name=$(basename "$1" .exe)
    log=$build/$name.log
    if [ "$name" = c_interface ]; then
        python3 -B tests/bindings/c/c_interface_test.py "$build"/{c_call,c_contract,arborist}-under-wine none "" >"$log" 2>&1 ||
            status=1
    else
        "$wine" "$1" --gtest_filter="-$left_out" --gtest_brief=1 >"$log" 2>&1 || status=1
    fi
    summary=$(grep -E '^\[ +(PASSED|FAILED|SKIPPED) +\]|tests? ran|^Ran ' "$log") || summary=$(tail -n 3 "$log")
    printf '== %s\n%s\n' "$name" "${summary//$'\r'/}" # in one piece: another program may print beside it
    return $status
}
export -f run_program
check_exports
# shellcheck disable=SC2016
if ! printf '%s\n' c_interface build/windows/tests/*/*_tests.exe |
    xargs -P "${JOBS:-$(nproc)}" -I '{}' bash -c 'run_program "$1"' run '{}'; then
    echo "failed; see build/windows/*.log" >&2
    exit 1
fi
