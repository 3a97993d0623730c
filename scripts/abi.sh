# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The binary interface.

# Records the current binary interface, for an intended change.
cmd_abi() {
    prepare arm64
    for preset in release arm64; do
        build "$preset" OPCV_dlib
        local machine=x86_64
        [ "$preset" = arm64 ] && machine=aarch64
        abidw --exported-interfaces-only --headers-dir include --drop-private-types --no-corpus-path --no-comp-dir-path --no-show-locs \
            --type-id-style hash "build/$preset/libOPCV_dlib.so" --out-file "tests/system/interface/abi/$machine.abi"
        sed -i "s|path='$PWD/|path='|" "tests/system/interface/abi/$machine.abi"
    done
}
