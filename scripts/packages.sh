# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The Debian packages that each command needs.

packages=(
    abigail-tools ca-certificates cmake g++ git ninja-build pkg-config python3
    libbenchmark-dev libgtest-dev libhwy-dev libjpeg62-turbo-dev
    libopencv-core-dev libopencv-imgcodecs-dev libopencv-imgproc-dev
    libarchive-dev libcli11-dev libleptonica-dev libpng-dev libqpdf-dev libtiff-dev nettle-dev nlohmann-json3-dev
    fonts-urw-base35 ocrmypdf poppler-utils python3-pil qpdf sane-utils tesseract-ocr-eng
    pybind11-dev python3-dev python3-hypothesis python3-mypy python3-numpy python3-pytest
    doxygen doxygen-awesome-css mandoc
)

# Installs what is missing.
need() {
    local missing=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "Installing ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends "${missing[@]}"
}

install_packages() { need "${packages[@]}"; }

# A hook that the developer has chosen is kept.
install_hook() {
    git rev-parse --is-inside-work-tree >/dev/null 2>&1 || return 0
    git config core.hooksPath >/dev/null || git config core.hooksPath .githooks
}

cmd_setup() {
    install_packages
    need "${lint_packages[@]}"
    install_hook
}
