#!/usr/bin/env bash
# Compiles what is shipped and the benches as they are shipped: optimised, by g++ without precompiled headers, with each
# warning an error. Some warnings need an optimised build; scripts/test.sh compiles without, and "test.sh asan" by clang++.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config ccache python3 \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev \
    python3-dev python3-cffi libgtest-dev libgmock-dev

cmake --preset release
cmake --build --preset release --parallel --target arborist_tool arborist_python bench
