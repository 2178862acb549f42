#!/usr/bin/env bash
# Installs the package and builds the smallest host against it, as a stranger would: C++17, find_package, nothing else.
# Then the other examples, if there is a command to prepare a bundle with.
# usage: install_test.sh static|shared SOURCE_DIR BUILD_DIR WORK_DIR [COMMAND]
set -euo pipefail
kind=$1 source=$2 build=$3 work=$4 command=${5:-}

rm -rf "$work"
mkdir -p "$work"
if [ "$kind" = shared ]; then
    build=$work/library
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
        -DARBORIST_BUILD_TESTS=OFF -DARBORIST_BUILD_TOOLS=OFF >"$work/configure.log"
    cmake --build "$build" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
fi
cmake --install "$build" --prefix "$work/prefix" >"$work/install.log"

if [ -n "$command" ]; then
    # The command's pages and completions lie where man and the shells look for them.
    for file in bin/arborist share/man/man1/arborist.1 share/man/man1/arborist-detect.1 \
        share/bash-completion/completions/arborist share/zsh/site-functions/_arborist \
        share/fish/vendor_completions.d/arborist.fish; do
        [ "$kind" = shared ] || [ -s "$work/prefix/$file" ] || { echo "not installed: $file"; exit 1; }
    done
fi

cmake -S "$source/examples/minimal-host" -B "$work/host" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_STANDARD=17 -DCMAKE_CXX_EXTENSIONS=OFF >"$work/host-configure.log"
cmake --build "$work/host" >"$work/host-build.log" || { cat "$work/host-build.log"; exit 1; }

if [ "$kind" = shared ]; then
    # What leaves the library is what a host may call, and nothing else. A change of this list is a change of the interface.
    nm -D --defined-only -C "$(find "$work/prefix" -name libarborist.so)" | cut -c20- | sed 's/@@ARBORIST_0$//' |
        LC_ALL=C sort -u >"$work/exported_symbols.txt"
    diff -u "$source/tests/packaging/exported_symbols.txt" "$work/exported_symbols.txt"
fi

# The same program by pkg-config, as a host without CMake builds it.
PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name arborist.pc)")
export PKG_CONFIG_PATH
static=
if [ "$kind" = static ]; then
    static=--static
fi
# shellcheck disable=SC2046 # one word for each flag
"${CXX:-c++}" -std=c++17 "$source/examples/minimal-host/main.cpp" -o "$work/by_pkg_config" \
    $(pkg-config $static --cflags --libs arborist) -Wl,-rpath,"$(pkg-config --variable=libdir arborist)"
"$work/by_pkg_config" "$source/examples/laptop/rules" Laptop >"$work/by_pkg_config.txt"

cd "$work"
host/minimal_host "$source/examples/laptop/rules" Laptop | tee by_cmake.txt
diff by_cmake.txt by_pkg_config.txt

if [ -n "$command" ]; then
    "$source/examples/laptop/prepare.sh" "$command" "$work/laptop" >/dev/null
    hosts=(cpp repair)
    if [ "$kind" = static ]; then
        hosts+=(c)
    fi
    STATIC=$static "$source/tests/packaging/examples_test.sh" \
        "$source" "$work/prefix" "$work/laptop" "$work/examples" "$command" "${hosts[@]}"
fi
