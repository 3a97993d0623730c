# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Processes a thousand pages with each engine of docs/scale.md and kills workers on the way.

scale_packages=(munge parallel python3-dask python3-distributed python3-numpy slurm-client slurmctld slurmd)

check_scale() {
    TOOLS=$PWD/build/release/bin MODULE=$PWD/build/release/python /usr/bin/python3 -B tests/system/scale/scale_test.py
}

cmd_scale() {
    install_packages
    need "${scale_packages[@]}"
    build release scanpage pagegen opcv_dlib_python
    check "scale" check_scale
    [ "$failed" -eq 0 ]
}
