#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# tests/system/wheel/check_arm64.sh WHEELS RELEASE PYTHON
#
# Installs the arm64 wheel for a Python (311) and runs the tests of the module with the Python and NumPy of a Debian arm64
# tree, under qemu. The tests that start another Python are left out, because they would start it without the emulator.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../../.." && pwd)
wheels=$1
release=$2
python=$3
root=$tree/build/wheel/root-arm64
lib=/usr/lib/aarch64-linux-gnu
packages=libstdc++6,python3,python3-hypothesis,python3-numpy,python3-pytest

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

if [ "$(cat "$root.complete" 2>/dev/null)" != "$packages" ]; then
    as_root rm -rf "$root"
    as_root mmdebstrap --quiet --variant=extract --architectures=arm64 \
        --include="$packages" "$release" "$root"
    echo "$packages" >"$root.complete"
fi

site=$tree/build/wheel/site-arm64
rm -rf "$site"
/usr/bin/python3 -m pip install --quiet --no-deps --no-index --find-links "$wheels" --target "$site" \
    --only-binary=:all: --python-version "$python" --platform "manylinux_$(getconf GNU_LIBC_VERSION | sed 's/.* //; s/\./_/')_aarch64" \
    opcv-dlib

cd "$tree/build/wheel"
PYTHONPATH=$site PYTHONDONTWRITEBYTECODE=1 OPCV_DLIB_SOURCE=$tree \
    qemu-aarch64-static -L "$root" -E "LD_LIBRARY_PATH=$lib/blas:$lib/lapack" "$root/usr/bin/python3" \
    -m pytest -q -p no:cacheprovider "$tree/tests/system/python" -k "not shortage_of_memory and not loaded_on_its_first_use"
