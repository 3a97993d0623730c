# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Running ctest and counting what passed and failed.

passed=0
failed=0

# start_tests PRESET [OPTION OF CTEST...]: runs ctest; count_tests PRESET then adds the results to passed and failed.
start_tests() {
    local preset=$1 results="build/$1/results"
    shift
    say "Testing $preset"
    rm -rf "$results"
    mkdir -p "$results"
    GTEST_BRIEF=1 ctest --preset "$preset" -j "$jobs" --output-junit "$PWD/$results/ctest.xml" "$@" || true
}

count_tests() {
    local good bad
    read -r good bad <<<"$(/usr/bin/python3 scripts/tally.py "build/$1/results")"
    echo "$1: $good passed, $bad failed"
    passed=$((passed + good))
    failed=$((failed + bad))
}

run_tests() {
    start_tests "$@"
    count_tests "$1"
}

# Runs a command that counts as one test.
check() {
    local title=$1
    shift
    say "$title"
    if "$@"; then passed=$((passed + 1)); else
        failed=$((failed + 1))
        echo "$title: failed"
    fi
}

# aside NAME COMMAND...: starts a command in the background that waits for the network or uses one processor.
declare -A asides
aside() {
    local name=$1
    shift
    mkdir -p build
    "$@" >"build/$name.log" 2>&1 </dev/null &
    asides[$name]=$!
}

# Waits for a background command, prints its output and returns its status.
join() {
    local status=0
    wait "${asides[$1]}" || status=$?
    cat "build/$1.log"
    return "$status"
}

# Every test of a preset.
cmd_suite() {
    local preset=${1:-release}
    prepare "$preset"
    build "$preset"
    run_tests "$preset" "${@:2}"
    [ "$failed" -eq 0 ]
}
