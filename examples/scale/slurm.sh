#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

#SBATCH --job-name=pages
#SBATCH --requeue
#SBATCH --open-mode=append
# Straightens one slice of a list of pages as a task of a Slurm array. For 10,000 pages in slices of 25:
#
#     sbatch --array=0-399 --output=FOLDER/log/%a.err slurm.sh LIST FOLDER 25
#
# Results are written to FOLDER/pages, reports to FOLDER/log. Slurm requeues a task whose machine is lost; a task whose
# program was killed or stopped requeues itself below. Pages that exist are skipped.
set -uo pipefail
list=$1 folder=$2 slice=$3
first=$((SLURM_ARRAY_TASK_ID * slice + 1))
last=$((first + slice - 1))
mkdir -p "$folder/pages" "$folder/log"

sed -n "${first},${last}p;${last}q" "$list" |
    scanpage --resume --jobs "${SLURM_CPUS_PER_TASK:-1}" --from - -o "$folder/pages" >>"$folder/log/$SLURM_ARRAY_TASK_ID.tsv"
status=${PIPESTATUS[1]}

# Stopped (3) or killed by a signal. Bad pages (1) and wrong usage would fail again.
if { [ "$status" -eq 3 ] || [ "$status" -gt 128 ]; } && [ "${SLURM_RESTART_COUNT:-0}" -lt 3 ]; then
    scontrol requeue "$SLURM_JOB_ID"
fi
exit "$status"
