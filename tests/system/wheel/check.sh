#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# tests/system/wheel/check.sh WHEELS RELEASE
#
# Installs the wheel that fits from a folder of wheels into a virtual environment, in a fresh tree of a Debian release
# without compiler and -dev packages, and runs the Python tests there.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../../.." && pwd)
wheels=$(realpath "$1")
release=$2
work=$(mktemp -d /tmp/opcv_dlib-wheel.XXXXXX)
trap 'as_root rm -rf --one-file-system "$work"' EXIT

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

mkdir -p "$work/check/source/python/opcv_dlib" "$work/check/source/examples"
cp -r "$wheels" "$work/check/wheels"
cp -r "$tree/cmake" "$work/check/source"
mkdir -p "$work/check/source/tools/page_skew"
cp "$tree/tools/page_skew/exports.txt" "$work/check/source/tools/page_skew"
cp -r "$tree/examples/readme" "$work/check/source/examples"
cp "$tree/python/opcv_dlib/__init__.pyi" "$work/check/source/python/opcv_dlib"
cp -r "$tree/tests/system/python" "$work/check/tests"
cp "$here/inside.sh" "$here/check_module.py" "$work/check"
chmod -R a+rX "$work"

as_root mmdebstrap --quiet --variant=apt \
    --aptopt='APT::Install-Recommends "false"' \
    --dpkgopt='force-unsafe-io' \
    --dpkgopt='path-exclude=/usr/share/locale/*' \
    --dpkgopt='path-exclude=/usr/share/doc/*' \
    --include=python3-venv,python3-numpy,python3-pytest,python3-hypothesis,python3-mypy,python3-opencv,ocrmypdf \
    --customize-hook="copy-in $work/check /" \
    --customize-hook='chroot "$1" env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin bash /check/inside.sh' \
    "$release" "$work/root"
