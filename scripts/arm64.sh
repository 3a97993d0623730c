# shellcheck shell=bash
# arm64: a Debian tree to build against, and the tests under qemu.

arm64_packages=(g++-aarch64-linux-gnu mmdebstrap qemu-user-static)
sysroot=build/sysroot-arm64
sysroot_packages=libc6-dev,libstdc++-12-dev,libopencv-imgproc-dev,libopencv-imgcodecs-dev,libjpeg62-turbo-dev,libhwy-dev,libgtest-dev
sysroot_packages+=,libcli11-dev,libleptonica-dev,libpython3-dev,libtiff-dev,pybind11-dev    # of the packages

arm64_sysroot() {
    need "${arm64_packages[@]}"
    [ "$(cat "$sysroot.packages" 2>/dev/null)" = "$sysroot_packages" ] && return
    say "Making the arm64 tree"
    mkdir -p build
    as_root rm -rf "$sysroot"
    as_root mmdebstrap --quiet --variant=extract --architectures=arm64 --include="$sysroot_packages" bookworm "$sysroot"
    printf '%s\n' "$sysroot_packages" >"$sysroot.packages"
}

cmd_arm64() {
    prepare arm64
    build arm64
    run_tests arm64
    [ "$failed" -eq 0 ]
}
