#!/usr/bin/env bash
# Compiles the library, the diagnosis and the command with clang++, warnings as errors; g++ compiles all the rest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-dependencies.sh build-essential clang cmake ninja-build pkg-config ccache \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev

cmake --preset clang
cmake --build --preset clang --parallel
