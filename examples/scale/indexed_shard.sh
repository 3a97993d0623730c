#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Straightens one shard of an object store as a pod of indexed_job.yaml. The shard is the line number
# JOB_COMPLETION_INDEX, counted from 0, of the list SCANS/shards.
set -euo pipefail
shard=$(rclone cat "$SCANS/shards" | sed -n "$((JOB_COMPLETION_INDEX + 1))p")
if [ -z "$shard" ]; then
    echo "$SCANS/shards has no shard $JOB_COMPLETION_INDEX" >&2
    exit 1
fi
exec "$(dirname "$0")/object_store.sh" "$SCANS/$shard" "$STRAIGHT/$shard"
