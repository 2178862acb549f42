#!/usr/bin/env bash
# Runs the tests that use threads under the thread sanitizer.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config ccache \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev robin-map-dev python3 \
    libgtest-dev libgmock-dev tzdata
cmake --preset tsan -DARBORIST_BUILD_TOOLS=OFF
cmake --build --preset tsan --parallel --target frame_tests loading_tests utilities_tests
ctest --preset tsan -R '^frame_tests\.|^loading_tests\.(SecondParse|FaultTreeParser)|^utilities_tests\.JsonText'
