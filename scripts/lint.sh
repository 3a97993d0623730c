# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# shellcheck shell=bash
# clang-format, clang-tidy, reuse and shellcheck.

lint_packages=(clang-format clang-tidy clang-tools reuse shellcheck)
library='^src/'
lint_release=bookworm    # other releases have other versions of clang-format and clang-tidy, which judge otherwise

# on_lint_release COMMAND...: runs on this machine if it has that release, otherwise in a tree of it.
on_lint_release() {
    if [ "$(debian_release)" = "$lint_release" ]; then
        need "${lint_packages[@]}"
        "$@"
    else
        debian_tree "$lint_release"
        in_debian "$lint_release" "$@"
    fi
}

our_sources() { git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h' '*.c'; }

our_scripts() { git ls-files --cached --others --exclude-standard -- .ci/run .githooks '*.sh' | grep -v '^scripts/'; }

check_format() { our_sources | xargs clang-format --dry-run --Werror; }

# `dev` sources the files of scripts/, which are checked with it.
check_scripts() {
    shellcheck -x -a dev && our_scripts | xargs shellcheck --exclude=SC2016    # another shell expands what is quoted
}

# Every file has a copyright and a licence.
check_licences() {
    mkdir -p build
    reuse lint >build/reuse.log 2>&1 && return
    cat build/reuse.log
    return 1
}

# check_tidy [PATTERN [OPTION of clang-tidy...]]: the sources whose names match, all by default, the largest first.
check_tidy() {
    local pattern=${1:-.}
    shift $(($# > 0 ? 1 : 0))
    mkdir -p build
    configure lint
    our_sources | grep '\.cpp$' | grep -E "$pattern" | xargs ls -S |
        xargs -P "$jobs" -n 1 clang-tidy -p build/lint --quiet "$@" 2>build/tidy.err >build/tidy.log && return
    grep -E 'error|warning' build/tidy.log build/tidy.err
    return 1
}

# lint [PATTERN [OPTION of clang-tidy...]]
lint() {
    if [ "$(debian_release)" != "$lint_release" ]; then
        check "Lint on Debian's $lint_release" on_lint_release ./dev lint "$@"
        return
    fi
    check "shellcheck" check_scripts
    check "reuse" check_licences
    check "clang-format" check_format
    check "files of each exported name" python3 scripts/count_names.py
    check "clang-tidy" check_tidy "$@"
}

cmd_lint() {
    install_packages
    [ "$(debian_release)" != "$lint_release" ] || need "${lint_packages[@]}"
    lint "$@"
    [ "$failed" -eq 0 ]
}

cmd_format() {
    local sources
    mapfile -t sources < <(our_sources)
    on_lint_release clang-format -i "${sources[@]}"
}
