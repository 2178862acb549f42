#!/usr/bin/env bash
# Installs the package and builds the smallest host against it, as a stranger would: C++17, find_package, nothing else.
# usage: install_test.sh static|shared SOURCE_DIR BUILD_DIR WORK_DIR
set -euo pipefail
kind=$1 source=$2 build=$3 work=$4

rm -rf "$work"
mkdir -p "$work"
if [ "$kind" = shared ]; then
    build=$work/library
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
        -DARBORIST_BUILD_TESTS=OFF -DARBORIST_BUILD_TOOLS=OFF >"$work/configure.log"
    cmake --build "$build" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
fi
cmake --install "$build" --prefix "$work/prefix" >"$work/install.log"

cmake -S "$source/examples/minimal-host" -B "$work/host" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_STANDARD=17 -DCMAKE_CXX_EXTENSIONS=OFF >"$work/host-configure.log"
cmake --build "$work/host" >"$work/host-build.log" || { cat "$work/host-build.log"; exit 1; }

if [ "$kind" = shared ]; then
    # Hidden by default: what leaves the library is our own host surface (C++ runtime's weak symbols aside).
    if nm -D --defined-only -C "$work"/prefix/lib*/libarborist.so "$work"/prefix/lib/*/libarborist.so 2>/dev/null |
        grep -E ' T ' | grep -E 'tinyxml2::|Json::|FaultTreeParser::|FT::sql::'; then
        echo "these should not be exported"
        exit 1
    fi
fi
cd "$work" && host/minimal_host "$source/examples/laptop/rules" Laptop
