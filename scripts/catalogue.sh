# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The catalogue of all functions in one build: bounds, repeatability, eight threads.

cmd_reliability() {
    local preset=${1:-release}
    prepare "$preset"
    build "$preset" catalogue_tests
    ctest --preset "$preset" -R '^catalogue$' --verbose
}
