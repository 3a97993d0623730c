#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Straightens the pages of a list with GNU parallel:
#
#     parallel.sh LIST FOLDER [WORKERS [OPTION_OF_PARALLEL...]]
#
# Results are written to FOLDER/pages, reports to FOLDER/log. After any interruption, start it again: it skips slices of
# 100 pages that succeeded, and in the others it skips pages that exist.
set -euo pipefail
list=$1
export FOLDER=$2
workers=${3:-$(nproc)}
shift $(($# < 3 ? $# : 3))
mkdir -p "$FOLDER/pages" "$FOLDER/log"

parallel --will-cite --arg-file "$list" --max-args 100 --jobs "$workers" \
    --joblog "$FOLDER/jobs" --resume-failed --retries 3 --env FOLDER "$@" \
    'scanpage --resume -o "$FOLDER/pages" {} 2>>"$FOLDER/log/{#}.err" >>"$FOLDER/log/{#}.tsv"'
