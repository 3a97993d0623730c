# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Processes two thousand pages with each recipe of docs/scale.md and kills workers on the way; a hundred thousand on
# request.

scale_packages=(
    munge parallel python3-dask python3-distributed python3-jsonschema python3-yaml rclone slurm-client slurmctld slurmd
)

scale() { TOOLS=$PWD/build/release/bin /usr/bin/python3 -B "tests/system/scale/$1.py" "${@:2}"; }
check_scale() { scale scale_test; }

cmd_scale() {
    install_packages
    need "${scale_packages[@]}"
    build release scanpage pagegen
    if [ "${1:-}" = --proof ]; then
        mkdir -p build/proof
        scale proof build/proof "${@:2}"
    else
        check "scale" check_scale
        [ "$failed" -eq 0 ]
    fi
}
