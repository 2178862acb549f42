#!/usr/bin/env bash
# Makes many calls of each kind through the C interface, then through the Python package, and fails if the process grows:
# "flat-memory.sh [CALLS]", by default 10,000. Needs the preset dev, which it builds.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
cmake --preset dev >/dev/null
cmake --build build/dev --parallel --target c_call c_contract arborist_python arborist_tool
export TZ="CET-1CEST,M3.5.0,M10.5.0/3" ARBORIST_CALLS=${1:-10000}
build=$PWD/build/dev
python3 -B tests/bindings/c/c_interface_test.py "$build/tests/bindings/c/c_call" "$build/tests/bindings/c/c_contract" \
    "$build/tools/arborist/arborist" "$build/bindings/c/libarborist-c.so" nm CInterfaceTest.test_memory_stays_flat
PYTHONPATH=$build/python python3 -B tests/bindings/python/python_package_test.py "$build/tools/arborist/arborist" \
    PackageTest.test_memory_stays_flat
