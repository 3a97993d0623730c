#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Straightens the shards of a list with GNU parallel:
#
#     parallel.sh LIST FOLDER [WORKERS [OPTION_OF_PARALLEL...]]
#
# LIST has one tar file per line. Results and manifests are written to FOLDER, messages to FOLDER/log. After any
# interruption, start it again: it skips shards that are complete.
set -euo pipefail
list=$1
export FOLDER=$2
workers=${3:-$(nproc)}
shift $(($# < 3 ? $# : 3))
mkdir -p "$FOLDER/log"

parallel --will-cite --arg-file "$list" --jobs "$workers" \
    --joblog "$FOLDER/jobs" --resume-failed --retries 3 --env FOLDER "$@" \
    'scanpage --tar {} -o "$FOLDER"/{/} >>"$FOLDER"/log/{/} 2>&1'
