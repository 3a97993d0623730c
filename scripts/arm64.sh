# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# arm64: a Debian system root, and the tests under qemu.

arm64_packages=(mmdebstrap qemu-user-static)
[ "$(dpkg --print-architecture)" = arm64 ] || arm64_packages+=(g++-aarch64-linux-gnu)
sysroot=build/sysroot-arm64

# The standard library has the version of the compiler.
sysroot_packages() {
    local packages=(libc6-dev "libstdc++-$(g++ -dumpversion)-dev"
        libopencv-imgproc-dev libopencv-imgcodecs-dev libjpeg62-turbo-dev libhwy-dev libgtest-dev
        libarchive-dev libbz2-dev libcli11-dev libleptonica-dev liblz4-dev libpng-dev libpython3-dev libqpdf-dev
        libtiff-dev nettle-dev nlohmann-json3-dev pybind11-dev)    # the last two rows: of scanpage and the Python module
    (IFS=, && echo "${packages[*]}")
}

arm64_sysroot() {
    local wanted
    need "${arm64_packages[@]}"
    wanted=$(sysroot_packages)
    [ "$(cat "$sysroot.packages" 2>/dev/null)" = "$wanted" ] && return
    say "Creating the arm64 system root"
    mkdir -p build
    as_root rm -rf "$sysroot"
    as_root mmdebstrap --quiet --variant=extract --architectures=arm64 --include="$wanted" "$(debian_release)" "$sysroot"
    printf '%s\n' "$wanted" >"$sysroot.packages"
}

cmd_arm64() { cmd_suite arm64; }
