#!/usr/bin/env bash
# Reads the code of library, diagnosis, command and bindings without running it, and fails on a finding:
#
#   check-code.sh [all]                   cppcheck and clang-tidy (the checks of .clang-tidy) on every source
#   check-code.sh changed BASE [SECONDS]  the same on those that differ from the commit BASE: new and changed files first,
#                                         and the later commits before the earlier. A header is checked through a source
#                                         that includes it. After SECONDS no further file is begun by clang-tidy.
#
# Tests, benches and fuzz targets are left to the compilers' warnings and the sanitizers.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folders=(arborist bindings diagnosis tools)
build=build/check-code

# Windows' sources need its headers.
sources() { git ls-files --cached --others --exclude-standard -- "${folders[@]/%//*.cpp}" | grep -v '_windows\.cpp$'; }

changed_since() {
    git diff --name-only --diff-filter=d HEAD
    git ls-files --others --exclude-standard
    git log --format= --name-only --diff-filter=d "$1"..HEAD
}

# For each header that is read from the input a source that includes it, the header's own if there is one.
sources_of() {
    local file
    while read -r file; do
        case $file in
            *.h) grep -lF "#include \"$file\"" -- "${file%.h}.cpp" "${all[@]}" 2>/dev/null | head -n 1 || true ;;
            *) echo "$file" ;;
        esac
    done
}

mapfile -t all < <(sources)
seconds=
case ${1:-all} in
    all) checked=("${all[@]}") ;;
    changed)
        seconds=${3:-}
        git rev-parse --quiet --verify "$2^{commit}" >/dev/null || { echo "$2 is no commit" >&2; exit 2; }
        mapfile -t checked < <(changed_since "$2" | sources_of | awk '!seen[$0]++' | grep -xFf <(printf '%s\n' "${all[@]}"))
        ;;
    *) echo "Say check-code.sh [all | changed BASE [SECONDS]]." >&2; exit 2 ;;
esac
if [ ${#checked[@]} -eq 0 ]; then
    echo "No source differs."
    exit 0
fi
scripts/install-dependencies.sh build-essential clang clang-tidy cppcheck cmake ninja-build pkg-config git \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev

# Headers that are not ours are not looked for; without them cppcheck takes arrays of texts for arrays of integers.
status=0
mkdir -p "$build/cppcheck"
echo "== cppcheck: ${#checked[@]} sources"
cppcheck --quiet -j "$(nproc)" --cppcheck-build-dir="$build/cppcheck" --enable=warning,performance,portability \
    --inline-suppr --error-exitcode=1 --std=c++20 --language=c++ -I. --suppress=missingInclude \
    --suppress=CastIntegerToAddressAtReturn "${checked[@]}" || status=1

# Only the commands of the compiler are needed, without the precompiled headers of another one and without ccache.
cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug -DARBORIST_PRECOMPILE=OFF \
    -DARBORIST_BUILD_TESTS=OFF -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCCACHE_PROGRAM= >/dev/null
echo "== clang-tidy: ${#checked[@]} sources"
export build
rm -f "$build/tidied"
# One file for each process, so that none waits for the end of another's; the count of suppressed warnings is no news.
tidy() {
    if [ -n "$2" ] && [ "$(date +%s)" -ge "$2" ]; then
        return 0
    fi
    echo "$1" >>"$build/tidied"
    clang-tidy -p "$build" --quiet "$1" 2> >(grep -v ' warnings\? generated\.$' >&2)
}
export -f tidy
end=${seconds:+$(($(date +%s) + seconds))}
printf '%s\n' "${checked[@]}" | xargs -d '\n' -P "$(nproc)" -I '{}' bash -c 'tidy "$1" "$2"' - '{}' "$end" || status=1
echo "== clang-tidy read $(wc -l <"$build/tidied") of ${#checked[@]} sources"
exit $status
