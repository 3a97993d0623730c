#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# What check.sh runs in the fresh tree. NumPy, pytest, OpenCV and OCRmyPDF come from Debian, the module from the wheel.
set -euo pipefail
cd /check
if dpkg -l | grep -E '^ii +[^ ]+-dev[: ]' | grep -vE '^ii +(libexpat1|python3-numpy|zlib1g)-dev'; then
    echo "this tree has development packages" >&2
    exit 1
fi

python3 -m venv --system-site-packages venv
venv/bin/pip install --quiet --no-index --find-links wheels opcv-dlib
export PYTHONDONTWRITEBYTECODE=1 OPCV_DLIB_SOURCE=/check/source

echo "- what is in the wheel, what it maps, how long its import takes, beside cv2"
venv/bin/python check_module.py

echo "- its plug-in for OCRmyPDF"
venv/bin/python -m ocrmypdf --plugin opcv_dlib.ocrmypdf --help | grep -e --opcv-keep-skew

echo "- the tests of the Python module"
venv/bin/python -m pytest -q -p no:cacheprovider tests
venv/bin/python -m mypy.stubtest opcv_dlib --allowlist tests/stubtest.txt
