# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Benchmarks.

model_packages=(llvm-19)    # older versions have no model of the Neoverse N1
beside_packages=(libvips-dev python3-matplotlib python3-pil)
page_sizes=256x256,620x877,1240x1754,2480x3508,4960x7016    # and A4 at 75, 150, 300 and 600 dpi

# with_vips SOURCE.c: compiles a program that uses libvips into $folder.
with_vips() {
    # shellcheck disable=SC2046
    cc -O2 "$1" -o "$folder/$(basename "$1" .c)" $(pkg-config --cflags --libs vips) -lm
}

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
    [ $# -gt 0 ] || need "${beside_packages[@]}"
    build release opcv_dlib_bench opcv_dlib_hostile opcv_dlib_pipeline pagegen scanpage
    say "Calls"
    ./build/release/bench/opcv_dlib_bench --results="$folder/calls.tsv" "$@"
    if [ -n "$earlier" ]; then
        say "Compared with the earlier run"
        python3 bench/compare.py "$folder/calls.tsv" "$earlier"
    fi
    [ $# -gt 0 ] && return
    say "Sizes of pages"
    ./build/release/bench/opcv_dlib_bench --results="$folder/sizes.tsv" --sizes="$page_sizes" --passes=3
    say "The page pipeline"
    ./build/release/bin/pagegen --grey --skew 2.3 "$folder/page.jpg"
    mkdir -p "$folder/scan"
    ./build/release/bin/scanpage --angle 0 --mode 450 --overwrite -o "$folder/scan" "$folder/page.jpg"
    with_vips bench/beside/pipeline_vips.c
    ./build/release/bench/opcv_dlib_pipeline "$folder/scan/page.jpg" \
        "libvips=$folder/pipeline_vips" "Pillow=bench/beside/pipeline.py" | tee "$folder/pipeline.tsv"
    say "Hostile streams"
    ./build/release/bench/opcv_dlib_hostile docs/reliability.md
    say "Model of Arm cores"
    need "${model_packages[@]}"
    arm64_sysroot
    build arm64 opcv_dlib_instructions
    python3 bench/arm_model.py build/arm64/bench/opcv_dlib_instructions "$sysroot" >"$folder/arm.tsv"
    python3 bench/report.py "$folder" docs/performance.md
    /usr/bin/python3 bench/charts.py performance "$folder" docs/images
}

# Times the same operations with other libraries, and writes the table and the chart of the README.
cmd_beside() {
    local folder=build/beside
    install_packages
    need "${beside_packages[@]}"
    build release beside pagegen
    mkdir -p "$folder"
    with_vips bench/beside/beside_vips.c
    ./build/release/bin/pagegen --grey "$folder/grey.jpg"
    ./build/release/bin/pagegen "$folder/colour.jpg"
    {
        ./build/release/bench/beside/beside "$folder/grey.jpg" "$folder/colour.jpg"
        "$folder/beside_vips" "$folder/grey.jpg" "$folder/colour.jpg"
        /usr/bin/python3 bench/beside/beside.py "$folder/grey.jpg" "$folder/colour.jpg"
    } | tee "$folder/times.tsv"
    /usr/bin/python3 bench/charts.py beside "$folder/times.tsv" README.md docs/images/beside.svg
}
