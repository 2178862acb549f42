#!/usr/bin/env bash
# Builds the example that takes arborist's sources along by add_subdirectory, and compares what it prints.
# usage: subdirectory_test.sh SOURCE_DIR WORK_DIR
set -euo pipefail
source=$1 work=$2
rm -rf "$work"
mkdir -p "$work"
launcher=$(command -v ccache || true)
cmake -S "$source/examples/subdirectory-host" -B "$work/host" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_STANDARD=17 -DCMAKE_CXX_EXTENSIONS=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" \
    -DARBORIST_PRECOMPILE=OFF -DARBORIST_SOURCE="$source" >"$work/configure.log"
cmake --build "$work/host" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
(cd "$work" && host/subdirectory_host "$source/examples/laptop/rules" Laptop KEYBOARD_TEST) >"$work/out"
diff -u "$source/examples/subdirectory-host/expected.txt" "$work/out"
# Tests, the command and the bindings are left out.
if [ -e "$work/host/arborist/tools" ] || [ -e "$work/host/arborist/bindings" ] || [ -e "$work/host/arborist/tests" ]; then
    echo "more than the engine came along" >&2
    exit 1
fi
