#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test. Say "test.sh asan" for another preset.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:-dev}
sanitizer=()
if [ "$preset" = asan ]; then
    sanitizer=(clang llvm libclang-rt-14-dev)
fi

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config ccache python3 \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev \
    python3-dev python3-cffi python3-venv mypy patchelf binutils \
    libgtest-dev libgmock-dev doxygen tzdata sqlite3 jq libxml2-utils zip parallel groff man-db zsh fish graphviz chromium \
    poppler-utils "${sanitizer[@]}"

echo "== Building (preset $preset)"
cmake --preset "$preset"
cmake --build --preset "$preset" --parallel

echo "== Testing (preset $preset)"
ctest --preset "$preset"
