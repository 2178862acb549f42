#!/usr/bin/env bash
# Fuzzes every target, or those that are named, for MINUTES each, two at a time; prints a line for each: runs, covered
# branches, inputs kept, findings, and the processor seconds that it got. Corpora stay in build/fuzz/corpus, findings in
# build/fuzz/findings: make a test of each.
# usage: scripts/fuzz.sh MINUTES [NAME...]     NAME: "zip" for fuzz/zip_fuzz.cpp
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

minutes=${1:?usage: scripts/fuzz.sh MINUTES [NAME...]}
shift

scripts/install-dependencies.sh cmake ninja-build pkg-config ccache clang libclang-rt-14-dev \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev >&2
cmake --preset fuzz >&2
cmake --build --preset fuzz --parallel >&2

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
    for source in fuzz/*_fuzz.cpp; do
        name=${source#fuzz/}
        names+=("${name%_fuzz.cpp}")
    done
fi
mkdir -p build/fuzz/findings
# Inputs are files: on a disk a target waits for it nine tenths of the time.
if [ -d /dev/shm ] && [ -w /dev/shm ]; then
    TMPDIR=$(mktemp -d /dev/shm/fuzz.XXXXXX)
    export TMPDIR
    trap 'rm -rf "$TMPDIR"' EXIT
fi

fuzz_one() {
    local name=$1 seconds=$2 seeds=fuzz/seeds/$1 log=build/fuzz/$1.log
    # Readers of the same format share their seeds.
    case $name in
        bundle_zip) seeds=fuzz/seeds/zip ;;
        lint | rule_set) seeds=fuzz/seeds/rule_file ;;
        redacted_extra) seeds=fuzz/seeds/extra ;;
    esac
    mkdir -p "build/fuzz/corpus/$name"
    local status=0 TIMEFORMAT='%U %S'
    {
        time "build/fuzz/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=3000 \
            -artifact_prefix="build/fuzz/findings/$name-" "build/fuzz/corpus/$name" "$seeds" >"$log" 2>&1
    } 2>"$log.seconds" || status=$?
    local last
    last=$(grep -E '^#[0-9]+' "$log" | tail -1)
    printf '%-16s runs %-10s %s findings %s processor seconds %.0f\n' "$name" "$(sed -E 's/^#([0-9]+).*/\1/' <<<"$last")" \
        "$(sed -E 's/.*(cov: [0-9]+).*(corp: [0-9]+).*/\1 \2/' <<<"$last")" \
        "$(find build/fuzz/findings -name "$name-*" | wc -l)" "$(awk '{ print $1 + $2 }' "$log.seconds")"
    return "$status"
}
export -f fuzz_one
printf '%s\n' "${names[@]}" | xargs -P 2 -I NAME bash -c "fuzz_one NAME $((minutes * 60))"
