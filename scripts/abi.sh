# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The binary interface.

# record_abi LIBRARY FILE
record_abi() {
    local file=tests/system/interface/abi/$2
    abidw --exported-interfaces-only --headers-dir include --drop-private-types --no-corpus-path --no-comp-dir-path --no-show-locs \
        --type-id-style hash "$1" --out-file "$file"
    sed -i "s|path='$PWD/|path='|" "$file"
}

# Records the current binary interface, for an intended change.
cmd_abi() {
    prepare arm64
    for preset in release arm64; do
        build "$preset" OPCV_dlib OPCV_dlib_skew
        local machine=x86_64
        [ "$preset" = arm64 ] && machine=aarch64
        record_abi "build/$preset/libOPCV_dlib.so" "$machine.abi"
        record_abi "build/$preset/libOPCV_dlib_skew.so" "skew-$machine.abi"
    done
}
