# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Measures the skew finder on drawn pages and, if a folder is given, on labelled scans.

cmd_skew() {
    install_packages
    build release skew_table gallery
    ./build/release/docs/generators/skew_table docs/generators/skew_table/section.md "$@"
    ./build/release/docs/generators/gallery docs
    cat docs/generators/skew_table/section.md
}
