# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Fuzzing with libFuzzer.

fuzz_packages=(clang libclang-rt-dev)

# Runs one target: the initial inputs, the regressions, then new inputs for the given seconds.
fuzz_target() {
    local name=$1 seconds=$2 folder=build/fuzz/fuzz
    shift 2
    local log="$folder/logs/$name.log" inputs=("$folder/corpus/$name" "$folder/seeds/$name") dictionary=()
    mkdir -p "$folder/corpus/$name" "$folder/logs" "$folder/findings"
    [ -d "fuzz/regressions/$name" ] && inputs+=("fuzz/regressions/$name")
    [ "$name" = jpeg_read ] && dictionary=(-dict="$folder/seeds/jpeg.dict")
    # Allocations above 32 MB fail, so that headers that claim gigabytes test failing allocations.
    if ASAN_OPTIONS=allocator_may_return_null=1:max_allocation_size_mb=32:detect_stack_use_after_return=1 \
        "$folder/fuzz_$name" -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=2048 \
        -malloc_limit_mb=2048 -seed=1 -print_final_stats=1 -artifact_prefix="$folder/findings/$name-" \
        "${dictionary[@]}" "$@" "${inputs[@]}" >"$log" 2>&1; then
        printf '%-12s %9d runs\n' "$name" "$(sed -n 's/^stat::number_of_executed_units: //p' "$log")"
    else
        printf '%s: a finding, in %s/findings and %s\n' "$name" "$folder" "$log"
        grep -A12 -m1 -E 'ERROR|runtime error|Not so' "$log" || tail -5 "$log"
        return 1
    fi
}

# check_fuzz SECONDS [OPTION of libFuzzer...]
check_fuzz() {
    export -f fuzz_target
    printf '%s\n' core filters geometry jpeg_read jpeg_write pixel rank |
        xargs -P "$jobs" -I{} bash -euo pipefail -c 'fuzz_target "$@"' fuzz {} "$@"
}

cmd_fuzz() {
    local seconds=${1:-30}
    shift $(($# > 0 ? 1 : 0))
    prepare fuzz
    build fuzz
    say "Fuzzing, $seconds seconds each"
    check_fuzz "$seconds" "$@"
}
