# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Debian packages and their check in a fresh tree.

packaging_packages=(debhelper dh-python dpkg-dev)

# package ARCHITECTURE PRESET [SYSROOT]: makes Debian packages of the build of a preset, in build/packages.
package() {
    say "Packaging for $1"
    packaging/build.sh "$1" "build/${2%-packages}" build/release/man build/packages "${@:3}"
}

# Checks the packages of this machine's architecture in a fresh Debian tree.
check_packages() {
    package "$(dpkg --print-architecture)" release
    tests/system/install/check.sh build/packages "$(debian_release)"
}

cmd_package() {
    local native
    native=$(dpkg --print-architecture)
    install_packages
    need "${packaging_packages[@]}" lintian
    rm -rf build/packages
    build release
    package "$native" release
    if [ "$native" != arm64 ]; then
        arm64_sysroot
        build arm64-packages OPCV_dlib OPCV_dlib_skew scanpage opcv_dlib_python opcv_dlib_python_skew
        package arm64 arm64-packages "$sysroot"
    fi
    say "Packages"
    ls -l build/packages
    lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs build/packages/*.deb
}
