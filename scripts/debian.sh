# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# Builds and tests in a tree of another Debian release, with that release's compiler, OpenCV, Highway and Python.

# The second release that `./dev test` uses.
other_release() { if [ "$(debian_release)" = trixie ]; then echo bookworm; else echo trixie; fi; }

# debian_tree RELEASE: creates its tree in build/debian/RELEASE/root unless one with the same packages exists from this
# week.
debian_tree() {
    local release=$1 folder=build/debian/$1 wanted=("${packages[@]}" "${packaging_packages[@]}")
    need mmdebstrap
    [ "$release" != "$lint_release" ] || wanted+=("${lint_packages[@]}")
    ! command -v ccache >/dev/null || wanted+=(ccache)
    [ "$(cat "$folder/packages" 2>/dev/null)" = "${wanted[*]}" ] && [ -n "$(find "$folder/packages" -mtime -7)" ] && return
    say "Creating a tree of Debian $release"
    as_root rm -rf --one-file-system "$folder/root"
    mkdir -p "$folder/build"
    as_root mmdebstrap --quiet --variant=apt --aptopt='APT::Install-Recommends "false"' --dpkgopt='force-unsafe-io' \
        --dpkgopt='path-exclude=/usr/share/locale/*' --dpkgopt='path-exclude=/usr/share/doc/*' \
        --include="$(IFS=, && echo "${wanted[*]}")" "$release" "$folder/root"
    echo "${wanted[*]}" >"$folder/packages"
}

# in_debian RELEASE COMMAND...: runs in that tree, with these sources in the same folder, but with a separate build
# folder.
in_debian() {
    local folder=$PWD/build/debian/$1 ccache='' propagation=private
    shift
    # In a chroot the root is not a mount point, so its propagation cannot be changed.
    as_root unshare --mount --propagation private true 2>/dev/null || propagation=unchanged
    ! command -v ccache >/dev/null || ccache=$(ccache --get-config cache_dir)
    # shellcheck disable=SC2016
    as_root unshare --mount --propagation "$propagation" bash -euc '
        folder=$1 tree=$2 ccache=$3
        shift 3
        root=$folder/root
        mkdir -p "$root$tree" "$root/ccache"
        mount --bind "$tree" "$root$tree"
        mount --bind "$folder/build" "$root$tree/build"
        [ -z "$ccache" ] || mount --bind "$ccache" "$root/ccache"
        mount -t proc proc "$root/proc"
        mount --rbind /dev "$root/dev"
        cd "$root"
        exec chroot "$root" env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin CCACHE_DIR=/ccache \
            GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory GIT_CONFIG_VALUE_0="$tree" \
            bash -c "cd \"\$0\" && exec \"\$@\"" "$tree" "$@"
    ' in_debian "$folder" "$PWD" "$ccache" "$@"
}

# Builds and tests in that tree.
run_debian_tests() {
    local build=build/debian/$1/build/plain
    say "Testing on Debian $1"
    as_root rm -rf "$build/results"
    in_debian "$1" ./dev suite plain || true
    count_tests "${build#build/}"
}

# Checks the packages of another release in a fresh tree of that release.
check_debian_packages() {
    in_debian "$1" packaging/build.sh "$(dpkg --print-architecture)" build/plain build/plain/man build/packages || return
    tests/system/install/check.sh "build/debian/$1/build/packages" "$1"
}

cmd_debian() {
    local release=${1:-$(other_release)}
    install_packages
    debian_tree "$release"
    run_debian_tests "$release"
    check "Packages in a fresh tree of Debian's $release" check_debian_packages "$release"
    [ "$failed" -eq 0 ]
}
