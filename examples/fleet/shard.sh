#!/bin/bash
# Runs shard I of N of the list bundles.txt into results/I.jsonl: "shard.sh I N [JOBS]", in a folder with bundles.txt;
# where it has a folder `rules`, too, these are the rules instead of each bundle's.
# The file is there when all of its lines are. A shard that was ended goes on by the same command.
# The status speaks of the shard, not of its bundles; docs/scale.md says what each engine makes of it.
set -euo pipefail
shard=$1 shards=$2 jobs=${3:-1}
lines=results/$shard.jsonl part=results/$shard.part earlier=results/$shard.earlier
mkdir -p results
# A machine that lost its network may still work on a shard that was given to another: the second one waits here.
exec 9>"results/$shard.lock"
flock 9
if [ -e "$lines" ]; then
    exit 0
fi
rules=()
if [ -d rules ]; then
    arborist rules list rules >/dev/null # ends with 3 if they can't be used, which else every line would say
    rules=(--rules "$PWD/rules")
fi
# What a run that was ended has written is kept, but for its last line, which may have no end.
touch "$earlier"
if [ -e "$part" ]; then
    sed '$d' "$part" | LC_ALL=C sort -u -o "$earlier.new" "$earlier" -
    mv "$earlier.new" "$earlier"
fi
arborist detect --batch bundles.txt "${rules[@]}" --shard "$shard/$shards" --jobs "$jobs" --log-level none \
    --resume "$earlier" --retries 2 --exit-zero-on-bundle-errors >"$part"
mv "$part" "$lines"
rm "$earlier"
