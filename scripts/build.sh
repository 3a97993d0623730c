# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Configuring and building a preset of CMakePresets.json.

jobs=$(nproc)

configure() {
    local preset=$1
    local launcher=()
    command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    mkdir -p build
    cmake --preset "$preset" "${launcher[@]}" >"build/configure-$preset.log" 2>&1 || {
        cat "build/configure-$preset.log"
        return 1
    }
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    say "Building $preset"
    configure "$preset"
    cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"} | sed -n '/error\|warning\|FAILED/,$p'
}

# The packages that a preset needs in addition to those of every build.
prepare() {
    install_packages
    case $1 in
        arm64*) arm64_sysroot ;;
        fuzz) need "${fuzz_packages[@]}" ;;
    esac
}

cmd_build() {
    local preset=${1:-release}
    prepare "$preset"
    build "$preset"
}

cmd_clean() { as_root rm -rf build; }
