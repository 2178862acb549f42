#!/bin/bash
#SBATCH --job-name=diagnose
#SBATCH --array=1-8
#SBATCH --cpus-per-task=1
#SBATCH --time=01:00:00
#SBATCH --requeue
# sbatch slurm.sh, in a folder with bundles.txt, rules and a copy of shard.sh; a shard that failed: sbatch --array=3 slurm.sh
# The number of shards is written here, as Slurm's own count would be 1 for a shard that is submitted again alone.
exec ./shard.sh "$SLURM_ARRAY_TASK_ID" 8 "$SLURM_CPUS_PER_TASK"
