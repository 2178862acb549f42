#!/bin/bash
# Runs the shards by GNU parallel: "parallel.sh [OPTION...]", in a folder with bundles.txt, rules and a copy of shard.sh.
# Options are parallel's: --sshloginfile machines.txt --workdir "$PWD" for several machines with the same storage.
# Started again it runs the shards that failed or are missing.
set -euo pipefail
parallel --jobs 2 --joblog shards.log --resume-failed --retries 3 "$@" ./shard.sh {} 8 ::: {1..8}
