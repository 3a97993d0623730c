# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Benchmarks.

model_packages=(llvm-19)    # older versions have no model of the Neoverse N1

# Runs all benchmarks and writes docs/performance.md; with options, runs only the selected ones. With --against FILE,
# also compares the calls with an earlier run, whose results are in FILE; nothing fails because of the comparison.
cmd_bench() {
    local folder=build/bench earlier=
    mkdir -p "$folder"
    if [ "${1:-}" = --against ]; then
        earlier="$folder/earlier.tsv"
        cp "$2" "$earlier"
        shift 2
    fi
    install_packages
    build release opcv_dlib_bench opcv_dlib_hostile opcv_dlib_pipeline pagegen
    say "Calls"
    ./build/release/bench/opcv_dlib_bench --results="$folder/calls.tsv" "$@"
    if [ -n "$earlier" ]; then
        say "Compared with the earlier run"
        python3 bench/compare.py "$folder/calls.tsv" "$earlier"
    fi
    [ $# -gt 0 ] && return
    say "The page pipeline"
    ./build/release/bin/pagegen --skew 2.3 "$folder/page.jpg"
    ./build/release/bench/opcv_dlib_pipeline "$folder/page.jpg" | tee "$folder/pipeline.tsv"
    say "Hostile streams"
    ./build/release/bench/opcv_dlib_hostile docs/reliability.md
    say "Model of Arm cores"
    need "${model_packages[@]}"
    arm64_sysroot
    build arm64 opcv_dlib_instructions
    python3 bench/arm_model.py build/arm64/bench/opcv_dlib_instructions "$sysroot" >"$folder/arm.tsv"
    python3 bench/report.py "$folder" docs/performance.md
}

# Times the same operations with other libraries, and writes the table and the chart of the README.
cmd_beside() {
    local folder=build/beside
    install_packages
    need libvips-dev python3-matplotlib python3-pil
    build release beside pagegen
    mkdir -p "$folder"
    # shellcheck disable=SC2046
    cc -O2 bench/beside/beside_vips.c -o "$folder/beside_vips" $(pkg-config --cflags --libs vips) -lm
    ./build/release/bin/pagegen --grey "$folder/grey.jpg"
    ./build/release/bin/pagegen "$folder/colour.jpg"
    {
        ./build/release/bench/beside/beside "$folder/grey.jpg" "$folder/colour.jpg"
        "$folder/beside_vips" "$folder/grey.jpg" "$folder/colour.jpg"
        /usr/bin/python3 bench/beside/beside.py "$folder/grey.jpg" "$folder/colour.jpg"
    } | tee "$folder/times.tsv"
    /usr/bin/python3 bench/charts.py beside "$folder/times.tsv" README.md docs/images/beside.svg
}
