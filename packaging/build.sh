#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# packaging/build.sh ARCHITECTURE BUILD MAN DESTINATION [SYSROOT]
#
# Makes Debian packages of the contents of a build folder, with the manual pages in MAN. SYSROOT is the system root of
# another architecture.
set -euo pipefail
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
architecture=$1
build=$(realpath "$2")
man=$(realpath -m "$3")
mkdir -p "$4"
destination=$(realpath "$4")
sysroot=${5:+$(realpath "$5")}

work=$build/package
rm -rf "$work"
mkdir "$work"
cp -r "$tree/packaging/debian" "$work"
cd "$work"

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$tree/CMakeLists.txt")
packaged=$(dpkg-parsechangelog -S Version)
if [ "${packaged%-*}" != "$version" ]; then
    echo "packaging/debian/changelog begins with $packaged, but the version in CMakeLists.txt is $version" >&2
    exit 1
fi

{
    echo "libOPCV_dlib.so.1 libopcv-dlib1 #MINVER#"
    echo " OPCV_1.0@OPCV_1.0 1.0.0"
    sed 's/.*/ &@OPCV_1.0 1.0.0/' "$tree/cmake/exports.txt"
    echo " OPCV_1.1@OPCV_1.1 1.0.0"
    sed 's/.*/ &@OPCV_1.1 1.0.0/' "$tree/cmake/exports_1.1.txt"
} >debian/libopcv-dlib1.symbols
{
    echo "libOPCV_dlib_skew.so.1 libopcv-dlib-skew1 #MINVER#"
    echo " OPCV_SKEW_1.0@OPCV_SKEW_1.0 1.0.0"
    sed 's/.*/ &@OPCV_SKEW_1.0 1.0.0/' "$tree/tools/page_skew/exports.txt"
} >debian/libopcv-dlib-skew1.symbols

# No installed package contains the libraries of a system root, so their package names are taken from this machine's
# packages.
if [ -n "$sysroot" ]; then
    cat /var/lib/dpkg/info/*:"$(dpkg --print-architecture)".shlibs >shlibs
    sed -n 's/^ld-linux-x86-64 2 /ld-linux-aarch64 1 /p' shlibs | cat shlibs - >debian/shlibs.local
fi

DEB_BUILD_OPTIONS=nocheck BUILD=$build MAN=$man DESTINATION=$destination SYSROOT=$sysroot \
    dpkg-architecture -a"$architecture" -c debian/rules binary >build.log 2>&1 || {
    cat build.log >&2
    exit 1
}
