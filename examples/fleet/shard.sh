#!/bin/bash
# Runs shard I of N of the list bundles.txt into results/I.jsonl: "shard.sh I N [JOBS]", in a folder with bundles.txt; where it
# has a folder `rules`, too, these are the rules instead of each bundle's.
# The file is there when all of its lines are. A shard that was ended is run again by the same command.
# The status speaks of the shard, not of its bundles; docs/scale.md says what each engine makes of it.
set -euo pipefail
shard=$1 shards=$2 jobs=${3:-1}
mkdir -p results
# A machine that lost its network may still work on a shard that was given to another: the second one waits here.
exec 9>"results/$shard.lock"
flock 9
if [ -e "results/$shard.jsonl" ]; then
    exit 0
fi
rules=()
if [ -d rules ]; then
    rules=(--rules "$PWD/rules")
fi
status=0
arborist detect --batch bundles.txt "${rules[@]}" --shard "$shard/$shards" --jobs "$jobs" --log-level none \
    >"results/$shard.part" || status=$?
if [ $status -ne 0 ] && [ $status -ne 4 ]; then
    exit $status
fi
mv "results/$shard.part" "results/$shard.jsonl"
