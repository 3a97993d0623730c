# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# The self-contained library and the wheels that hold it. A wheel needs the C library of the release that built it or a
# newer one, so it is built here for the Pythons of this release and of the next.

wheel_packages=(mmdebstrap python3-pip)
wheels=build/wheels
headers=build/wheel/headers
largest_wheel=2500000    # bytes

# This release and those after it that the wheels are for.
wheel_releases() { if [ "$(debian_release)" = bookworm ]; then echo bookworm trixie; else debian_release; fi; }

# Sets `python_tags`: release -> tag of its Python, and unpacks the headers of each Python and those of the newest
# pybind11, whose modules run with NumPy 1 and 2.
declare -A python_tags
wheel_headers() {
    local release package folder=$PWD/$headers downloads=$PWD/build/wheel/downloads
    mkdir -p "$downloads"
    for release in $(wheel_releases); do
        package=$(RELEASE=$release apt_apart apt-cache depends libpython3-dev |
            sed -n 's/.*\(libpython3\.[0-9]*-dev\)$/\1/p')
        python_tags[$release]=cp$(tr -dc 0-9 <<<"$package")
        [ -e "$folder/complete" ] && continue
        # shellcheck disable=SC2016
        RELEASE=$release apt_apart bash -c 'cd "$0" && apt-get download -qq "$@"' "$downloads" "$package" pybind11-dev
    done
    [ -e "$folder/complete" ] && return
    for package in "$downloads"/libpython3*.deb "$(find "$downloads" -name 'pybind11-dev_*' | sort -V | tail -1)"; do
        dpkg-deb -x "$package" "$folder"
    done
    touch "$folder/complete"
}

# What CMake is told for every wheel.
wheel_options() {
    ! command -v ccache >/dev/null ||
        printf -- '-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache '
    printf -- '-DCMAKE_COMPILE_WARNING_AS_ERROR=ON -Dpybind11_DIR=%s' \
        "$(dirname "$(find "$PWD/$headers/usr" -name pybind11Config.cmake)")"
}

# make_wheel TAG [SETTING...]
make_wheel() {
    local tag=$1 settings=()
    shift
    for setting in "python=$tag" "$@"; do settings+=(--config-settings "$setting"); done
    say "Building the wheel for $tag${2:+, $1}"
    /usr/bin/python3 -m pip wheel --quiet --no-deps --no-index --wheel-dir "$wheels" "${settings[@]}" . >build/wheel.log 2>&1 || {
        cat build/wheel.log
        return 1
    }
}

make_native_wheels() {
    local release tag
    for release in $(wheel_releases); do
        tag=${python_tags[$release]}
        make_wheel "$tag" "configure=$(wheel_options) -DPython_INCLUDE_DIR=$PWD/$headers/usr/include/python3.${tag#cp3}"
    done
}

# The wheel for arm64 and the Python of this release.
make_arm64_wheel() {
    arm64_sysroot
    static_libraries arm64
    make_wheel "${python_tags[$(debian_release)]}" machine=aarch64 strip=aarch64-linux-gnu-strip \
        "configure=$(wheel_options) -DCMAKE_TOOLCHAIN_FILE=$PWD/cmake/arm64.cmake -DOPCV_DLIB_SYSROOT=$PWD/$sysroot"
}

# A module shows Python one name, needs the runtime of C and C++ only, has no search path, and knows no path of this
# machine.
check_module_file() {
    [ "$(readelf --dyn-syms -W "$1" | awk '$5 ~ /GLOBAL|WEAK/ && $7 != "UND" {print $8}')" = "PyInit_$2" ] || return 1
    readelf -d "$1" | grep -E 'NEEDED|RPATH|RUNPATH' >"$1.needed"
    if grep -vE '\[(libstdc\+\+|libm|libgcc_s|libc|libpthread|ld-linux-(x86-64|aarch64))\.so' "$1.needed"; then return 1; fi
    if grep -aF "$PWD" "$1"; then return 1; fi
}

check_wheel_files() {
    local wheel work=build/wheel/unpacked name module
    for wheel in "$wheels"/*.whl; do
        rm -rf "$work"
        /usr/bin/python3 -m zipfile -e "$wheel" "$work"
        echo "$(stat -c %s "$wheel") bytes: ${wheel##*/}"
        [ "$(stat -c %s "$wheel")" -le "$largest_wheel" ] || return 1
        for name in _native _skew; do
            module=$(echo "$work/opcv_dlib/$name".*.so)
            echo "  $name of $(stat -c %s "$module") bytes"
            check_module_file "$module" "$name" || return 1
        done
    done
}

cmd_wheel() {
    local release native
    native=$(dpkg --print-architecture)
    install_packages
    need "${wheel_packages[@]}"
    rm -rf "$wheels"
    static_libraries "$native"
    wheel_headers
    make_native_wheels
    [ "$native" = arm64 ] || make_arm64_wheel
    check "Contents of the wheels" check_wheel_files
    for release in $(wheel_releases); do
        check "The wheel in a fresh tree of Debian $release" tests/system/wheel/check.sh "$wheels" "$release"
    done
    [ "$native" = arm64 ] || check "The arm64 wheel under qemu" \
        tests/system/wheel/check_arm64.sh "$wheels" "$(debian_release)" "${python_tags[$(debian_release)]#cp}"
    scanpage_libraries "$native"
    build self-contained
    run_tests self-contained
    build release scanpage pagegen opcv_dlib_python opcv_dlib_python_skew
    say "Start times"
    /usr/bin/python3 scripts/start_times.py build/release build/self-contained docs/compatibility.md
    echo "$passed passed, $failed failed"
    [ "$failed" -eq 0 ]
}
