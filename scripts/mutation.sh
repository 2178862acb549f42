#!/usr/bin/env bash
# Makes small mistakes in the library and runs the tests on each: "mutation.sh [COUNT [SEED [ROOM...]]]", by default 400 mistakes
# (mutants) chosen by seed 1, as many in each room of scripts/mutation/rooms.py. All mutants are compiled in at once; the
# environment variable ARBORIST_MUTANT switches one on. A run goes on where the last one stopped. The standard library checks
# what it is asked, so that a mutant which reads behind the end of a vector, or out of an empty optional, is caught.
# Fails if a mutant survived that scripts/mutation/survivors.md doesn't list with its reason.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
count=${1:-400}
seed=${2:-1}
folder=$PWD/build/mutation
# The interpreter that Debian's python3-clang belongs to.
python=(/usr/bin/python3 -B)

scripts/install-dependencies.sh python3-clang-14 libclang-14-dev
mkdir -p "$folder"
"${python[@]}" scripts/mutation/generate.py . "$folder" copy
cmake -S "$folder/source" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DARBORIST_BUILD_C=OFF \
    "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -w -Wno-narrowing -fpermissive -D_GLIBCXX_ASSERTIONS" \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null

# A mutant that is no C++, such as a swapped argument of a template, is left out, and the rest built again.
while true; do
    "${python[@]}" scripts/mutation/generate.py . "$folder"
    if cmake --build "$folder/build" --parallel --target evaluation_tests deduction_tests loading_tests stores_tests \
        frame_tests -- -k 0 >"$folder/build.log" 2>&1; then
        break
    fi
    "${python[@]}" scripts/mutation/refused.py "$folder" "$folder/build.log" || { tail -50 "$folder/build.log"; exit 1; }
done
"${python[@]}" scripts/mutation/run.py "$folder" "$count" "$seed" "${@:3}"
