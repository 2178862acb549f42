#!/usr/bin/env bash
# Installs what is missing, builds the command and diagnoses two devices: a recorded laptop and this machine.
# Everything that it makes lies below build/demo; run it as often as you like.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
demo=build/demo

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config python3 sqlite3 \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev

if ! mkdir -p "$demo" 2>/dev/null || [ ! -w "$demo" ]; then
    echo "$demo can't be written (made by another user, with sudo?); remove it and try again" >&2
    exit 1
fi

# Optimised a little, so that the first answer is soon there: the level 1 compiles in three quarters of the time.
echo "== Building the command (log: $demo/build.log)"
if ! { cmake --preset release -B "$demo/release" -DARBORIST_BUILD_BENCH=OFF -DARBORIST_BUILD_TESTS=OFF \
    -DARBORIST_WARNINGS_AS_ERRORS=OFF -DARBORIST_PRECOMPILE=ON "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG" &&
    cmake --build "$demo/release" --target arborist_tool --parallel; } >"$demo/build.log" 2>&1; then
    tail -n 30 "$demo/build.log" >&2
    exit 1
fi
arborist=$demo/release/tools/arborist/arborist

echo "== Preparing the recorded laptop in $demo/laptop: event log, databases, a repair record"
examples/laptop/prepare.sh "$arborist" "$demo/laptop"

echo "== Diagnosing the recorded laptop (library log: $demo/laptop.log)"
"$arborist" detect "$demo/laptop" --code-runner examples/laptop/code-runner.sh --log-file "$demo/laptop.log"

echo "== Telling why"
"$arborist" explain "$demo/laptop" --code-runner examples/laptop/code-runner.sh --log-file "$demo/laptop.log"

echo "== Diagnosing this machine (library log: $demo/linux-host.log)"
rm -rf "$demo/linux-host"
cp -r examples/linux-host "$demo/linux-host"
"$arborist" detect --live --tree "$demo/linux-host" --log-file "$demo/linux-host.log"

echo "== Done. Try it yourself: $arborist explain --near-misses 1 $demo/laptop"
