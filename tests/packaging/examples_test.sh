#!/usr/bin/env bash
# Builds example hosts against an installed package, by find_package and by pkg-config, with $CC and $CXX as C11 and C++17,
# runs them on the laptop and compares what they print.
# usage: examples_test.sh SOURCE_DIR PREFIX LAPTOP WORK_DIR COMMAND|- HOST...
#     LAPTOP is a prepared examples/laptop, which is copied for each run; COMMAND, the command that the C host is compared
#     with, may be missing without that host; HOST is cpp, repair or c. STATIC=--static links the static library.
set -euo pipefail
source=$1 prefix=$2 laptop=$3 work=$4 command=$5
shift 5
export TZ="CET-1CEST,M3.5.0,M10.5.0/3" CC=${CC:-cc} CXX=${CXX:-c++}
rm -rf "$work"
mkdir -p "$work"
work=$(cd "$work" && pwd)
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name arborist.pc)")
export PKG_CONFIG_PATH

fresh_laptop() { # hosts write into it
    rm -rf "$work/laptop"
    cp -r "$laptop" "$work/laptop"
}
compare() { # WHAT EXPECTED ACTUAL
    diff -u "$2" "$3" || { echo "$1 printed something else" >&2; exit 1; }
    echo "$1: as expected"
}
# The time that a detection took is its own.
without_seconds() { sed -E 's/"seconds": [0-9.]+/"seconds": 0/'; }
run() { # PROGRAM HOST: into $work/out
    fresh_laptop
    case $2 in
    cpp) (cd "$work/laptop" && "$1" '{"test": "keyboard"}') >"$work/out" ;;
    repair) (cd "$work/laptop" && "$1" REPAIR_BATTERY) >"$work/out" ;;
    c) (cd "$work" && "$1" laptop) | without_seconds >"$work/out" ;;
    esac
}
expected() { # HOST: the file with what it must print
    if [ "$1" != c ]; then
        echo "$source/examples/$1-host/expected.txt"
        return
    fi
    # What the command says when a program answers as the host does.
    printf '#!/bin/sh\ngrep -q keyboard\n' >"$work/answers.sh"
    chmod +x "$work/answers.sh"
    fresh_laptop
    (cd "$work" && "$command" detect --json --code-runner "$work/answers.sh" laptop) |
        without_seconds >"$work/expected"
    echo "2 questions" >>"$work/expected"
    echo "$work/expected"
}

for host in "$@"; do
    cmake -S "$source/examples/$host-host" -B "$work/$host" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_STANDARD=17 -DCMAKE_CXX_EXTENSIONS=OFF >"$work/$host.log" &&
        cmake --build "$work/$host" >>"$work/$host.log" || { cat "$work/$host.log"; exit 1; }
    run "$work/$host/${host}_host" "$host"
    compare "$host host by find_package" "$(expected "$host")" "$work/out"

    package=arborist compiler="$CXX -std=c++17" main=main.cpp
    if [ "$host" = c ]; then
        package=arborist-c compiler="$CC -std=c11 -Wall -Wextra -Wpedantic" main=main.c
    fi
    # shellcheck disable=SC2046,SC2086 # one word for each flag
    $compiler "$source/examples/$host-host/$main" -o "$work/by_pkg_config" \
        $(pkg-config ${STATIC:-} --cflags --libs "$package") -Wl,-rpath,"$(pkg-config --variable=libdir "$package")"
    run "$work/by_pkg_config" "$host"
    compare "$host host by pkg-config" "$(expected "$host")" "$work/out"
done
