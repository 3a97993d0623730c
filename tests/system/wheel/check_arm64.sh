#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# tests/system/wheel/check_arm64.sh WHEELS RELEASE PYTHON
#
# Installs the arm64 wheel for a Python (311) and runs the tests of the module with the Python and NumPy of a Debian arm64
# tree, under qemu. The tests that limit the memory of a process are left out, because the limit would be the emulator's.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../../.." && pwd)
wheels=$1
release=$2
python=$3
root=$tree/build/wheel/root-arm64
lib=/usr/lib/aarch64-linux-gnu

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

if [ ! -e "$root.complete" ]; then
    as_root rm -rf "$root"
    as_root mmdebstrap --quiet --variant=extract --architectures=arm64 \
        --include=python3,python3-numpy,python3-pytest,python3-hypothesis "$release" "$root"
    touch "$root.complete"
fi

site=$tree/build/wheel/site-arm64
rm -rf "$site"
/usr/bin/python3 -m pip install --quiet --no-deps --no-index --find-links "$wheels" --target "$site" \
    --only-binary=:all: --python-version "$python" --platform "manylinux_$(getconf GNU_LIBC_VERSION | sed 's/.* //; s/\./_/')_aarch64" \
    opcv-dlib

cd "$tree/build/wheel"
PYTHONPATH=$site PYTHONDONTWRITEBYTECODE=1 OPCV_DLIB_SOURCE=$tree \
    qemu-aarch64-static -L "$root" -E "LD_LIBRARY_PATH=$lib/blas:$lib/lapack" "$root/usr/bin/python3" \
    -m pytest -q -p no:cacheprovider "$tree/tests/system/python" --deselect "$tree/tests/system/python/test_failures.py"
