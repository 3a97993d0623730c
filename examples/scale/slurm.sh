#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

#SBATCH --job-name=pages
#SBATCH --requeue
#SBATCH --open-mode=append
# Straightens one shard of a list as a task of a Slurm array. For 400 shards:
#
#     sbatch --array=0-399 --output=FOLDER/log/%a slurm.sh LIST FOLDER
#
# LIST has one tar file per line. Results and manifests are written to FOLDER. Slurm requeues a task whose machine is
# lost; a task whose program was killed or stopped requeues itself below. Shards that are complete are skipped.
set -uo pipefail
list=$1 folder=$2
shard=$(sed -n "$((SLURM_ARRAY_TASK_ID + 1)){p;q}" "$list")

scanpage --tar --jobs "${SLURM_CPUS_PER_TASK:-1}" "$shard" -o "$folder/${shard##*/}"
status=$?

# Stopped (3) or killed by a signal. Bad pages (1) and wrong usage would fail again.
if { [ "$status" -eq 3 ] || [ "$status" -gt 128 ]; } && [ "${SLURM_RESTART_COUNT:-0}" -lt 3 ]; then
    scontrol requeue "$SLURM_JOB_ID"
fi
exit "$status"
