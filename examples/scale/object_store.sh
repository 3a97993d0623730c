#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Straightens one shard of an object store by rclone:
#
#     object_store.sh store:scans/00042.tar store:straight/00042.tar [OPTION_OF_SCANPAGE...]
#
# The result is uploaded under a temporary name, because some stores show an upload that was cut. It is renamed when it
# is complete, and its manifest is written last. A shard whose manifest is whole is skipped.
set -uo pipefail
input=$1 output=$2
shift 2
manifest=$output.manifest.jsonl
part=$output.$HOSTNAME-$$.part
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Repeats a step while the store is away, for about a minute.
persist() {
    local pause
    for pause in ${PAUSES:-1 2 4 8 16 32}; do
        "$@" && return
        sleep "$pause"
    done
    echo "$output: failed: $*" >&2
    exit 4
}

# 3 and 4: the store has no such folder or file. Other failures do not tell whether the shard is complete.
fetch_manifest() {
    rclone cat "$manifest" >"$work/fetched" 2>/dev/null
    case $? in 0 | 3 | 4) ;; *) false ;; esac
}

# scanpage writes the manifest if it has read a complete shard, even if some of its pages failed.
straighten() {
    rm -f "$work/manifest"
    rclone cat "$input" | scanpage --tar "$@" - -o - --manifest "$work/manifest" | rclone rcat "$part"
    local status=("${PIPESTATUS[@]}")
    [ "${status[0]}" -eq 0 ] && [ "${status[2]}" -eq 0 ] && [ -s "$work/manifest" ] && return
    rclone deletefile "$part" 2>/dev/null
    return 1
}

persist fetch_manifest
scanpage manifest --whole "$work/fetched" -- "$@" && exit
persist straighten "$@"
persist rclone moveto "$part" "$output"
persist rclone copyto "$work/manifest" "$manifest"
