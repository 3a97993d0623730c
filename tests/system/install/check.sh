#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# tests/system/install/check.sh PACKAGES RELEASE
#
# Installs the packages of a folder into a fresh tree of a Debian release that has nothing else but what they depend on,
# a compiler, CMake, pkg-config and man, and uses them there as their users do.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../../.." && pwd)
packages=$(realpath "$1")
release=$2
work=$(mktemp -d /tmp/opcv_dlib-install.XXXXXX)
trap 'as_root rm -rf --one-file-system "$work"' EXIT

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# A local archive of the packages.
mkdir "$work/archive"
cp "$packages"/*_"$(dpkg --print-architecture)".deb "$work/archive"
(cd "$work/archive" && dpkg-scanpackages --multiversion . >Packages 2>/dev/null)
chmod -R a+rX "$work"

mkdir "$work/check"
cp -r "$tree/examples/readme" "$tree/tests/system/interface/consumer" "$tree/tests/system/interface/find_skew_c.c" "$here/inside.sh" "$here/make_pages.py" "$work/check"

as_root mmdebstrap --quiet --variant=apt \
    --aptopt='APT::Install-Recommends "false"' \
    --dpkgopt='force-unsafe-io' \
    --dpkgopt='path-exclude=/usr/share/locale/*' \
    --dpkgopt='path-exclude=/usr/share/doc/*' \
    --include=libopcv-dlib-dev,libopcv-dlib-skew-dev,opcv-tools,python3-opcv-dlib,g++,cmake,make,pkg-config,man-db \
    --setup-hook="mkdir -p \"\$1\"/etc/apt/sources.list.d; echo 'deb [trusted=yes] copy:$work/archive ./' >\"\$1\"/etc/apt/sources.list.d/opcv_dlib.list" \
    --customize-hook="copy-in $work/check /" \
    --customize-hook='chroot "$1" bash /check/inside.sh '"$tree" \
    "$release" "$work/root"
